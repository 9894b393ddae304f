#include "sockets/Sockets.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <mutex>
#include <string>
#include <thread>

#include "logger/Logger.h"
#include "platform/clock.h"
#include "platform/machine.h"
#include "platform/messages.h"
#include "platform/processes.h"
#include "platform/registry.h"
#include "platform/sockets.h"
#include "platform/threads.h"
#include "registry/Registry.h"
#include "system/SystemInfo.h"
#include "threads/QuitFlag.h"

namespace {

Owned<String> owned(const char* text) {
    return Owned<String>(stringFromView(text));
}

const Owned<String> kHost = owned("127.0.0.1");

// Hears the log, from warnings up unless told otherwise.
class Heard {
  public:
    explicit Heard(int level = kLogWarning) : level_(level) {
        logAddGlobalListener(this, take, &level_);
    }
    ~Heard() {
        logShutdown();
        LogListener* listener = logListenerCreate(this, take, &level_);  // back into service
        logListenerDestroy(&listener);
    }
    std::string text() {
        const std::lock_guard hold(lock_);
        return text_;
    }

  private:
    static bool take(void* context, int level, LogForm, const char* format, const LogArg*,
                     uint32_t) {
        auto* self = static_cast<Heard*>(context);
        const std::lock_guard hold(self->lock_);
        self->text_ += std::to_string(level) + " " + format + "\n";
        return true;
    }
    int level_;
    std::mutex lock_;
    std::string text_;
};

uint64_t millisecondsOf(const auto& work) {
    const uint64_t start = osSystemTicks();
    work();
    return osSystemTicks() - start;
}

void pause(int milliseconds) {
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

// A port of this test's own; two processes draw from ranges that hardly meet.
uint32_t newPort() {
    static std::atomic<uint32_t> next{0};
    return 20000 + osOwnProcessId() * 37 % 12000 + next++;
}

// Time that passes only in waits, for the length of a scope.
struct Clock : OsVirtualClock {
    Clock() { osVirtualClock = this; }
    ~Clock() { osVirtualClock = nullptr; }
};

struct Pair {
    uint32_t port = newPort();
    Socket listener = sockCreateListener(port);
    Socket near = sockConnect(kHost.get(), port, 0, 3);
    char host[64] = "";
    uint32_t peerPort = 0;
    Socket far = sockListen(listener, host, sizeof host, &peerPort);
    ~Pair() {
        for (const Socket socket : {far, near, listener}) EXPECT_EQ(12u, sockClose(socket));
    }
    void closeFar() {
        sockClose(far);
        far = kNoSocket;
        sockInit();  // the close of none gives a reference back
    }
};

struct Received {
    uint32_t status;
    std::string bytes;
};

Received receive(Socket socket, uint32_t wanted) {
    std::string bytes(wanted, '\0');
    uint32_t length = wanted;
    const uint32_t status = sockReceive(socket, bytes.data(), &length);
    if (status == 0) bytes.resize(length);
    return {status, bytes};
}

TEST(Sockets, CarryBytesAndNameThePeer) {
    Pair pair;
    EXPECT_NE(nullptr, std::strstr(pair.host, "127.0.0.1")) << pair.host;
    EXPECT_GT(pair.peerPort, 0u);
    std::string all;
    for (int byte = 0; byte < 256; ++byte) all += static_cast<char>(byte);
    for (const auto& [from, to] : {std::pair(pair.near, pair.far), {pair.far, pair.near}}) {
        EXPECT_EQ(0u, sockSend(from, all.data(), 256));
        EXPECT_EQ(all, receive(to, 256).bytes);
        sockSend(from, "stale", 5);
        while (!sockHaveData(to, nullptr, 1000)) {
        }
        sockFlushInput(to);
        EXPECT_FALSE(sockHaveData(to, nullptr, 0));
    }
}

TEST(Sockets, AReceiveTakesWhatArrivesInItsAttempts) {
    Pair pair;
    sockSend(pair.far, "four", 4);
    Received some{};
    const uint64_t spent = millisecondsOf([&] { some = receive(pair.near, 10); });
    EXPECT_EQ(0u, some.status);
    EXPECT_EQ("four", some.bytes);
    EXPECT_GE(spent, 400u);
    EXPECT_LT(spent, 1500u);
    std::thread peer([&] {
        const auto start = std::chrono::steady_clock::now();
        for (int piece = 0; piece < 100; ++piece) {
            std::this_thread::sleep_until(start + piece * std::chrono::microseconds(1500));
            sockSend(pair.far, "x", 1);
        }
    });
    EXPECT_EQ(std::string(100, 'x'), receive(pair.near, 100).bytes);
    peer.join();
}

TEST(Sockets, TheEndOfTheStreamEndsAReceive) {
    Pair pair;
    sockSend(pair.far, "ab", 2);
    pair.closeFar();
    EXPECT_EQ("ab", receive(pair.near, 3).bytes);
    Heard heard;
    EXPECT_TRUE(sockHaveData(pair.near, nullptr, 0));
    EXPECT_EQ(15u, receive(pair.near, 3).status);
    EXPECT_EQ("3 sockReceive: #::414\n", heard.text());
}

TEST(Sockets, TheRestOfASecondCountsAsMicroseconds) {
    Pair pair;
    EXPECT_LT(millisecondsOf([&] { sockHaveData(pair.near, nullptr, 999); }), 500u);
    const uint64_t spent = millisecondsOf([&] { sockHaveData(pair.near, nullptr, 1500); });
    EXPECT_GE(spent, 950u);
    EXPECT_LT(spent, 1400u);
}

TEST(Sockets, ABrokenConnectionHasItsLines) {
    Pair pair;
    sockSend(pair.near, "unread", 6);
    while (!sockHaveData(pair.far, nullptr, 1000)) {
    }
    pair.closeFar();
    pause(50);
    Heard heard;
    const Received broken = receive(pair.near, 1);
    const std::string told = std::to_string(broken.status) + " " + heard.text();
    // Where the wait for bytes takes the error away the stream is at its end.
    EXPECT_TRUE(told == "8 3 sockReceive: #::400 - #::451 #::14\n" ||
                (broken.status == 15 && osPlatformName() != std::string("linux")))
        << told;
    EXPECT_NE(0u, sockSend(pair.near, "x", 1));  // and no signal ends the program
}

TEST(Sockets, WhatIsNoSocketHasItsLines) {
    Heard heard;
    bool closed = false;
    EXPECT_FALSE(sockHaveData(999999, &closed, 0));
    EXPECT_TRUE(closed);
    EXPECT_EQ(13u, sockSend(999999, "x", 1));
    EXPECT_EQ(18u, receive(999999, 1).status);
    EXPECT_EQ(0u, sockClose(999999));
    EXPECT_EQ(0u, sockClose(2));  // a file, by a script's mistake
    EXPECT_EQ(kNoSocket, sockListen(999999, nullptr, 0, nullptr));
    EXPECT_EQ(
        "3 sockHaveData: #::415 - WSAENOTSOCK #::14\n"
        "3 sockSend: #::412 - WSAENOTSOCK #::14\n3 sockSend: #::412 #::14\n"
        "3 sockReceive: #::415 #::14\n"
        "3 sockClose: #::411 #::14\n3 sockClose: #::411 #::14\n"
        "3 sockListen: #::408 #::14\n",
        heard.text());
}

TEST(Sockets, ASilentPeerCostsTheWholeBudget) {
    Pair pair;
    const std::string block(8192, 'x');
    osSocketSetBlocking(pair.near, false);
    Heard heard;
    Clock clock;
    EXPECT_EQ(15u, receive(pair.near, 1).status);
    EXPECT_EQ(5000u, clock.ticks.load());
    uint32_t status = 0;
    for (int count = 0; count < 10000 && status == 0; ++count)
        status = sockSend(pair.near, block.data(), 8192);
    EXPECT_EQ(13u, status);
    EXPECT_EQ(5500u, clock.ticks.load());
    EXPECT_EQ("4 sockReceive: #::414\n3 sockSend: #::413\n", heard.text());
}

TEST(Sockets, AConnectThatFailsSaysSoFromItsTimeOnAndNotOnALaptop) {
    const struct {
        const char* host;
        Time notBefore;
        bool quiet;
        bool laptop;
        const char* line;
    } cases[] = {
        {"127.0.0.1", 0, false, false, "4 sockConnect: #::410 #::14\n"},
        {"127.0.0.1", 0, true, false, ""},
        {"127.0.0.1", ~Time{0}, false, false, ""},
        {"127.0.0.1", 0, false, true, ""},
        {"no such host", 0, false, true, "3 sockConnect: #::409 #::14\n"},
    };
    osSetEnvironment("QUOREL_REGISTRY", "SocketsTest.db");
    const auto key = owned("SOFTWARE\\Quorel\\version6\\network");
    for (const auto& given : cases) {
        sysReleaseCache();
        regSetNumber(kOsLocalMachine, key.get(), owned("laptop").get(), given.laptop);
        Heard heard;
        EXPECT_EQ(kNoSocket, sockConnectEx(owned(given.host).get(), newPort(), given.notBefore, 2,
                                           given.quiet));
        // Where a refused connect shows as one without answer another line comes first.
        std::string text = heard.text();
        if (text.starts_with("3 sockConnect:    Failed")) text.erase(0, text.find('\n') + 1);
        EXPECT_EQ(given.line, text) << given.host;
        sockClose(kNoSocket);  // the reference that a failed connect keeps
    }
    osRegistryDeleteKey(kOsLocalMachine, stringView(key.get()));
    std::remove("SocketsTest.db");
}

TEST(Sockets, TheQuitFlagEndsAConnectThatNobodyAnswers) {
    Pair pair;
    Socket fill[6];
    for (Socket& socket : fill) socket = sockConnect(kHost.get(), pair.port, 0, 3);
    uint64_t setAt = 0;
    std::thread quitter([&] {
        pause(100);
        setAt = osSystemTicks();
        quitFlagSet();
    });
    EXPECT_EQ(kNoSocket, sockConnectEx(kHost.get(), pair.port, ~Time{0}, 40, true));
    const uint64_t endedAt = osSystemTicks();
    quitter.join();
    quitFlagReset();
    EXPECT_GE(endedAt, setAt);
    EXPECT_LE(endedAt, setAt + 50);
    for (const Socket socket : fill) sockClose(socket);
    sockClose(kNoSocket);
}

TEST(Sockets, ATakenPortIsGivenUpAfterFiveAttempts) {
    sockInit();
    OsSocket other = kOsNoSocket;
    ASSERT_EQ(0, osSocketCreate(0, &other));
    const uint32_t taken = newPort();
    ASSERT_EQ(0, osSocketBind(other, static_cast<uint16_t>(taken)));
    osSocketListen(other, 1);
    Heard heard;
    Clock clock;
    EXPECT_EQ(kNoSocket, sockCreateListener(taken));
    EXPECT_EQ("3 sockCreateListener: #::406 #::14\n", heard.text());
    EXPECT_EQ(12500u, clock.ticks.load());
    uint32_t message = 0;
    osTakeMessage(&message);  // makes the queue
    osPostMessage(osCurrentThreadId(), kOsMessageDestroy);
    EXPECT_EQ(kNoSocket, sockCreateListener(taken));
    EXPECT_EQ(12500u, clock.ticks.load()) << "a request to stop ends the attempts";
    EXPECT_TRUE(osTakeMessage(&message));
    sockClose(kNoSocket);
    for (const Socket socket : {Socket{other}, kNoSocket}) EXPECT_EQ(12u, sockClose(socket));
}

TEST(Sockets, AWaitingListenerEndsByAConnectionOrAMessage) {
    for (const bool breaks : {true, false}) {
        const uint32_t port = newPort();
        const Socket listener = sockCreateListener(port);
        std::atomic<uint32_t> threadId{0};
        Socket got = 0;
        std::thread thread([&] {
            uint32_t message = 0;
            osTakeMessage(&message);  // makes the queue
            threadId = osCurrentThreadId();
            got = sockListen(listener, nullptr, 0, nullptr);
        });
        while (threadId == 0) pause(1);
        pause(20);
        Heard heard;
        // Where the machine's own name is unknown only the message is left.
        const bool isBroken = breaks && sockBreak(port);
        if (!isBroken) osPostMessage(threadId, kOsMessageDestroy);
        thread.join();
        EXPECT_EQ(isBroken, got != kNoSocket);
        EXPECT_TRUE(breaks || heard.text().empty()) << heard.text();
        for (const Socket socket : {got, listener}) sockClose(socket);
        if (!isBroken) sockInit();  // the close of none gave a reference back
    }
}

TEST(Sockets, CountTheirUsersFromTwoThreads) {
    for (int left = 0; left < 100; ++left) sockTerm();
    const auto enter = [] {
        for (int round = 0; round < 500; ++round) EXPECT_EQ(0u, sockInit());
    };
    std::thread other(enter);
    enter();
    other.join();
    Heard heard(kLogVerbose);
    for (int round = 0; round < 999; ++round) sockTerm();
    EXPECT_EQ("", heard.text());
    sockTerm();
    sockInit();
    EXPECT_EQ("6 sockTerm: Terminating last\n6 sockInit: Initializing first\n", heard.text());
    sockTerm();
}

}  // namespace
