#include "SignatureFault.h"

#include "ScriptEngine3Defs/ScriptHash.h"

namespace Quorel {

namespace {

constexpr size_t kDigits = 32;
constexpr size_t kDigitsAt = 5;  // behind the bracket, the variant and the colon
constexpr std::string_view kUpperDigits = "0123456789ABCDEF";

std::string digitsFault(std::string_view digits, bool wanted) {
    if (!wanted) return digits.empty() ? "" : "nothing may stand behind the colon of NON";
    for (const char digit : digits) {
        if (digit >= 'a' && digit <= 'f') return "its digits must be in capitals";
        if (kUpperDigits.find(digit) == kUpperDigits.npos)
            return "it has bytes among its digits that are none";
    }
    if (digits.size() == kDigits) return "";
    return "it has " + std::to_string(digits.size()) + " digits in place of 32";
}

}  // namespace

std::string signatureFault(std::string_view signature) {
    if (signature.empty()) return "the signature line has no text yet";
    if (signature.find('"') != signature.npos || signature.find('\'') != signature.npos)
        return "the signature stands in quotes, which do not belong there";
    if (signature.find(' ') != signature.npos)
        return "more than the signature stands on its line, or blanks are in it";
    if (signature.size() <= kDigitsAt || signature.front() != '[' ||
        signature[kDigitsAt - 1] != ':' || signature.back() != ']')
        return "the signature has not the form [VARIANT:DIGITS]";
    const std::string text(signature);
    const Owned<String> copy(stringFromView(signature));
    const int variant = scriptHashVariantOf(copy.get());
    if (variant == kVariantUnknown)
        return "its variant " + text.substr(1, 3) + " is none of NON, DES and AES";
    return digitsFault(signature.substr(kDigitsAt, signature.size() - kDigitsAt - 1),
                       variant != kVariantNone);
}

}  // namespace Quorel
