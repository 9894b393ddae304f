#pragma once

#include <cstddef>
#include <cstdint>

// The keys of script signatures. No key stands anywhere in one piece: each is put
// together from a table when it is first asked for, and then kept. The first calls
// happen on one thread.

// What a key is made of: byte i is the entry of the table at `list[i]` times the
// table's step, around the table's end.
constexpr size_t kScriptKeyTable = 1024;
extern const uint8_t scriptKeyTable[kScriptKeyTable];
extern const uint32_t scriptKeyStep;  // odd
constexpr size_t kScriptDesKey = 24;  // of which the first 8 bytes are used
constexpr size_t kScriptAesKey = 32;
extern const uint8_t scriptDesKeyList[kScriptDesKey];
extern const uint8_t scriptAesKeyList[kScriptAesKey];

// The keys for DES and AES.
const uint8_t* scriptDesKey();
const uint8_t* scriptAesKey();
