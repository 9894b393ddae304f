#include "strings/FormatArg.h"

#include "strings/StringNumbers.h"

bool FormatArg::isNull() const {
    return (kind_ == Kind::Text && text_ == nullptr) ||
           (kind_ == Kind::String && string_ == nullptr);
}

std::string_view FormatArg::text() const {
    if (isNull()) return {};
    switch (kind_) {
        case Kind::Text:
            return text_;
        case Kind::View:
            return {text_, length_};
        case Kind::String:
            return stringView(string_);
        default:
            return {};
    }
}

bool FormatArg::refersTo(const String* s) const {
    if (!isText() || s == nullptr) return false;
    if (kind_ == Kind::String) return string_ == s;
    return reinterpret_cast<uintptr_t>(text_) - reinterpret_cast<uintptr_t>(stringBytes(s)) <
           s->capacity;
}

int64_t FormatArg::toInt64() const {
    if (kind_ == Kind::Double) return numberToInt64(number_);
    return isText() ? 0 : signed_;
}

double FormatArg::toDouble() const {
    if (kind_ == Kind::Double) return number_;
    if (isText()) return 0;
    return kind_ == Kind::Unsigned ? static_cast<double>(unsigned_) : static_cast<double>(signed_);
}
