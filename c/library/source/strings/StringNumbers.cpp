#include "strings/StringNumbers.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>

namespace {

__extension__ typedef unsigned __int128 Wide;

constexpr uint32_t kDecimals = 8;
constexpr uint64_t kDecimalScale = 100000000;
// Below it every whole number is a double of its own.
constexpr double kExactLimit = 9007199254740992.0;
// Below it the number times kDecimalScale fits in 64 bits.
constexpr double kScaledLimit = 1e11;

// The parts of a double: value = mantissa / 2^shift.
constexpr int kMantissaBits = 52;
constexpr int kExponentMask = 0x7FF;
constexpr int kShiftOfExponentZero = 1075;
// A mantissa times kDecimalScale has at most 80 bits: shifted further than
// this it is less than a half.
constexpr int kMostShift = 81;

uint32_t put(char* out, const char* text) {
    const size_t length = std::strlen(text);
    std::memcpy(out, text, length);
    return static_cast<uint32_t>(length);
}

char* putWhole(char* out, uint64_t value) {
    return std::to_chars(out, out + kNumberTextMax, value).ptr;
}

// The magnitude times kDecimalScale, rounded to even as the exact decimal
// expansion would be.
uint64_t scaled(double value) {
    const uint64_t bits = std::bit_cast<uint64_t>(value);
    const int exponent = static_cast<int>(bits >> kMantissaBits) & kExponentMask;
    const int shift = kShiftOfExponentZero - exponent;
    if (shift > kMostShift) return 0;
    const uint64_t hidden = uint64_t{1} << kMantissaBits;
    const Wide product = Wide{(bits & (hidden - 1)) | hidden} * kDecimalScale;
    const uint64_t quotient = static_cast<uint64_t>(product >> shift);
    const Wide rest = product & ((Wide{1} << shift) - 1);
    const Wide half = Wide{1} << (shift - 1);
    return quotient + (rest > half || (rest == half && (quotient & 1) != 0));
}

// A number with decimals, below kScaledLimit.
uint32_t fractionToText(double value, char* out) {
    char* at = out;
    if (std::signbit(value)) *at++ = '-';
    const uint64_t number = scaled(value);
    at = putWhole(at, number / kDecimalScale);
    uint64_t fraction = number % kDecimalScale;
    if (fraction == 0) return static_cast<uint32_t>(at - out);
    *at = '.';
    uint32_t digits = kDecimals;
    for (; fraction % 10 == 0; fraction /= 10) --digits;
    for (uint32_t i = digits; i > 0; --i, fraction /= 10)
        at[i] = static_cast<char>('0' + fraction % 10);
    return static_cast<uint32_t>(at - out) + 1 + digits;
}

uint32_t largeToText(double value, char* out) {
    char buffer[330];
    const char* end = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed,
                                    static_cast<int>(kDecimals))
                          .ptr;
    std::string_view text(buffer,
                          std::min<size_t>(static_cast<size_t>(end - buffer), kNumberTextMax));
    if (text.find('.') != std::string_view::npos) {
        text = text.substr(0, text.find_last_not_of('0') + 1);
        if (text.back() == '.') text.remove_suffix(1);
    }
    std::memcpy(out, text.data(), text.size());
    return static_cast<uint32_t>(text.size());
}

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

void takeBlanks(std::string_view* text) {
    text->remove_prefix(std::min(text->find_first_not_of(" \t\n\v\f\r"), text->size()));
}

// Takes the sign off the front; true for a minus.
bool takeSign(std::string_view* text) {
    if (text->empty() || (text->front() != '-' && text->front() != '+')) return false;
    const bool negative = text->front() == '-';
    text->remove_prefix(1);
    return negative;
}

struct Digits {
    uint64_t value = 0;  // modulo 2^64
    bool tooLong = false;
};

Digits readDigits(std::string_view text) {
    Digits digits;
    for (size_t i = 0; i < text.size() && isDigit(text[i]); ++i) {
        const uint64_t digit = static_cast<uint64_t>(text[i] - '0');
        digits.tooLong |= digits.value > (UINT64_MAX - digit) / 10;
        digits.value = digits.value * 10 + digit;
    }
    return digits;
}

// Whether a decimal number that no double can hold is too large, not too small.
bool isHuge(std::string_view text) {
    constexpr int64_t kFarAway = int64_t{1} << 40;
    int64_t power = 0;  // of ten, behind the first digit that counts
    bool pointSeen = false;
    bool started = false;
    size_t i = 0;
    for (; i < text.size() && (isDigit(text[i]) || (text[i] == '.' && !pointSeen)); ++i) {
        pointSeen |= text[i] == '.';
        if (text[i] != '.') started |= text[i] != '0';
        if (started && !pointSeen) ++power;
        if (!started && pointSeen && text[i] == '0') --power;
    }
    if (i == text.size() || (text[i] | ' ') != 'e') return power > 0;
    std::string_view tail = text.substr(i + 1);
    const bool negative = takeSign(&tail);
    const Digits digits = readDigits(tail);
    const int64_t exponent = digits.tooLong
                                 ? kFarAway
                                 : static_cast<int64_t>(std::min<uint64_t>(digits.value, kFarAway));
    return power + (negative ? -exponent : exponent) > 0;
}

template <typename T>
std::string_view wholeText(char* buffer, T value) {
    char* end = std::to_chars(buffer, buffer + kNumberTextMax, value).ptr;
    return {buffer, static_cast<size_t>(end - buffer)};
}

template <typename T>
String* newFrom(T value) {
    char buffer[kNumberTextMax];
    return stringFromView(wholeText(buffer, value));
}

constexpr char kUpperDigits[] = "0123456789ABCDEF";
constexpr char kLowerDigits[] = "0123456789abcdef";

}  // namespace

uint32_t numberToText(double value, char out[kNumberTextMax]) {
    if (value > -kExactLimit && value < kExactLimit) {
        const int64_t whole = static_cast<int64_t>(value);
        if (static_cast<double>(whole) == value) {
            if (whole == 0 && std::signbit(value)) return put(out, "-0");
            return static_cast<uint32_t>(std::to_chars(out, out + kNumberTextMax, whole).ptr - out);
        }
    }
    if (std::isnan(value)) return put(out, "nan");
    return std::fabs(value) < kScaledLimit ? fractionToText(value, out) : largeToText(value, out);
}

String* stringFromInt32(int32_t value) {
    return newFrom(value);
}

String* stringFromUInt32(uint32_t value) {
    return newFrom(value);
}

String* stringFromInt64(int64_t value) {
    return newFrom(value);
}

String* stringFromUInt64(uint64_t value) {
    return newFrom(value);
}

String* stringFromHex(uint32_t value, bool upperCase) {
    const char* digits = upperCase ? kUpperDigits : kLowerDigits;
    char buffer[8];
    char* at = buffer + sizeof buffer;
    do {
        *--at = digits[value % 16];
        value /= 16;
    } while (value != 0);
    return stringFromView({at, static_cast<size_t>(buffer + sizeof buffer - at)});
}

String* stringFromDouble(double value) {
    char buffer[kNumberTextMax];
    return stringFromBytes(buffer, numberToText(value, buffer));
}

bool stringAppendInt64(String* s, int64_t value) {
    char buffer[kNumberTextMax];
    return stringAppendView(s, wholeText(buffer, value));
}

bool stringAppendUInt64(String* s, uint64_t value) {
    char buffer[kNumberTextMax];
    return stringAppendView(s, wholeText(buffer, value));
}

bool stringAppendDouble(String* s, double value) {
    char buffer[kNumberTextMax];
    return stringAppendBytes(s, buffer, numberToText(value, buffer));
}

bool stringSetDouble(String* s, double value) {
    char buffer[kNumberTextMax];
    return stringSetBytes(s, buffer, numberToText(value, buffer));
}

bool stringTrimNumber(String* s) {
    const std::string_view text = stringView(s);
    const size_t dot = text.find('.');
    if (dot == std::string_view::npos ||
        text.find_first_not_of("0123456789.-") != std::string_view::npos ||
        text.find_first_of("0123456789") == std::string_view::npos)
        return false;
    if (text.back() == '.') return stringSetLength(s, s->length - 1);
    const size_t last = text.find_last_not_of('0');
    if (last + 1 == text.size()) return false;
    if (last > dot + 1) return stringSetLength(s, static_cast<uint32_t>(last) + 1);
    return dot == 0 ? stringSetChar(s, '0') : stringSetLength(s, static_cast<uint32_t>(dot));
}

int32_t textToInt32(std::string_view text) {
    takeBlanks(&text);
    const bool negative = takeSign(&text);
    const Digits digits = readDigits(text);
    const uint64_t limit = static_cast<uint64_t>(INT64_MAX) + negative;
    const uint64_t value = digits.tooLong ? limit : std::min(digits.value, limit);
    return static_cast<int32_t>(static_cast<uint32_t>(negative ? 0 - value : value));
}

uint32_t textToUInt32(std::string_view text) {
    takeBlanks(&text);
    const bool negative = takeSign(&text);
    const Digits digits = readDigits(text);
    if (digits.tooLong) return UINT32_MAX;
    return static_cast<uint32_t>(negative ? 0 - digits.value : digits.value);
}

int64_t textToInt64(std::string_view text) {
    const bool negative = !text.empty() && text.front() == '-';
    const uint64_t value = textToUInt64(text.substr(negative));
    return static_cast<int64_t>(negative ? 0 - value : value);
}

uint64_t textToUInt64(std::string_view text) {
    return readDigits(text).value;
}

double textToDouble(std::string_view text) {
    takeBlanks(&text);
    const bool negative = takeSign(&text);
    const bool isNumber =
        !text.empty() &&
        (isDigit(text[0]) || (text[0] == '.' && text.size() > 1 && isDigit(text[1])));
    if (!isNumber) return 0;
    double value = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    if (result.ec == std::errc::result_out_of_range) value = isHuge(text) ? HUGE_VAL : 0;
    return negative ? -value : value;
}

int32_t stringToInt32(const String* s) {
    return textToInt32(stringView(s));
}

uint32_t stringToUInt32(const String* s) {
    return textToUInt32(stringView(s));
}

int64_t stringToInt64(const String* s) {
    return textToInt64(stringView(s));
}

uint64_t stringToUInt64(const String* s) {
    return textToUInt64(stringView(s));
}

double stringToDouble(const String* s) {
    return textToDouble(stringView(s));
}

bool stringByteToHex(uint8_t byte, String* out) {
    const char digits[] = {kUpperDigits[byte / 16], kUpperDigits[byte % 16]};
    return stringSetBytes(out, digits, sizeof digits);
}

bool stringToHex(const String* s, String* out) {
    if (s == nullptr || out == nullptr) return false;
    const std::string_view bytes = stringView(s);
    // The source may be the result.
    LocalString built;
    if (bytes.size() > kStringMaxLength / 2 || !stringReserve(&built, 2 * s->length)) return false;
    for (const char c : bytes) {
        const unsigned byte = static_cast<unsigned char>(c);
        stringAppendChar(&built, kUpperDigits[byte / 16]);
        stringAppendChar(&built, kUpperDigits[byte % 16]);
    }
    return stringTake(out, &built);
}
