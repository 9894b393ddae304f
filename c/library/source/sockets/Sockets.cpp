#include "sockets/Sockets.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <string>

#include "logger/StandardOutput.h"
#include "platform/clock.h"
#include "platform/messages.h"
#include "platform/mutex.h"
#include "platform/sockets.h"
#include "sockets/SockErrors.h"
#include "sockets/SockModule.h"
#include "strings/StringEdit.h"
#include "threads/QuitFlag.h"

namespace {

constexpr int kBufferSize = 8192;
constexpr int kBacklog = 5;
constexpr uint32_t kBindAttempts = 5;
constexpr uint32_t kBindWait = 2500;  // milliseconds, like all times here
constexpr uint32_t kSendAttempts = 10;
constexpr uint32_t kSendWait = 50;
constexpr uint32_t kFirstByteWait = 5000;
constexpr uint32_t kReceiveAttempts = 10;
constexpr uint32_t kWaitAfterPart = 25;
constexpr uint32_t kWaitAfterNothing = 50;
constexpr uint64_t kMicroseconds = 1000;  // in a millisecond
constexpr uint32_t kLongestPeer = 511;
constexpr uint64_t kNameTime = 1000;
constexpr uint32_t kLongestShown = 999;

// Counts the module's users. None must find the system's library half started or
// half ended by another thread.
struct Users {
    OsMutex mutex;
    const bool isUsable = osMutexInit(&mutex);
    uint32_t count = 0;
};

Users& theUsers() {
    static Users users;
    return users;
}

// Holds the count for the length of a scope.
class UsersScope {
  public:
    UsersScope() : users_(theUsers()) {
        if (users_.isUsable) osMutexLock(&users_.mutex);
    }
    ~UsersScope() {
        if (users_.isUsable) osMutexUnlock(&users_.mutex);
    }
    UsersScope(const UsersScope&) = delete;
    UsersScope& operator=(const UsersScope&) = delete;
    uint32_t& count() { return users_.count; }

  private:
    Users& users_;
};

std::atomic<uint32_t> lastFailure{0};

uint32_t startLibrary() {
    sockLog(kLogVerbose, "sockInit: Initializing first");
    bool isRightVersion = false;
    const int error = osSocketsStart(&isRightVersion);
    if (error != 0) {
        sockLog(kLogError, "sockInit: #::402 #::14", error);
        return kSockNoLibrary;
    }
    if (isRightVersion) return kSockDone;
    sockLog(kLogError, "sockInit: #::403");
    osSocketsEnd();
    return kSockNoLibrary;
}

constexpr struct {
    OsSocketOption option;
    int value;
    const char* name;
} kOptions[] = {
    {OsSocketOption::ReuseAddress, 1, "SO_REUSEADDR"},  // ORDER of SockOptions
    {OsSocketOption::SendBuffer, kBufferSize, "SO_SNDBUF"},
    {OsSocketOption::ReceiveBuffer, kBufferSize, "SO_RCVBUF"},
};

bool bindInAttempts(Socket socket, uint32_t port) {
    int error = 0;
    for (uint32_t attempt = 0; attempt < kBindAttempts; ++attempt) {
        error = osSocketBind(socket, static_cast<uint16_t>(port));
        if (error == 0) return true;
        outputFlush();
        // Whoever asks the thread to end need not wait for the attempts that are left.
        if (osWaitForEvent(quitEvent(), kBindWait) != OsWake::Timeout) break;
    }
    sockLog(kLogError, "sockCreateListener: #::406 #::14", error);
    return false;
}

Socket closeFailed(Socket socket, SockFailure failure) {
    osSocketClose(socket);
    return sockFail(failure);
}

// The peer's name and address, or its address alone. A peer that connects again
// and again is looked up once in a while only: that reads files or asks a server.
void describePeer(uint32_t address, char* host, uint32_t hostSize) {
    struct Known {
        uint64_t end;  // 0 for none
        uint32_t address;
        uint32_t length;
        char text[kLongestPeer];
    };
    thread_local Known last;
    const uint64_t now = osClockTicks();
    if (last.address != address || now >= last.end) {
        std::string text = osHostText(address);
        std::string name;
        if (osHostName(address, &name)) text = name + " (" + text + ")";
        last.end = osClockTicks() + kNameTime;
        last.address = address;
        last.length = std::min<uint32_t>(static_cast<uint32_t>(text.size()), kLongestPeer);
        std::memcpy(last.text, text.data(), last.length);
    }
    const uint32_t length = std::min(last.length, hostSize - 1);
    std::memcpy(host, last.text, length);
    host[length] = '\0';
}

SockFailure acceptFailure(OsSocketError kind) {
    switch (kind) {
        case OsSocketError::Interrupted:
            return kSockInterrupted;
        case OsSocketError::WouldBlock:
            return kSockWouldBlock;
        case OsSocketError::NotStarted:
            return kSockNotStarted;
        default:
            return kSockNotAccepted;
    }
}

void showBytes(const char* shown, const char* tooLarge, const char* data, uint32_t length) {
    if (!logWanted(kLogFlood)) return;
    if (length > kLongestShown) return sockLog(kLogFlood, tooLarge);
    LocalString text;
    stringAppendBytes(&text, data, length);
    stringMakePrintable(&text);
    sockLog(kLogFlood, shown, static_cast<const String*>(&text));
}

struct Reception {
    Socket socket;
    char* buffer;
    uint32_t length;
    uint32_t total = 0;
    bool isAtEnd = false;

    bool isDone() const { return isAtEnd || total == length; }
};

// What arrives within the attempt's time belongs to it: only its full time, the
// full length or the end of the stream ends it. The first attempt goes on behind
// the read that waited. Gives the error of a failed read.
int receiveOnce(Reception* reception, bool isFirst) {
    uint64_t end = isFirst ? osClockTicks() + kWaitAfterPart : 0;
    for (;; isFirst = false) {
        size_t got = 0;
        int error = 0;
        if (!isFirst)
            error = osSocketRead(reception->socket, reception->buffer + reception->total,
                                 reception->length - reception->total, &got);
        if (error != 0 && osSocketErrorKind(error) != OsSocketError::WouldBlock) return error;
        reception->total += static_cast<uint32_t>(got);
        if (!isFirst) reception->isAtEnd = error == 0 && got == 0;
        if (reception->isDone()) return 0;
        const uint64_t now = osClockTicks();
        if (end == 0) end = now + (error == 0 ? kWaitAfterPart : kWaitAfterNothing);
        bool isReady = false;
        if (now < end)
            osSocketWait(reception->socket, OsSocketReady::Read, (end - now) * kMicroseconds,
                         nullptr, &isReady);
        if (!isReady) return 0;
    }
}

}  // namespace

Socket sockFail(SockFailure failure) {
    lastFailure = failure;
    return kNoSocket;
}

bool sockSetOptions(Socket socket, SockOptions first, const char* format) {
    for (const auto& row : kOptions) {
        if (&row < kOptions + first) continue;
        const int error = osSocketSetOption(socket, row.option, row.value);
        if (error == 0) continue;
        sockLog(kLogError, format, row.name, error);
        return false;
    }
    // A number goes out in pieces, and the second one must not wait for the peer.
    osSocketSetOption(socket, OsSocketOption::NoDelay, 1);
    return true;
}

uint32_t sockInit() {
    UsersScope users;
    if (users.count() == 0) {
        const uint32_t status = startLibrary();
        if (status != kSockDone) return status;
    } else {
        sockLog(kLogFlood, "sockInit: Initializing %i", users.count() + 1);
    }
    ++users.count();
    return kSockDone;
}

void sockTerm() {
    UsersScope users;
    const uint32_t before = users.count();
    if (before > 0) --users.count();
    if (users.count() > 0) return sockLog(kLogTrace, "sockTerm: Terminating %i", before);
    sockLog(kLogVerbose, "sockTerm: Terminating last");
    osSocketsEnd();
}

Socket sockCreateListener(uint32_t port) {
    if (sockInit() != 0) return kNoSocket;
    int protocol = 0;
    int error = osSocketTcpProtocol(&protocol);
    if (error != 0) {
        sockLog(kLogError, "sockCreateListener: #::401 #::14", error);
        return sockFail(kSockNoProtocol);
    }
    Socket socket = kNoSocket;
    error = osSocketCreate(protocol, &socket);
    if (error != 0) {
        sockLog(kLogError, "sockCreateListener: #::404 #::14", error);
        return sockFail(kSockNotCreated);
    }
    // The socket stays open then, unlike after the failures below.
    if (!sockSetOptions(socket, kSockListener, "sockCreateListener: #::405 #::14"))
        return sockFail(kSockNoOption);
    if (!bindInAttempts(socket, port)) return closeFailed(socket, kSockNotBound);
    error = osSocketListen(socket, kBacklog);
    if (error == 0) return socket;
    sockLog(kLogError, "sockCreateListener: #::407 #::14", error);
    return closeFailed(socket, kSockNotListening);
}

Socket sockListen(Socket listener, char* host, uint32_t hostSize, uint32_t* port) {
    Socket socket = kNoSocket;
    OsSocketAddress peer;
    const int error = osSocketAccept(listener, &socket, &peer);
    if (error != 0) {
        const OsSocketError kind = osSocketErrorKind(error);
        // The thread was asked for something: no failure.
        const int level = kind == OsSocketError::Interrupted ? kLogDebug : kLogError;
        sockLog(level, "sockListen: #::408 #::14", error);
        return sockFail(acceptFailure(kind));
    }
    if (host != nullptr && hostSize > 0) describePeer(peer.host, host, hostSize);
    if (port != nullptr) *port = peer.port;
    if (sockInit() == kSockDone) return socket;
    osSocketClose(socket);
    return kNoSocket;
}

uint32_t sockSend(Socket socket, const char* data, uint32_t length) {
    sockLog(kLogFlood, "sockSend: Sending %i byte(s) through handle %u", length, socket);
    showBytes("sockSend:    Buffer=\"%s\"", "sockSend:    Buffer too large to write to debug", data,
              length);
    outputFlush();
    for (uint32_t attempt = 0; attempt < kSendAttempts; ++attempt) {
        const int error = osSocketSend(socket, data, length);
        if (error == 0) {
            sockLog(kLogFlood, "sockSend: Sent %i byte(s) through handle %u", length, socket);
            return kSockDone;
        }
        if (osSocketErrorKind(error) != OsSocketError::WouldBlock)
            return sockReportTransfer(kSockSends, error);
        bool isReady = false;
        osSocketWait(socket, OsSocketReady::Write, kSendWait * kMicroseconds, nullptr, &isReady);
    }
    sockLog(kLogError, "sockSend: #::413");
    return kSockFailed;
}

uint32_t sockReceive(Socket socket, char* buffer, uint32_t* length) {
    if (length == nullptr) return kSockError;
    size_t got = 0;
    bool isReady = false;
    bool hasWaited = false;
    outputFlush();
    int error = osSocketReadFirst(socket, buffer, *length, kFirstByteWait * kMicroseconds, &got,
                                  &isReady, &hasWaited);
    const bool wasInVain = error != 0 && osSocketErrorKind(error) == OsSocketError::WouldBlock;
    if (error != 0 && hasWaited && !wasInVain) return sockReportTransfer(kSockReceives, error);
    if (error != 0 && !hasWaited) {
        sockLog(kLogError, "sockReceive: #::415 #::14", error);
        return kSockWaitError;
    }
    if (!isReady) {
        sockLog(kLogWarning, "sockReceive: #::414");
        return kSockTimeout;
    }
    Reception reception{.socket = socket,
                        .buffer = buffer,
                        .length = *length,
                        .total = static_cast<uint32_t>(got),
                        .isAtEnd = got == 0 && !wasInVain};
    for (uint32_t attempt = 0; attempt < kReceiveAttempts && !reception.isDone(); ++attempt) {
        error = receiveOnce(&reception, attempt == 0 && !wasInVain);
        if (error != 0) return sockReportTransfer(kSockReceives, error);
    }
    if (reception.total == 0 && *length > 0) {
        sockLog(kLogError, "sockReceive: #::414");
        return kSockTimeout;
    }
    *length = reception.total;
    sockLog(kLogFlood, "sockReceive: Received %i byte(s) in total through handle %u", *length,
            socket);
    showBytes("sockReceive:    Buffer=\"%s\"", "sockReceive:    Buffer too large to write to debug",
              buffer, *length);
    return kSockDone;
}

bool sockHaveData(Socket socket, bool* closed, uint32_t timeoutMs) {
    if (closed != nullptr) *closed = false;
    // The rest of a second counts as microseconds: callers are used to it.
    const uint64_t microseconds = timeoutMs / 1000 * uint64_t{1000000} + timeoutMs % 1000;
    bool isReady = false;
    if (timeoutMs > 0) outputFlush();
    const int error = osSocketWait(socket, OsSocketReady::Read, microseconds, nullptr, &isReady);
    if (error == 0) return isReady;
    const bool isBroken = sockReportLook(error);
    if (closed != nullptr) *closed = isBroken;
    return false;
}

void sockFlushInput(Socket socket) {
    char dropped = 0;
    uint32_t length = 1;
    while (sockHaveData(socket, nullptr, 0) && sockReceive(socket, &dropped, &length) == kSockDone)
        length = 1;
}

uint32_t sockClose(Socket socket) {
    const int error = socket == kNoSocket ? 0 : osSocketClose(socket);
    if (error != 0) {
        sockLog(kLogError, "sockClose: #::411 #::14", error);
        return 0;
    }
    sockTerm();
    return kSockClosed;
}
