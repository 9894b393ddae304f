#pragma once

#include <cstdint>

#include "containers/Owned.h"
#include "strings/String.h"

struct Md5;

// The signature of a script: a digest of its lines, enciphered with a key of the
// program, as text: `[AES:` and 32 hexadecimal digits and `]`.

enum ScriptHashKind : int32_t { kHashNone = 0, kHashMd5 = 1 };

// How the digest is enciphered. ORDER signature-variants
enum ScriptHashVariant : int {
    kVariantDefault = 0,  // what `scriptHashDefaultVariant` says
    kVariantNone = 1,     // no digest at all: the text is always "[NON:]"
    kVariantDes = 2,
    kVariantAes = 3,
    kVariantUnknown = 4,
};
extern int scriptHashDefaultVariant;

struct HashState {
    int32_t kind;
    Md5* context;  // owned; null until a line has been added
};

// A state without lines, for the caller; null when memory runs out.
HashState* scriptHashCreate(int kind);
void scriptHashDestroy(HashState** state);
// The same, for containers of states as destructor of their elements.
void scriptHashDestroyElement(void** element);

template <>
struct OwnedTraits<HashState> {
    static void destroy(HashState** state) { scriptHashDestroy(state); }
};

// Adds the bytes of a line, with nothing between it and the next. A state that
// does not hash takes no notice. False for null or when memory runs out.
bool scriptHashAdd(HashState* state, const String* text);

// Writes the signature of the lines so far; "[:]" for an unknown variant and
// "NONE:" for a state that does not hash. False for null or when memory runs out.
bool scriptHashFinish(const HashState* state, int variant, String* result);

// The variant that a signature names in its second to fourth byte; none for null.
int scriptHashVariantOf(const String* signature);

// The three letters of a variant; null for one that has no name.
const char* scriptHashVariantName(int variant);
