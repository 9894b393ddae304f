#include "platform/sockets.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sched.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstring>

#include "platform/clock.h"
#include "platform/messages.h"
#include "posix/ThreadQueue.h"

namespace {

constexpr uint64_t kMicroseconds = 1000;  // in a millisecond

constexpr struct {
    int error;
    OsSocketError kind;
} kErrorKinds[] = {
    {EAGAIN, OsSocketError::WouldBlock},
    {ECONNRESET, OsSocketError::Reset},
    {EPIPE, OsSocketError::ShutDown},
    {ESHUTDOWN, OsSocketError::ShutDown},
    {ECONNABORTED, OsSocketError::Aborted},
    {ETIMEDOUT, OsSocketError::TimedOut},
    {ENETDOWN, OsSocketError::NetDown},
    {EACCES, OsSocketError::Access},
    {EINTR, OsSocketError::Interrupted},
    {EINPROGRESS, OsSocketError::InProgress},
    {EFAULT, OsSocketError::Fault},
    {ENETRESET, OsSocketError::NetReset},
    {ENOBUFS, OsSocketError::NoBuffers},
    {ENOTCONN, OsSocketError::NotConnected},
    {ENOTSOCK, OsSocketError::NotSocket},
    {EBADF, OsSocketError::NotSocket},
    {EOPNOTSUPP, OsSocketError::NotSupported},
    {EMSGSIZE, OsSocketError::MessageSize},
    {EHOSTUNREACH, OsSocketError::HostUnreachable},
    {EINVAL, OsSocketError::Invalid},
};

// ORDER of OsSocketOption
constexpr struct {
    int level;
    int name;
} kOptions[] = {
    {SOL_SOCKET, SO_REUSEADDR},
    {SOL_SOCKET, SO_SNDBUF},
    {SOL_SOCKET, SO_RCVBUF},
    {IPPROTO_TCP, TCP_NODELAY},
};

int descriptorOf(OsSocket socket) {
    return socket < 0 || socket > INT32_MAX ? -1 : static_cast<int>(socket);
}

int resultOf(int called) {
    return called == 0 ? 0 : errno;
}

// The sockets made here, as far as their numbers are small: a read of theirs that
// waits comes back after `kReadTime`, which spares a call that only waits.
constexpr uint64_t kReadTime = 5000000;  // microseconds
constexpr size_t kTimedSockets = 1024;
std::atomic<bool> timedSockets[kTimedSockets];

void setTimed(int descriptor, bool isTimed) {
    if (descriptor >= 0 && static_cast<size_t>(descriptor) < kTimedSockets)
        timedSockets[descriptor] = isTimed;
}

bool isTimed(int descriptor) {
    return descriptor >= 0 && static_cast<size_t>(descriptor) < kTimedSockets &&
           timedSockets[descriptor];
}

void limitReads(int descriptor) {
    const timeval time{static_cast<time_t>(kReadTime / 1000000), 0};
    setTimed(descriptor, setsockopt(descriptor, SOL_SOCKET, SO_RCVTIMEO, &time, sizeof time) == 0);
}

sockaddr_in systemAddress(const OsSocketAddress& address) {
    sockaddr_in made{};
    made.sin_family = AF_INET;
    made.sin_port = htons(address.port);
    made.sin_addr.s_addr = address.host;
    return made;
}

// Polls for at most the time; gives what `poll` does. Signals do not count.
int pollFor(pollfd* entries, nfds_t count, uint64_t microseconds) {
    const uint64_t end = osSystemTicks() + (microseconds + kMicroseconds - 1) / kMicroseconds;
    uint64_t rest = microseconds;
    for (;;) {
        const timespec time{static_cast<time_t>(rest / 1000000),
                            static_cast<long>(rest % 1000000 * 1000)};
        const int ready = ppoll(entries, count, &time, nullptr);
        if (ready >= 0 || errno != EINTR) return ready;
        const uint64_t now = osSystemTicks();
        rest = std::min(rest, now < end ? (end - now) * kMicroseconds : 0);
    }
}

}  // namespace

OsSocketError osSocketErrorKind(int error) {
    for (const auto& row : kErrorKinds)
        if (row.error == error) return row.kind;
    return OsSocketError::Other;
}

int osSocketsStart(bool* isRightVersion) {
    *isRightVersion = true;
    return 0;
}

void osSocketsEnd() {}

int osSocketTcpProtocol(int* protocol) {
    *protocol = IPPROTO_TCP;
    return 0;
}

int osHostFind(std::string_view name, uint32_t* host) {
    const std::string text(name);
    // Numbers need no look at the system's files of names.
    if (inet_pton(AF_INET, text.c_str(), host) == 1) return 0;
    addrinfo wanted{};
    wanted.ai_family = AF_INET;
    wanted.ai_socktype = SOCK_STREAM;
    addrinfo* found = nullptr;
    const int error = getaddrinfo(text.c_str(), nullptr, &wanted, &found);
    if (error != 0) return error == EAI_SYSTEM ? errno : error;
    sockaddr_in address{};
    std::memcpy(&address, found->ai_addr, sizeof address);
    *host = address.sin_addr.s_addr;
    freeaddrinfo(found);
    return 0;
}

bool osHostName(uint32_t host, std::string* name) {
    const sockaddr_in address = systemAddress({host, 0});
    char found[NI_MAXHOST];
    if (getnameinfo(reinterpret_cast<const sockaddr*>(&address), sizeof address, found,
                    sizeof found, nullptr, 0, NI_NAMEREQD) != 0)
        return false;
    *name = found;
    return true;
}

std::string osHostText(uint32_t host) {
    char text[INET_ADDRSTRLEN] = "";
    inet_ntop(AF_INET, &host, text, sizeof text);
    return text;
}

int osSocketCreate(int protocol, OsSocket* socket) {
    const int made = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, protocol);
    *socket = made;
    if (made < 0) return errno;
    limitReads(made);
    return 0;
}

int osSocketClose(OsSocket socket) {
    // A number that a script made up may be that of a file.
    int type = 0;
    socklen_t size = sizeof type;
    if (!isTimed(descriptorOf(socket)) &&
        getsockopt(descriptorOf(socket), SOL_SOCKET, SO_TYPE, &type, &size) != 0)
        return errno;
    setTimed(descriptorOf(socket), false);
    close(descriptorOf(socket));  // whatever this says, the number is free again
    return 0;
}

int osSocketSetOption(OsSocket socket, OsSocketOption option, int value) {
    const auto& row = kOptions[static_cast<int>(option)];
    return resultOf(setsockopt(descriptorOf(socket), row.level, row.name, &value, sizeof value));
}

int osSocketSetBlocking(OsSocket socket, bool blocking) {
    return resultOf(fcntl(descriptorOf(socket), F_SETFL, blocking ? 0 : O_NONBLOCK));
}

int osSocketBind(OsSocket socket, uint16_t port) {
    const sockaddr_in address = systemAddress({htonl(INADDR_ANY), port});
    return resultOf(
        bind(descriptorOf(socket), reinterpret_cast<const sockaddr*>(&address), sizeof address));
}

int osSocketListen(OsSocket socket, int backlog) {
    // `osSocketAccept` waits beside the call, for messages too.
    const int error = osSocketSetBlocking(socket, false);
    return error != 0 ? error : resultOf(listen(descriptorOf(socket), backlog));
}

int osSocketAccept(OsSocket listener, OsSocket* socket, OsSocketAddress* peer) {
    *socket = kOsNoSocket;
    const int descriptor = descriptorOf(listener);
    for (;;) {
        sockaddr_in address{};
        socklen_t size = sizeof address;
        const int made =
            accept4(descriptor, reinterpret_cast<sockaddr*>(&address), &size, SOCK_CLOEXEC);
        if (made >= 0) {
            *socket = made;
            setTimed(made, isTimed(descriptor));  // the option is the listener's
            *peer = {address.sin_addr.s_addr, ntohs(address.sin_port)};
            return 0;
        }
        if (errno == EINTR) continue;
        if (errno != EAGAIN) return errno;
        pollfd entries[] = {{descriptor, POLLIN, 0}, {posixMessageDescriptor(), POLLIN, 0}};
        if (poll(entries, 2, -1) < 0) continue;
        if (entries[1].revents != 0 && osWaitForEvent(nullptr, 0) == OsWake::Message) return EINTR;
    }
}

int osSocketConnect(OsSocket socket, const OsSocketAddress& address, bool* isUnderWay) {
    const sockaddr_in wanted = systemAddress(address);
    int error = 0;
    // The call after a failure that was fetched before tells of it once more.
    for (int attempt = 0; attempt < 2; ++attempt) {
        error = resultOf(connect(descriptorOf(socket), reinterpret_cast<const sockaddr*>(&wanted),
                                 sizeof wanted));
        if (error != ECONNABORTED) break;
    }
    *isUnderWay = error == EINPROGRESS || error == EALREADY || error == EINTR;
    return error;
}

int osSocketPendingError(OsSocket socket, int* pending) {
    socklen_t size = sizeof *pending;
    return resultOf(getsockopt(descriptorOf(socket), SOL_SOCKET, SO_ERROR, pending, &size));
}

int osSocketWait(OsSocket socket, OsSocketReady ready, uint64_t microseconds, OsEvent* event,
                 bool* isReady) {
    const short wanted = ready == OsSocketReady::Read ? POLLIN : POLLOUT;
    pollfd entries[] = {{descriptorOf(socket), wanted, 0},
                        {posixEventDescriptor(event), POLLIN, 0}};
    *isReady = false;
    if (entries[0].fd < 0) return EBADF;
    OsVirtualClock* clock = osVirtualClock.load(std::memory_order_acquire);
    const int woken = pollFor(entries, 2, clock == nullptr ? microseconds : 0);
    if (woken < 0) return errno;
    if ((entries[0].revents & POLLNVAL) != 0) return EBADF;
    *isReady = entries[0].revents != 0;
    if (woken == 0 && clock != nullptr) {
        clock->advance(microseconds / kMicroseconds);
        sched_yield();
    }
    return 0;
}

int osSocketSend(OsSocket socket, const char* data, size_t length) {
    size_t sent = 0;
    do {
        const ssize_t count = send(descriptorOf(socket), data + sent, length - sent, MSG_NOSIGNAL);
        if (count >= 0) {
            sent += static_cast<size_t>(count);
        } else if (errno != EINTR) {
            return errno == EAGAIN && sent > 0 ? 0 : errno;
        }
    } while (sent < length);
    return 0;
}

int osSocketRead(OsSocket socket, char* buffer, size_t length, size_t* got) {
    *got = 0;
    ssize_t count;
    do count = recv(descriptorOf(socket), buffer, length, MSG_DONTWAIT);
    while (count < 0 && errno == EINTR);
    if (count < 0) return errno;
    *got = static_cast<size_t>(count);
    return 0;
}

int osSocketReadFirst(OsSocket socket, char* buffer, size_t length, uint64_t microseconds,
                      size_t* got, bool* isReady, bool* hasWaited) {
    *got = 0;
    *isReady = *hasWaited = false;
    const bool waitsInRead = microseconds == kReadTime && length > 0 &&
                             isTimed(descriptorOf(socket)) &&
                             osVirtualClock.load(std::memory_order_acquire) == nullptr;
    if (waitsInRead) {
        const ssize_t count = recv(descriptorOf(socket), buffer, length, 0);
        if (count < 0 && errno == EAGAIN) return 0;
        if (count >= 0) *got = static_cast<size_t>(count);
        *isReady = *hasWaited = count >= 0 || errno != EINTR;
        if (count >= 0 || errno != EINTR) return count >= 0 ? 0 : errno;
    }
    const int error = osSocketWait(socket, OsSocketReady::Read, microseconds, nullptr, isReady);
    if (error != 0 || !*isReady) return error;
    *hasWaited = true;
    return osSocketRead(socket, buffer, length, got);
}
