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

const Owned<String> kHost(stringFromView("127.0.0.1"));

// Hears the log, from warnings up unless told otherwise.
class Heard {
  public:
    explicit Heard(int level = kLogWarning) : level_(level) {
        listener_ = logListenerCreate(this, take, &level_);
        logAddGlobalListener(this, take, &level_);
    }
    ~Heard() {
        logShutdown();
        logListenerDestroy(&listener_);
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
    LogListener* listener_;
    std::mutex lock_;
    std::string text_;
};

uint64_t millisecondsOf(const auto& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() -
                                                                 start)
        .count();
}

void pause(int milliseconds) {
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

// A port of this test's own; two processes draw from ranges that hardly meet.
uint32_t newPort() {
    static std::atomic<uint32_t> next{0};
    return 20000 + osOwnProcessId() * 37 % 12000 + next++;
}

struct Pair {
    uint32_t port = newPort();
    Socket listener = sockCreateListener(port);
    Socket near = sockConnect(kHost.get(), port, 0, 3);
    Socket far = sockListen(listener, nullptr, 0, nullptr);
    Pair() {
        EXPECT_NE(kNoSocket, listener);
        EXPECT_NE(kNoSocket, near);
        EXPECT_NE(kNoSocket, far);
    }
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
    const uint32_t port = newPort();
    const Socket listener = sockCreateListener(port);
    const Socket near = sockConnect(kHost.get(), port, 0, 0);
    char host[64] = "";
    char cut[5] = "";
    uint32_t peerPort = 0;
    const Socket far = sockListen(listener, host, sizeof host, &peerPort);
    EXPECT_NE(nullptr, std::strstr(host, "127.0.0.1")) << host;
    EXPECT_GT(peerPort, 0u);
    const Socket second = sockConnect(kHost.get(), port, 0, 3);
    const Socket cutOff = sockListen(listener, cut, sizeof cut, nullptr);
    EXPECT_EQ(std::string(host).substr(0, 4), cut);
    std::string all;
    for (int byte = 0; byte < 256; ++byte) all += static_cast<char>(byte);
    for (const auto& [from, to] : {std::pair(near, far), std::pair(far, near)}) {
        EXPECT_EQ(0u, sockSend(from, all.data(), 256));
        EXPECT_EQ(all, receive(to, 256).bytes);
    }
    for (const Socket socket : {near, far, second, cutOff, listener, kNoSocket})
        EXPECT_EQ(12u, sockClose(socket));
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

TEST(Sockets, ASilentPeerCostsFiveSeconds) {
    Pair pair;
    Heard heard;
    OsVirtualClock clock;
    osVirtualClock = &clock;
    EXPECT_EQ(15u, receive(pair.near, 1).status);
    osVirtualClock = nullptr;
    EXPECT_EQ(5000u, clock.ticks.load());
    EXPECT_EQ("4 sockReceive: #::414\n", heard.text());
}

TEST(Sockets, TheRestOfASecondCountsAsMicroseconds) {
    Pair pair;
    bool closed = true;
    EXPECT_LT(millisecondsOf([&] { sockHaveData(pair.near, &closed, 999); }), 500u);
    EXPECT_FALSE(closed);
    const uint64_t spent = millisecondsOf([&] { sockHaveData(pair.near, nullptr, 1500); });
    EXPECT_GE(spent, 950u);
    EXPECT_LT(spent, 1400u);
}

TEST(Sockets, AFlushLeavesNothing) {
    Pair pair;
    sockSend(pair.far, "stale words", 11);
    while (!sockHaveData(pair.near, nullptr, 1000)) {
    }
    sockFlushInput(pair.near);
    EXPECT_FALSE(sockHaveData(pair.near, nullptr, 0));
    sockSend(pair.far, "new", 3);
    EXPECT_EQ("new", receive(pair.near, 3).bytes);
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
    if (broken.status == 15 && osPlatformName() != std::string("linux"))
        // Where a wait for bytes takes the error away the stream is at its end.
        EXPECT_EQ("3 sockReceive: #::414\n", heard.text());
    else
        EXPECT_EQ("8 3 sockReceive: #::400 - #::451 #::14\n",
                  std::to_string(broken.status) + " " + heard.text());
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

TEST(Sockets, ASendGivesUpOnAFullBuffer) {
    Pair pair;
    osSocketSetBlocking(pair.near, false);
    const std::string block(8192, 'x');
    Heard heard;
    OsVirtualClock clock;
    osVirtualClock = &clock;
    uint32_t status = 0;
    for (int count = 0; count < 10000 && status == 0; ++count)
        status = sockSend(pair.near, block.data(), 8192);
    osVirtualClock = nullptr;
    EXPECT_EQ(13u, status);
    EXPECT_EQ("3 sockSend: #::413\n", heard.text());
    EXPECT_EQ(500u, clock.ticks.load());
}

TEST(Sockets, AConnectThatFailsSaysSoFromItsTimeOn) {
    const struct {
        const char* host;
        Time notBefore;
        bool quiet;
        const char* line;
    } cases[] = {
        {"127.0.0.1", 0, false, "4 sockConnect: #::410 #::14\n"},
        {"127.0.0.1", 0, true, ""},
        {"127.0.0.1", ~Time{0}, false, ""},
        {"no such host", 0, false, "3 sockConnect: #::409 #::14\n"},
    };
    for (const auto& given : cases) {
        Heard heard;
        const Owned<String> host(stringFromView(given.host));
        Socket socket = 0;
        const uint64_t spent = millisecondsOf([&] {
            socket = sockConnectEx(host.get(), newPort(), given.notBefore, 2, given.quiet);
        });
        EXPECT_EQ(kNoSocket, socket);
        // Where a refused connect shows as one without answer another line comes first.
        std::string text = heard.text();
        if (text.starts_with("3 sockConnect:    Failed")) text.erase(0, text.find('\n') + 1);
        EXPECT_EQ(given.line, text) << given.host;
        EXPECT_LT(spent, 5000u);
        sockClose(kNoSocket);  // the reference that a failed connect keeps
    }
}

TEST(Sockets, ALaptopMayBeOffTheNetwork) {
    const char* const store = "sockets-registry.db";
    const Owned<String> key(stringFromView("SOFTWARE\\Quorel\\version6\\network"));
    const Owned<String> name(stringFromView("laptop"));
    std::remove(store);
    osSetEnvironment("QUOREL_REGISTRY", store);
    for (const bool isLaptop : {false, true}) {
        sysReleaseCache();
        regSetNumber(kOsLocalMachine, key.get(), name.get(), isLaptop);
        Heard heard;
        EXPECT_EQ(kNoSocket, sockConnect(kHost.get(), newPort(), 0, 1));
        EXPECT_EQ(isLaptop, heard.text().empty()) << heard.text();
        sockClose(kNoSocket);
    }
    osRegistryDeleteKey(kOsLocalMachine, "SOFTWARE\\Quorel\\version6\\network");
    std::remove(store);
    sysReleaseCache();
}

TEST(Sockets, TheQuitFlagEndsAConnect) {
    // An address for documentation: nobody answers, or the network says so at once.
    const Owned<String> host(stringFromView("192.0.2.1"));
    std::atomic<uint64_t> setAt{0};
    std::thread quitter([&] {
        pause(100);
        setAt = osSystemTicks();
        quitFlagSet();
    });
    EXPECT_EQ(kNoSocket, sockConnectEx(host.get(), 9, ~Time{0}, 40, true));
    const uint64_t endedAt = osSystemTicks();
    quitter.join();
    EXPECT_LE(endedAt, setAt + 100);
    quitFlagReset();
    sockClose(kNoSocket);
}

TEST(Sockets, ATakenPortIsGivenUpAfterFiveAttempts) {
    Pair pair;
    OsSocket other = kOsNoSocket;
    ASSERT_EQ(0, osSocketCreate(0, &other));
    const uint32_t taken = newPort();
    ASSERT_EQ(0, osSocketBind(other, static_cast<uint16_t>(taken)));
    osSocketListen(other, 1);
    Heard heard;
    OsVirtualClock clock;
    osVirtualClock = &clock;
    EXPECT_EQ(kNoSocket, sockCreateListener(taken));
    osVirtualClock = nullptr;
    EXPECT_EQ("3 sockCreateListener: #::406 #::14\n", heard.text());
    EXPECT_EQ(12500u, clock.ticks.load());
    osSocketClose(other);
    sockClose(kNoSocket);
}

// A thread that waits for connections, and what ends its wait.
struct Waiting {
    Socket listener = kNoSocket;
    std::atomic<uint32_t> threadId{0};
    std::atomic<Socket> got{0};
    std::thread thread;
    explicit Waiting(uint32_t port) : listener(sockCreateListener(port)) {
        thread = std::thread([this] {
            uint32_t message = 0;
            osTakeMessage(&message);
            threadId = osCurrentThreadId();
            got = sockListen(listener, nullptr, 0, nullptr);
        });
        while (threadId == 0) pause(1);
    }
    ~Waiting() {
        if (thread.joinable()) thread.join();
        sockClose(listener);
    }
};

TEST(Sockets, AWaitingListenerEndsByAConnectionOrAMessage) {
    const uint32_t port = newPort();
    Waiting broken(port);
    const bool isBroken = sockBreak(port);
    if (!isBroken) osPostMessage(broken.threadId, kOsMessageDestroy);  // the own name is unknown
    broken.thread.join();
    EXPECT_EQ(isBroken, broken.got != kNoSocket);
    sockClose(broken.got);
    Heard heard;
    Waiting asked(newPort());
    pause(20);
    EXPECT_EQ(0, osPostMessage(asked.threadId, kOsMessageDestroy));
    asked.thread.join();
    EXPECT_EQ(kNoSocket, asked.got);
    EXPECT_EQ("", heard.text());
}

TEST(Sockets, CountTheirUsersFromTwoThreads) {
    while (true) {
        Heard heard(kLogVerbose);
        sockTerm();
        if (heard.text() == "6 sockTerm: Terminating last\n") break;
    }
    std::thread other([] {
        for (int round = 0; round < 500; ++round) EXPECT_EQ(0u, sockInit());
    });
    for (int round = 0; round < 500; ++round) EXPECT_EQ(0u, sockInit());
    other.join();
    for (int round = 0; round < 999; ++round) sockTerm();
    Heard heard(kLogVerbose);
    sockTerm();
    EXPECT_EQ("6 sockTerm: Terminating last\n", heard.text());
    sockInit();
    EXPECT_EQ("6 sockTerm: Terminating last\n6 sockInit: Initializing first\n", heard.text());
    sockTerm();
}

}  // namespace
