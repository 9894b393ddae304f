#pragma once

#include <cstdint>
#include <string_view>
#include <type_traits>

#include "strings/String.h"

// One argument of a formatted text, with its type, so that no letter of a
// format can read memory that is not there. It refers to texts and does not
// copy them: it lives no longer than the call.
class FormatArg {
  public:
    enum class Kind : uint8_t { None, Signed, Unsigned, Double, Char, Text, View, String };

    FormatArg() = default;
    template <typename T>
    requires(std::is_arithmetic_v<T> || std::is_enum_v<T>) FormatArg(T value) {
        if constexpr (std::is_enum_v<T>) {
            *this = FormatArg(static_cast<std::underlying_type_t<T>>(value));
        } else if constexpr (std::is_floating_point_v<T>) {
            kind_ = Kind::Double;
            number_ = static_cast<double>(value);
        } else if constexpr (std::is_same_v<T, char>) {
            kind_ = Kind::Char;
            signed_ = value;
        } else if constexpr (std::is_signed_v<T>) {
            kind_ = Kind::Signed;
            wide_ = sizeof(T) > sizeof(int32_t);
            signed_ = value;
        } else {
            kind_ = Kind::Unsigned;
            wide_ = sizeof(T) > sizeof(uint32_t);
            unsigned_ = value;
        }
    }
    FormatArg(const char* text) : kind_(Kind::Text), text_(text) {}
    FormatArg(std::nullptr_t) : FormatArg(static_cast<const char*>(nullptr)) {}
    FormatArg(const String* string) : kind_(Kind::String), string_(string) {}
    FormatArg(const Owned<String>& string) : FormatArg(string.get()) {}
    template <typename T>
    requires(std::is_class_v<T>&& std::is_convertible_v<const T&, std::string_view>)
        FormatArg(const T& value)
        : kind_(Kind::View) {
        const std::string_view view = value;
        text_ = view.data();
        length_ = view.size();
    }

    Kind kind() const { return kind_; }
    // A text in any of its forms.
    bool isText() const { return kind_ >= Kind::Text; }
    // A text that is a null pointer.
    bool isNull() const;
    // The bytes of a text, none for a null or for another kind.
    std::string_view text() const;
    // A text in the buffer of this string, which must not move while it is read.
    bool refersTo(const String* s) const;
    // The number of any kind, converted as the language would and cut where it
    // must be: a double toward zero, a text to 0.
    int64_t toInt64() const;
    double toDouble() const;
    // More than 32 bits wide: such a number keeps all its digits under a
    // letter for 32 bits, where a narrow one is taken as that letter says.
    bool isWide() const { return wide_; }

  private:
    Kind kind_ = Kind::None;
    bool wide_ = false;
    union {
        int64_t signed_ = 0;
        uint64_t unsigned_;
        double number_;
        const char* text_;
        const String* string_;
    };
    size_t length_ = 0;
};
