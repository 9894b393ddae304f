#include "sockets/ControlWords.h"

#include <string_view>

#include "containers/Map.h"
#include "strings/StringCompare.h"

namespace {

// CANCEL is none of them: a receiver that gives up asks for it and sends nothing.
constexpr const char* kWords[][2] = {
    {"ACK", "ACK__________"},   {"NACK", "NACK_________"},         {"OK", "OK___________"},
    {"AGAIN", "AGAIN________"}, {"CONTINUE", "CONTINUE_____"},     {"WAIT", "WAIT_________"},
    {"ERROR", "ERROR________"}, {"INCONSISTENT", "INCONSISTENT_"},
};

struct WordTable {
    Map* padded = nullptr;  // word to padded form; the strings are its own
    Map* words = nullptr;   // padded form to word

    ~WordTable() { clear(); }
    void clear() {
        mapDestroy(&words);
        mapDestroyWith(&padded, stringDestroyElement, stringDestroyElement);
    }
};
WordTable table;

bool addWord(std::string_view word, std::string_view padded) {
    if (word.size() > kControlWordSize || padded.size() != kControlWordSize) return false;
    Owned<String> key(stringFromView(word));
    Owned<String> value(stringFromView(padded));
    if (!key || !value || mapContains(table.padded, key.get()) ||
        mapContains(table.words, value.get()) || !mapInsert(table.padded, key.get(), value.get()))
        return false;
    if (!mapInsert(table.words, value.get(), key.get())) {
        mapEraseKey(table.padded, key.get(), nullptr, nullptr);
        return false;
    }
    key.release();
    value.release();
    return true;
}

bool buildTable() {
    table.padded = mapCreate(stringCompareElements);
    table.words = mapCreate(stringCompareElements);
    bool built = table.padded != nullptr && table.words != nullptr;
    for (const auto& [word, padded] : kWords) built = built && addWord(word, padded);
    if (!built) table.clear();
    return built;
}

bool haveTable() {
    return table.words != nullptr || buildTable();
}

}  // namespace

bool sockAddWord(const char* word, const char* padded) {
    return word != nullptr && padded != nullptr && haveTable() && addWord(word, padded);
}

bool sockSendWordStr(Socket socket, const String* word) {
    if (word == nullptr || !haveTable()) return false;
    const auto* padded = static_cast<const String*>(mapGet(table.padded, word));
    return padded != nullptr &&
           sockSend(socket, stringBytes(padded), kControlWordSize) == kSockDone;
}

bool sockSendWord(Socket socket, const char* word) {
    LocalString text;
    return stringSetText(&text, word) && sockSendWordStr(socket, &text);
}

const String* sockReceiveWord(Socket socket) {
    if (!haveTable()) return nullptr;
    char bytes[kControlWordSize];
    uint32_t count = kControlWordSize;
    if (sockReceive(socket, bytes, &count) != kSockDone) return nullptr;
    LocalString text;
    if (!stringSetBytes(&text, bytes, count)) return nullptr;
    return static_cast<const String*>(mapGet(table.words, &text));
}
