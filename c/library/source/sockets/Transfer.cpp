#include "sockets/Transfer.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string_view>

#include "sockets/ControlWords.h"
#include "sockets/SockErrors.h"
#include "strings/StringNumbers.h"

namespace {

constexpr uint32_t kFieldMax = 127;
// The room that a string gets on the word of its sender alone.
constexpr uint32_t kFirstRoom = 64 * 1024;
// From here on a number has no decimals, and soon more digits than other texts of
// numbers show. A text of more bytes than a field can have is sent all the same.
constexpr double kLongNumber = 1e29;
constexpr size_t kLongestNumber = 320;
// How often a chunk that came short is asked for again.
constexpr int kRepeats = 4;

bool sendField(Socket socket, const char* name, std::string_view text) {
    sockLog(kLogFlood, "%s: Sending %s", name, text);
    const char length = static_cast<char>(text.size());  // its low bits
    return sockSend(socket, &length, 1) == kSockDone &&
           sockSend(socket, text.data(), static_cast<uint32_t>(text.size())) == kSockDone;
}

// Reads the text of a field into the buffer. A text that came short is taken as it is.
bool receiveField(Socket socket, const char* name, char (&buffer)[kFieldMax],
                  std::string_view* text) {
    char length = 0;
    uint32_t count = 1;
    if (sockReceive(socket, &length, &count) != kSockDone) return false;
    count = static_cast<uint8_t>(length);
    if (count == 0 || count > kFieldMax) return false;
    if (sockReceive(socket, buffer, &count) != kSockDone) return false;
    *text = {buffer, count};
    sockLog(kLogFlood, "%s: Received %s", name, *text);
    return true;
}

// Blanks, a sign and digits as far as there are any: what is too large is the
// largest number, and a minus takes what stands behind it from 0.
uint32_t unsignedFromText(std::string_view text) {
    const size_t start = std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size());
    text.remove_prefix(start);
    const bool isNegative = text.starts_with('-');
    if (isNegative || text.starts_with('+')) text.remove_prefix(1);
    uint64_t value = 0;
    for (const char c : text) {
        if (c < '0' || c > '9') break;
        value = value * 10 + static_cast<uint64_t>(c - '0');
        if (value > UINT32_MAX) return UINT32_MAX;
    }
    return static_cast<uint32_t>(isNegative ? 0 - value : value);
}

// Sends one chunk until it is acknowledged; `remaining` is for the log.
bool sendChunk(Socket socket, const char* bytes, uint32_t count, uint32_t remaining) {
    for (;;) {
        sockFlushInput(socket);  // words that belong to nothing any more
        if (sockSend(socket, bytes, count) != kSockDone) return false;
        sockLog(kLogFlood, "sockSendString:    Sent %u byte(s) (%u remaining), awaiting ACK", count,
                remaining);
        const String* word = sockReceiveWord(socket);
        if (word == nullptr) {
            sockLog(kLogWarning, "sockSendString: Didn't get ACK on sent string");
            return false;
        }
        sockLog(kLogFlood, "sockSendString:    Got \"%S\" on sent string", word);
        const std::string_view answer = stringView(word);
        if (answer == "ACK") return true;
        if (answer == "AGAIN") continue;
        if (answer == "CANCEL")
            sockLog(kLogWarning, "sockSendString: Received CANCEL signal");
        else
            sockLog(kLogError, "sockSendString: Expected \"ACK\" or \"AGAIN\", got \"%S\"", word);
        return false;
    }
}

// Reads one chunk of `want` bytes. One that came short is asked for again, but
// never read for more than came last, so that only a whole first read succeeds.
bool receiveChunk(Socket socket, char* place, uint32_t want) {
    uint32_t got = want;
    if (sockReceive(socket, place, &got) != kSockDone) return false;
    for (int repeat = 0; got < want && repeat < kRepeats; ++repeat) {
        sockLog(kLogVerbose,
                "sockReceiveString: Didn't receive correctly - will ask for the last chunk of "
                "data to be sent again");
        if (!sockSendWord(socket, "AGAIN")) return false;
        if (sockReceive(socket, place, &got) != kSockDone) return false;
    }
    if (got >= want) return true;
    sockLog(kLogVerbose, "sockReceiveString: Didn't receive correctly - giving up");
    sockSendWord(socket, "CANCEL");
    return false;
}

// A string for the length announced, with room for its beginning; null without
// memory, as for a length that no string has.
String* stringForLength(uint32_t length) {
    if (length > kStringMaxLength) return nullptr;
    Owned<String> made(stringNewEmpty());
    if (!made || !stringReserve(made.get(), std::min(length, kFirstRoom))) return nullptr;
    return made.release();
}

// The place for the next chunk, or null. The string grows by doubling, and to no
// more than the length announced.
char* placeForChunk(String* s, uint32_t want, uint32_t length) {
    if (s->capacity - s->length <= want) {
        const uint64_t doubled = std::min<uint64_t>(2 * uint64_t{s->capacity}, length);
        const uint32_t room = std::max(static_cast<uint32_t>(doubled), s->length + want);
        if (!stringReserve(s, room)) return nullptr;
    }
    return stringBytes(s) + s->length;
}

}  // namespace

bool sockSendUInt32(Socket socket, uint32_t value) {
    LocalString text;
    return stringAppendUInt64(&text, value) &&
           sendField(socket, "sockSendUInt32", stringView(&text));
}

bool sockSendDouble(Socket socket, double value) {
    char text[kLongestNumber];
    size_t length = 0;
    if (std::isfinite(value) && std::fabs(value) >= kLongNumber) {
        const auto end = std::to_chars(text, std::end(text), value, std::chars_format::fixed, 0);
        length = static_cast<size_t>(end.ptr - text);
    } else {
        char shortText[kNumberTextMax];
        length = numberToText(value, shortText);
        std::copy_n(shortText, length, text);
    }
    return sendField(socket, "sockSendDouble", {text, length});
}

bool sockReceiveUInt32(Socket socket, uint32_t* value) {
    char buffer[kFieldMax];
    std::string_view text;
    if (!receiveField(socket, "sockReceiveUInt32", buffer, &text)) return false;
    *value = unsignedFromText(text);
    return true;
}

bool sockReceiveDouble(Socket socket, double* value) {
    char buffer[kFieldMax];
    std::string_view text;
    if (!receiveField(socket, "sockReceiveDouble", buffer, &text)) return false;
    *value = textToDouble(text);
    return true;
}

bool sockSendString(Socket socket, const String* string) {
    if (string == nullptr) return false;
    const std::string_view bytes = stringView(string);
    sockLog(kLogFlood, "sockSendString: String string of %i bytes", string->length);
    if (!sockSendUInt32(socket, string->length)) return false;
    for (uint32_t at = 0; at < string->length;) {
        const uint32_t remaining = string->length - at;
        const uint32_t chunk = std::min(remaining, kTransferChunk);
        if (!sendChunk(socket, bytes.data() + at, chunk, remaining)) return false;
        at += chunk;
    }
    return true;
}

String* sockReceiveString(Socket socket) {
    uint32_t length = 0;
    if (!sockReceiveUInt32(socket, &length)) return nullptr;
    Owned<String> received(stringForLength(length));
    if (!received) {
        sockLog(kLogError, "sockReceiveString: #::100");
        return nullptr;
    }
    for (uint32_t remaining = length; remaining > 0;) {
        const uint32_t want = std::min(remaining, kTransferChunk);
        char* place = placeForChunk(received.get(), want, length);
        if (place == nullptr) {
            sockLog(kLogError, "sockReceiveString: memAlloc %i failed", want + 1);
            return nullptr;
        }
        if (!receiveChunk(socket, place, want)) return nullptr;
        sockLog(kLogFlood, "sockReceiveString:    Received %u byte(s) (%u remaining)", want,
                remaining);
        if (!sockSendWord(socket, "ACK")) return nullptr;
        stringSetLength(received.get(), received->length + want);
        remaining -= want;
    }
    sockLog(kLogFlood, "sockReceiveString: Received string of %u bytes", length);
    return received.release();
}
