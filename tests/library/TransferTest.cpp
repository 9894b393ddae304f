#include "sockets/Transfer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "containers/Memory.h"
#include "logger/Logger.h"
#include "logger/MessageExpand.h"
#include "sockets/ControlWords.h"

// The protocol against a wire that the test holds in its hands: it stands in for
// the socket layer, so that each exchange can end at any byte.

namespace {

constexpr Socket kSocket = 7;
const std::string kAck = "ACK__________";
const std::string kAgain = "AGAIN________";

struct Wire {
    std::string sent;
    std::string answers;  // what the peer says when something was sent, a word at a time
    std::string incoming;
    std::vector<uint32_t> reads;  // at most so many bytes a read, in turn; all when used up
} wire;

// What a receiver that reads its input makes of a string; null gives "none".
std::string received(const std::string& incoming) {
    wire.incoming = incoming;
    const Owned<String> text(sockReceiveString(kSocket));
    return text ? std::string(stringView(text.get())) : "none";
}

bool send(const std::string& bytes, const std::string& answers) {
    wire = {};
    wire.answers = answers;
    const Owned<String> text(stringFromView(bytes));
    return sockSendString(kSocket, text.get());
}

std::string logged;
bool hear(void*, int, LogForm form, const char* format, const LogArg* args, uint32_t count) {
    const Owned<String> line(messageExpand(format, form, args, count));
    logged += stringView(line.get());
    return true;
}

std::string field(const std::string& text) {
    return static_cast<char>(text.size()) + text;
}

}  // namespace

uint32_t sockSend(Socket, const char* data, uint32_t length) {
    wire.sent.append(data, length);
    return kSockDone;
}

uint32_t sockReceive(Socket, char* buffer, uint32_t* length) {
    std::string& from = wire.incoming.empty() ? wire.answers : wire.incoming;
    size_t count = std::min<size_t>(*length, from.size());
    if (!wire.reads.empty()) {
        count = std::min<size_t>(count, wire.reads.front());
        wire.reads.erase(wire.reads.begin());
    }
    if (count == 0) return kSockTimeout;
    from.copy(buffer, count);
    from.erase(0, count);
    *length = static_cast<uint32_t>(count);
    return kSockDone;
}

void sockFlushInput(Socket) {
    wire.incoming.clear();
}

TEST(Transfer, TheSenderGoesByTheReceiversWord) {
    const std::string noAck = "sockSendString: Didn't get ACK on sent string";
    const std::string other = "sockSendString: Expected \"ACK\" or \"AGAIN\", got \"NACK\"";
    const struct {
        std::string answers;
        std::string line;
        int repeats;
    } cases[] = {{kAgain + kAgain + kAgain + kAgain + kAgain + kAck, "", 6},
                 {"NACK_________" + kAck, other, 1},
                 {"CANCEL_______" + kAck, noAck, 1},
                 {"ack__________" + kAck, noAck, 1},
                 {"ACK", noAck, 1}};
    int level = kLogWarning;
    logAddGlobalListener(&logged, hear, &level);
    for (const auto& [answers, line, repeats] : cases) {
        logged.clear();
        EXPECT_EQ(line.empty(), send("hi", answers)) << answers;
        std::string wanted = field("2");
        for (int at = 0; at < repeats; ++at) wanted += "hi";
        EXPECT_EQ(wanted, wire.sent) << answers;
        EXPECT_EQ(line, logged);
    }
    logShutdown();
}

TEST(Transfer, AChunkThatCameShortIsAskedForAgainAndGivenUp) {
    wire = {};
    wire.reads = {1, 3, 60, 40, 30};
    EXPECT_EQ("none", received(field("100") + std::string(500, 'x')));
    // Four times, never for more than came last, and nothing in the end.
    EXPECT_EQ(kAgain + kAgain + kAgain + kAgain, wire.sent);
    EXPECT_EQ(500u - 60 - 40 - 30 - 30 - 30, wire.incoming.size());
}

TEST(Transfer, AnAnnouncedLengthTakesNoMemory) {
    for (const char* length : {"4294967295", "4294967294", "1000000000"}) {
        wire = {};
        EXPECT_EQ("none", received(field(length) + "abc"));
        // A first request for the length announced would be the one to fail here.
        memFailAfter(2, true);
        wire = {};
        EXPECT_EQ("none", received(field(length) + std::string(4 * kTransferChunk, 'x')));
        memFailAfter(-1, false);
    }
}

TEST(Transfer, AWordIsRegisteredOnceAndFitsItsPlace) {
    EXPECT_FALSE(sockSendWord(kSocket, "CANCEL"));
    EXPECT_FALSE(sockSendWordStr(kSocket, nullptr));
    EXPECT_FALSE(sockAddWord("ACK", "ACK2_________"));
    EXPECT_FALSE(sockAddWord("ACKNOWLEDGEMENT", "ACKNOWLEDGEME"));
    EXPECT_FALSE(sockAddWord("SHORT", "SHORT_"));
    EXPECT_FALSE(sockAddWord("OTHER", "ACK__________"));
    EXPECT_TRUE(sockAddWord("THIRTEENCHARS", "THIRTEENCHARS"));
    EXPECT_FALSE(sockAddWord("THIRTEENCHARS", "THIRTEENCHARS"));
    wire = {};
    EXPECT_TRUE(sockSendWord(kSocket, "THIRTEENCHARS"));
    wire.incoming = wire.sent;
    EXPECT_EQ("THIRTEENCHARS", stringView(sockReceiveWord(kSocket)));
}
