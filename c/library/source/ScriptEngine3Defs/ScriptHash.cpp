#include "ScriptEngine3Defs/ScriptHash.h"

#include "ScriptEngine3Defs/ScriptKeys.h"
#include "containers/Memory.h"
#include "crypt/Aes.h"
#include "crypt/Des.h"
#include "crypt/Md5.h"

int scriptHashDefaultVariant = kVariantAes;

namespace {

// Our own start of the chain: a digest by the standard's is no signature.
constexpr uint32_t kChainStart[4] = {0x5A17C3E2, 0x3B90D14F, 0xC2E4786A, 0x19F06BD7};

constexpr char kUpperDigits[] = "0123456789ABCDEF";
constexpr size_t kVariantNameAt = 1;
constexpr size_t kVariantNameLength = 3;

void encipherDes(uint8_t* digest) {
    DesKey key;
    desPrepare(&key, scriptDesKey());
    desEncrypt(&key, digest);
    desEncrypt(&key, digest + kDesBlock);
}

void encipherAes(uint8_t* digest) {
    AesKey key;
    aesPrepare(&key, scriptAesKey());
    aesEncrypt(&key, digest);
}

struct Variant {
    int number;
    const char* name;
    void (*encipher)(uint8_t* digest);  // null: the digest is left out
};

// ORDER signature-variants
constexpr Variant kVariants[] = {
    {kVariantNone, "NON", nullptr},
    {kVariantDes, "DES", encipherDes},
    {kVariantAes, "AES", encipherAes},
};

const Variant* findVariant(int number) {
    for (const Variant& variant : kVariants)
        if (variant.number == number) return &variant;
    return nullptr;
}

// A state in which nothing was added has no context yet.
void digestOf(const HashState* state, uint8_t (&digest)[kMd5Size]) {
    Md5 empty;
    md5Init(&empty, kChainStart);
    md5Finish(state->context == nullptr ? &empty : state->context, digest);
}

}  // namespace

HashState* scriptHashCreate(int kind) {
    return memNew<HashState>(HashState{kind, nullptr});
}

void scriptHashDestroy(HashState** state) {
    if (state == nullptr || *state == nullptr) return;
    memDelete(&(*state)->context);
    memDelete(state);
}

void scriptHashDestroyElement(void** element) {
    auto* state = static_cast<HashState*>(*element);
    scriptHashDestroy(&state);
    *element = nullptr;
}

bool scriptHashAdd(HashState* state, const String* text) {
    if (state == nullptr || text == nullptr) return false;
    if (state->kind == kHashNone) return true;
    if (state->context == nullptr) {
        state->context = memNew<Md5>();
        if (state->context == nullptr) return false;
        md5Init(state->context, kChainStart);
    }
    md5Add(state->context, stringBytes(text), text->length);
    return true;
}

bool scriptHashFinish(const HashState* state, int variant, String* result) {
    if (state == nullptr || result == nullptr) return false;
    if (state->kind == kHashNone) return stringSetText(result, "NONE:");
    const Variant* row =
        findVariant(variant == kVariantDefault ? scriptHashDefaultVariant : variant);
    if (!stringSetText(result, "[") || !stringAppendText(result, row == nullptr ? "" : row->name) ||
        !stringAppendChar(result, ':'))
        return false;
    if (row != nullptr && row->encipher != nullptr) {
        uint8_t digest[kMd5Size];
        digestOf(state, digest);
        row->encipher(digest);
        for (const uint8_t byte : digest)
            if (!stringAppendChar(result, kUpperDigits[byte >> 4]) ||
                !stringAppendChar(result, kUpperDigits[byte & 0xF]))
                return false;
    }
    return stringAppendChar(result, ']');
}

int scriptHashVariantOf(const String* signature) {
    if (signature == nullptr) return kVariantNone;
    const std::string_view text = stringView(signature);
    if (text.size() <= kVariantNameAt) return kVariantUnknown;
    const std::string_view name = text.substr(kVariantNameAt, kVariantNameLength);
    for (const Variant& variant : kVariants)
        if (name == variant.name) return variant.number;
    return kVariantUnknown;
}

const char* scriptHashVariantName(int variant) {
    const Variant* row = findVariant(variant);
    return row == nullptr ? nullptr : row->name;
}
