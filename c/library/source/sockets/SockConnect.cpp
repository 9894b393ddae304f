#include <algorithm>

#include "logger/StandardOutput.h"
#include "platform/clock.h"
#include "platform/sockets.h"
#include "sockets/SockErrors.h"
#include "sockets/SockModule.h"
#include "sockets/Sockets.h"
#include "system/SystemInfo.h"
#include "threads/QuitFlag.h"

namespace {

constexpr uint32_t kMostTries = 100000;
// With the quit flag set no try waits, and many would only turn round and round.
constexpr uint32_t kMostTriesAtQuit = 2;
constexpr uint32_t kWaitBetweenTries = 250;  // milliseconds
constexpr uint64_t kSelectTime = 100;        // microseconds
constexpr uint64_t kTimeLimit = 7;           // milliseconds
constexpr uint32_t kBreakTries = 2;

struct Connecting {
    const String* host;
    OsSocketAddress address;
    Time notBefore;
    uint32_t maxTries;
    bool quiet;
    bool showsProgress;
    Time start = timeNow();
    uint32_t tries = 0;
    int error = 0;
    OsSocket socket = kOsNoSocket;
};

template <typename... Args>
void progress(const Connecting& connecting, const char* format, const Args&... args) {
    if (connecting.showsProgress) sockLog(kLogTrace, format, args...);
}

bool refused(Connecting* connecting, const char* format, int error) {
    progress(*connecting, format, error);
    connecting->error = error;
    return false;
}

// Waits for one try's time, less when the connect comes to its end: that belongs
// to the try and uses none up.
bool waitOneTry(Connecting* connecting) {
    bool isReady = false;
    outputFlush();
    osSocketWait(connecting->socket, OsSocketReady::Write, kWaitBetweenTries * 1000, quitEvent(),
                 &isReady);
    if (isReady) return true;
    if (quitFlagIsSet()) connecting->maxTries = std::min(connecting->maxTries, kMostTriesAtQuit);
    return ++connecting->tries < connecting->maxTries;
}

// Follows a connect that is under way. Whether it became a connection.
bool completeConnect(Connecting* connecting) {
    do {
        bool isReady = false;
        int error =
            osSocketWait(connecting->socket, OsSocketReady::Write, kSelectTime, nullptr, &isReady);
        if (error != 0)
            return refused(connecting,
                           "sockConnect:    Could not complete the connection immediately "
                           "(error %i)",
                           error);
        if (isReady) {
            // A refused connect shows as writable on some systems.
            const int asked = osSocketPendingError(connecting->socket, &error);
            if (asked != 0) error = asked;
            if (error != 0)
                return refused(connecting, "sockConnect:    Failed to connect (error %i)", error);
            progress(*connecting, "sockConnect:    Reselected.");
            return true;
        }
        progress(*connecting,
                 "sockConnect:    Could not complete the connection immediately - timeout (check "
                 "the target process, check the connection, or firewall settings on the target "
                 "host)");
    } while (waitOneTry(connecting));
    if (connecting->start > connecting->notBefore && !sysIsLaptop())
        sockLog(kLogError,
                "sockConnect:    Failed to open connection to target host (check connection, or "
                "firewall settings on the target host)");
    return false;
}

bool connectInTries(Connecting* connecting) {
    const uint64_t firstTry = osClockTicks();
    for (; connecting->tries < connecting->maxTries; ++connecting->tries) {
        sockLog(kLogFlood, "sockConnect: Trying to connect");
        bool isUnderWay = false;
        connecting->error = osSocketConnect(connecting->socket, connecting->address, &isUnderWay);
        if (connecting->error == 0) return true;
        progress(*connecting, "sockConnect:    Failed to connect (error %i)", connecting->error);
        if (isUnderWay && completeConnect(connecting)) return true;
        if (osClockTicks() - firstTry > kTimeLimit) return false;
        outputFlush();
        sleepInterruptible(kWaitBetweenTries);
        progress(*connecting, "sockConnect:    Trying again");
    }
    return false;
}

// The line at the end of all tries.
void reportFailure(const Connecting& connecting) {
    const bool isLoud =
        !connecting.quiet && connecting.start >= connecting.notBefore && !sysIsLaptop();
    if (!isLoud && !logIsFlood()) return;
    sockLog(isLoud ? kLogWarning : kLogDebug, "sockConnect: #::410 #::14", connecting.host,
            connecting.address.port, connecting.error);
}

}  // namespace

Socket sockConnect(const String* host, uint32_t port, Time notBefore, uint32_t tries) {
    return sockConnectEx(host, port, notBefore, tries, false);
}

Socket sockConnectEx(const String* host, uint32_t port, Time notBefore, uint32_t tries,
                     bool quiet) {
    Connecting connecting{.host = host,
                          .address = {0, static_cast<uint16_t>(port)},
                          .notBefore = notBefore,
                          .maxTries = tries == 0 ? kMostTries : tries,
                          .quiet = quiet,
                          .showsProgress = !quiet || logIsFlood()};
    if (sockInit() != 0) {
        sockLog(kLogError, "sockConnect: #::100");
        return kNoSocket;
    }
    progress(connecting, "sockConnect: Connecting");
    int error = osHostFind(stringView(host), &connecting.address.host);
    if (error != 0) {
        sockLog(kLogError, "sockConnect: #::409 #::14", host, error);
        return sockFail(kSockNoHost);
    }
    error = osSocketCreate(0, &connecting.socket);
    if (error != 0) {
        sockLog(kLogError, "sockConnect: #::404 #::14", error);
        return sockFail(kSockNotCreated);
    }
    if (!sockSetOptions(connecting.socket, kSockBuffers, "sockConnect: #::405 #::14")) {
        osSocketClose(connecting.socket);
        return sockFail(kSockNoOption);
    }
    osSocketSetBlocking(connecting.socket, false);
    if (!connectInTries(&connecting)) {
        reportFailure(connecting);
        // Once only: a second close could meet a socket that another thread was
        // given in the meantime.
        osSocketClose(connecting.socket);
        return sockFail(kSockNotConnected);
    }
    progress(connecting, "sockConnect:    Connected");
    osSocketSetBlocking(connecting.socket, true);
    return connecting.socket;
}

bool sockBreak(uint32_t port) {
    sockLog(kLogDebug,
            "sockBreak: Connecting to listener in this process in order to break the lock");
    const Owned<String> host(sysGetComputerName());
    const Socket socket = sockConnect(host.get(), port, 0, kBreakTries);
    if (socket == kNoSocket) {
        sockLog(kLogDebug, "sockBreak:    Failed to connect to the listener");
        return false;
    }
    sockLog(kLogDebug, "sockBreak:    Connection was established - closing it again now");
    sockClose(socket);
    return true;
}
