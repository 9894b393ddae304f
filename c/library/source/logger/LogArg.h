#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <type_traits>

struct String;

enum class LogArgKind : uint8_t { Int32, UInt32, Int64, UInt64, Double, Char, Text, String };

// One argument of a log line. It travels with its type, since the text that it
// is meant for may stand in a file that anyone edits: a letter that does not
// fit shows oddly at worst. Texts and strings are borrowed for the call.
struct LogArg {
    LogArgKind kind;
    size_t length = 0;  // of a text
    union {
        int64_t integer;  // all four integer kinds; the unsigned ones by their bits
        double number;
        char character;
        const char* text;
        const String* string;
    };

    template <typename T>
    requires(std::is_integral_v<T> || std::is_enum_v<T>) LogArg(T value)
        : kind(integerKind<T>()), integer(static_cast<int64_t>(value)) {}
    LogArg(char value) : kind(LogArgKind::Char), character(value) {}
    LogArg(double value) : kind(LogArgKind::Double), number(value) {}
    LogArg(const char* value) : kind(LogArgKind::Text), text(value) {
        if (value != nullptr) length = std::string_view(value).size();
    }
    LogArg(std::string_view value) : kind(LogArgKind::Text), length(value.size()) {
        text = value.data();
    }
    LogArg(const String* value) : kind(LogArgKind::String), string(value) {}

  private:
    template <typename T>
    static constexpr LogArgKind integerKind() {
        using Plain = typename std::conditional_t<std::is_enum_v<T>, std::underlying_type<T>,
                                                  std::type_identity<T>>::type;
        if (sizeof(T) > sizeof(int32_t))
            return std::is_signed_v<Plain> ? LogArgKind::Int64 : LogArgKind::UInt64;
        return std::is_signed_v<Plain> ? LogArgKind::Int32 : LogArgKind::UInt32;
    }
};
