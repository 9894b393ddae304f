#include "strings/StringFormat.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "strings/StringEdit.h"
#include "strings/StringNumbers.h"

namespace {

constexpr std::string_view kLetters = "diuIUxXcsSfeEgG";
constexpr std::string_view kNullText = "<NULL>";
constexpr uint32_t kStandardPrecision = 6;
// No double has more decimals than this, so a longer text only adds zeros far
// behind the place where it is cut.
constexpr uint32_t kMostDecimals = 1100;
constexpr size_t kMostWholeDigits = 310;

// Long enough for a 64-bit number and for a double that was cut.
constexpr size_t kNumberBytes = 64;

bool appendFilled(String* s, std::string_view text, const FormatField& field) {
    const size_t fill = field.width > text.size() ? field.width - text.size() : 0;
    const uint64_t added = uint64_t{fill} + text.size();
    if (added > kStringMaxLength) return false;
    char* place = stringMakeRoom(s, static_cast<uint32_t>(added));
    if (place == nullptr) return false;
    std::memset(place, field.fill, fill);
    if (!text.empty()) std::memcpy(place + fill, text.data(), text.size());
    return stringSetLength(s, s->length + static_cast<uint32_t>(added));
}

template <typename T>
std::string_view decimal(char* buffer, T value, int base = 10) {
    char* end = std::to_chars(buffer, buffer + kNumberBytes, value, base).ptr;
    return {buffer, static_cast<size_t>(end - buffer)};
}

// The number in the form that its own type suggests.
std::string_view plainNumber(char* buffer, const FormatArg& arg) {
    switch (arg.kind()) {
        case FormatArg::Kind::Double:
            return {buffer, numberToText(arg.toDouble(), buffer)};
        case FormatArg::Kind::Char:
            buffer[0] = static_cast<char>(arg.toInt64());
            return {buffer, 1};
        case FormatArg::Kind::Unsigned:
            return decimal(buffer, static_cast<uint64_t>(arg.toInt64()));
        default:
            return decimal(buffer, arg.toInt64());
    }
}

std::string_view hexadecimal(char* buffer, const FormatArg& arg, bool upperCase) {
    const uint64_t bits = static_cast<uint64_t>(arg.toInt64());
    const std::string_view text =
        decimal(buffer, arg.isWide() ? bits : static_cast<uint32_t>(bits), 16);
    if (upperCase)
        std::transform(buffer, buffer + text.size(), buffer,
                       [](char c) { return static_cast<char>(c >= 'a' ? c - 'a' + 'A' : c); });
    return text;
}

// A number under a letter for 32 bits. One that is wider keeps its digits.
std::string_view narrowNumber(char* buffer, const FormatArg& arg, bool isSigned) {
    const int64_t value = arg.toInt64();
    if (arg.kind() == FormatArg::Kind::Double) return decimal(buffer, value);
    if (arg.isWide()) return plainNumber(buffer, arg);
    if (isSigned) return decimal(buffer, static_cast<int32_t>(value));
    return decimal(buffer, static_cast<uint32_t>(value));
}

// The text of a number under any letter; `buffer` has kNumberBytes.
std::string_view numberUnder(char* buffer, char letter, uint32_t precision, const FormatArg& arg) {
    switch (letter) {
        case 'd':
        case 'i':
        case 'u':
            return narrowNumber(buffer, arg, letter != 'u');
        case 'I':
            return decimal(buffer, arg.toInt64());
        case 'U':
            return decimal(buffer, static_cast<uint64_t>(arg.toInt64()));
        case 'x':
        case 'X':
            return hexadecimal(buffer, arg, letter == 'X');
        case 'c':
            buffer[0] = static_cast<char>(arg.toInt64());
            return {buffer, 1};
        case 's':
        case 'S':
            return plainNumber(buffer, arg);
        default:
            return {buffer, formatDouble(arg.toDouble(), letter, precision, buffer)};
    }
}

uint32_t readNumber(const char** walk) {
    uint64_t number = 0;
    for (; **walk >= '0' && **walk <= '9'; ++*walk)
        number = std::min<uint64_t>(number * 10 + static_cast<uint64_t>(**walk - '0'), UINT32_MAX);
    return static_cast<uint32_t>(number);
}

// Reads what stands before the letter and moves onto it.
FormatField readField(const char** walk) {
    FormatField field;
    const char* at = *walk;
    if (at[0] == '\'' && at[1] != 0 && at[2] == '\'') {
        field.fill = at[1];
        *walk += 3;
    }
    field.width = readNumber(walk);
    if (**walk == '.') {
        ++*walk;
        field.precision = readNumber(walk);
    }
    return field;
}

bool walkFormat(String* s, const char* format, std::span<const FormatArg> args) {
    size_t next = 0;
    for (const char* walk = format; *walk != 0;) {
        const size_t plain = std::strcspn(walk, "%");
        if (!stringAppendView(s, {walk, plain})) return false;
        walk += plain;
        if (*walk == 0) break;
        ++walk;
        const FormatField field = readField(&walk);
        if (*walk == 0) break;
        const bool takesArgument = kLetters.find(*walk) != std::string_view::npos;
        const FormatArg none{};
        const FormatArg& arg = takesArgument && next < args.size() ? args[next++] : none;
        if (!stringAppendArg(s, *walk, field, arg)) return false;
        ++walk;
    }
    return true;
}

bool anyRefersTo(std::span<const FormatArg> args, const String* s) {
    return std::any_of(args.begin(), args.end(),
                       [s](const FormatArg& arg) { return arg.refersTo(s); });
}

}  // namespace

uint32_t formatDouble(double value, char letter, uint32_t precision, char out[kFormatDoubleMax]) {
    char buffer[kMostWholeDigits + kMostDecimals];
    // The systems differ on the sign of what is not a number.
    if (std::isnan(value)) value = std::fabs(value);
    const auto form = letter == 'f'                    ? std::chars_format::fixed
                      : letter == 'e' || letter == 'E' ? std::chars_format::scientific
                                                       : std::chars_format::general;
    const uint32_t digits = precision == 0 ? kStandardPrecision : precision;
    const char* end = std::to_chars(buffer, buffer + sizeof buffer, value, form,
                                    static_cast<int>(std::min(digits, kMostDecimals)))
                          .ptr;
    const uint32_t length = std::min(static_cast<uint32_t>(end - buffer), kFormatDoubleMax);
    for (uint32_t i = 0; i < length; ++i) {
        const bool raise = letter == 'E' && buffer[i] >= 'a';
        out[i] = static_cast<char>(raise ? buffer[i] - 'a' + 'A' : buffer[i]);
    }
    return length;
}

bool stringAppendArg(String* s, char letter, const FormatField& field, const FormatArg& arg) {
    if (kLetters.find(letter) == std::string_view::npos) return stringAppendChar(s, letter);
    if (arg.kind() == FormatArg::Kind::None) return s != nullptr;
    if (arg.isNull()) return stringAppendView(s, kNullText);
    if (arg.isText()) return appendFilled(s, arg.text(), field);
    char buffer[kNumberBytes];
    return appendFilled(s, numberUnder(buffer, letter, field.precision, arg), field);
}

bool stringFormatArgs(String* s, const char* format, std::span<const FormatArg> args) {
    if (s == nullptr || format == nullptr) return false;
    LocalString built;
    // The text that is replaced may be read while the new one is made.
    String* target = anyRefersTo(args, s) ? &built : s;
    stringClear(target);
    const bool done = walkFormat(target, format, args);
    if (!done) stringClear(target);
    return target == s ? done : stringTake(s, &built) && done;
}

String* stringFormatNewArgs(const char* format, std::span<const FormatArg> args) {
    Owned<String> s(stringNewEmpty());
    return stringFormatArgs(s.get(), format, args) ? s.release() : nullptr;
}

bool stringAppendFormatArgs(String* s, const char* format, std::span<const FormatArg> args) {
    if (s == nullptr || format == nullptr) return false;
    LocalString built;
    if (anyRefersTo(args, s)) return walkFormat(&built, format, args) && stringAppend(s, &built);
    const uint32_t length = s->length;
    if (walkFormat(s, format, args)) return true;
    stringSetLength(s, length);
    return false;
}

bool stringInsertFormatArgs(String* s, uint32_t pos, const char* format,
                            std::span<const FormatArg> args) {
    if (s == nullptr || format == nullptr) return false;
    LocalString built;
    return walkFormat(&built, format, args) && stringInsert(s, pos, &built);
}
