#include "ScriptEngine3Defs/ScriptKeys.h"

namespace {

template <size_t kSize>
const uint8_t* built(const uint8_t (&list)[kSize]) {
    static uint8_t key[kSize];
    static bool done = false;
    if (done) return key;
    for (size_t at = 0; at < kSize; ++at)
        key[at] = scriptKeyTable[list[at] * scriptKeyStep % kScriptKeyTable];
    done = true;
    return key;
}

}  // namespace

const uint8_t* scriptDesKey() {
    return built(scriptDesKeyList);
}

const uint8_t* scriptAesKey() {
    return built(scriptAesKeyList);
}
