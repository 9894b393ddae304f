#include "platform/sockets.h"

#include <winsock2.h>

#include <windows.h>

#include <algorithm>
#include <climits>
#include <cstring>

#include "platform/clock.h"
#include "platform/messages.h"
#include "windows/WaitEvent.h"

namespace {

constexpr uint64_t kMicroseconds = 1000;  // in a millisecond
// How soon to look at an event while a socket is waited for.
constexpr uint64_t kStep = 10 * kMicroseconds;

constexpr struct {
    int error;
    OsSocketError kind;
} kErrorKinds[] = {
    {WSAEWOULDBLOCK, OsSocketError::WouldBlock}, {WSAECONNRESET, OsSocketError::Reset},
    {WSAESHUTDOWN, OsSocketError::ShutDown},     {WSAECONNABORTED, OsSocketError::Aborted},
    {WSAETIMEDOUT, OsSocketError::TimedOut},     {WSANOTINITIALISED, OsSocketError::NotStarted},
    {WSAENETDOWN, OsSocketError::NetDown},       {WSAEACCES, OsSocketError::Access},
    {WSAEINTR, OsSocketError::Interrupted},      {WSAEINPROGRESS, OsSocketError::InProgress},
    {WSAEFAULT, OsSocketError::Fault},           {WSAENETRESET, OsSocketError::NetReset},
    {WSAENOBUFS, OsSocketError::NoBuffers},      {WSAENOTCONN, OsSocketError::NotConnected},
    {WSAENOTSOCK, OsSocketError::NotSocket},     {WSAEOPNOTSUPP, OsSocketError::NotSupported},
    {WSAEMSGSIZE, OsSocketError::MessageSize},   {WSAEHOSTUNREACH, OsSocketError::HostUnreachable},
    {WSAEINVAL, OsSocketError::Invalid},
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

SOCKET handleOf(OsSocket socket) {
    return static_cast<SOCKET>(socket);
}

int resultOf(int called) {
    return called == 0 ? 0 : WSAGetLastError();
}

sockaddr_in systemAddress(const OsSocketAddress& address) {
    sockaddr_in made{};
    made.sin_family = AF_INET;
    made.sin_port = htons(address.port);
    made.sin_addr.s_addr = address.host;
    return made;
}

// The system's event that is set when a connection waits at a listener, for as
// long as this lives. The listener's calls do not wait meanwhile.
class AcceptEvent {
  public:
    explicit AcceptEvent(SOCKET listener) : listener_(listener), event_(WSACreateEvent()) {
        error_ = event_ == WSA_INVALID_EVENT
                     ? WSAGetLastError()
                     : resultOf(WSAEventSelect(listener, event_, FD_ACCEPT));
    }
    AcceptEvent(const AcceptEvent&) = delete;
    AcceptEvent& operator=(const AcceptEvent&) = delete;
    ~AcceptEvent() {
        WSAEventSelect(listener_, nullptr, 0);
        if (event_ != WSA_INVALID_EVENT) WSACloseEvent(event_);
    }

    int error() const { return error_; }
    HANDLE handle() const { return event_; }

  private:
    SOCKET listener_;
    WSAEVENT event_;
    int error_;
};

// An accepted socket comes with the listener's event and without waiting calls.
int makeUsual(SOCKET socket) {
    const int error = resultOf(WSAEventSelect(socket, nullptr, 0));
    SetHandleInformation(reinterpret_cast<HANDLE>(socket), HANDLE_FLAG_INHERIT, 0);
    return error != 0 ? error : osSocketSetBlocking(static_cast<OsSocket>(socket), true);
}

int selectFor(SOCKET socket, OsSocketReady ready, uint64_t microseconds, bool* isReady) {
    fd_set set;
    FD_ZERO(&set);
    FD_SET(socket, &set);
    timeval time{static_cast<long>(microseconds / 1000000),
                 static_cast<long>(microseconds % 1000000)};
    const bool reads = ready == OsSocketReady::Read;
    const int count = select(0, reads ? &set : nullptr, reads ? nullptr : &set, nullptr, &time);
    if (count == SOCKET_ERROR) return WSAGetLastError();
    *isReady = count > 0;
    return 0;
}

// Reads where a read does not wait.
int readReady(SOCKET socket, char* buffer, size_t length, size_t* got) {
    const int count = recv(socket, buffer, static_cast<int>(length), 0);
    if (count == SOCKET_ERROR) return WSAGetLastError();
    *got = static_cast<size_t>(count);
    return 0;
}

bool isRaised(const OsEvent* event) {
    return event != nullptr && WaitForSingleObject(windowsEventHandle(event), 0) == WAIT_OBJECT_0;
}

}  // namespace

OsSocketError osSocketErrorKind(int error) {
    for (const auto& row : kErrorKinds)
        if (row.error == error) return row.kind;
    return OsSocketError::Other;
}

int osSocketsStart(bool* isRightVersion) {
    constexpr WORD kVersion = MAKEWORD(2, 0);
    WSADATA data{};
    const int error = WSAStartup(kVersion, &data);
    *isRightVersion = error == 0 && data.wVersion == kVersion;
    return error;
}

void osSocketsEnd() {
    WSACleanup();
}

int osSocketTcpProtocol(int* protocol) {
    const protoent* found = getprotobyname("tcp");
    if (found == nullptr) return WSAGetLastError();
    *protocol = found->p_proto;
    return 0;
}

int osHostFind(std::string_view name, uint32_t* host) {
    const hostent* found = gethostbyname(std::string(name).c_str());
    if (found == nullptr) return WSAGetLastError();
    if (found->h_addrtype != AF_INET || found->h_addr_list[0] == nullptr) return WSANO_DATA;
    std::memcpy(host, found->h_addr_list[0], sizeof *host);
    return 0;
}

bool osHostName(uint32_t host, std::string* name) {
    const hostent* found =
        gethostbyaddr(reinterpret_cast<const char*>(&host), sizeof host, AF_INET);
    if (found == nullptr || found->h_name == nullptr) return false;
    *name = found->h_name;
    return true;
}

std::string osHostText(uint32_t host) {
    in_addr address{};
    address.s_addr = host;
    return inet_ntoa(address);
}

int osSocketCreate(int protocol, OsSocket* socket) {
    const SOCKET made = WSASocketA(AF_INET, SOCK_STREAM, protocol, nullptr, 0,
                                   WSA_FLAG_OVERLAPPED | WSA_FLAG_NO_HANDLE_INHERIT);
    *socket = static_cast<OsSocket>(made);
    return made == INVALID_SOCKET ? WSAGetLastError() : 0;
}

int osSocketClose(OsSocket socket) {
    return resultOf(closesocket(handleOf(socket)));
}

int osSocketSetOption(OsSocket socket, OsSocketOption option, int value) {
    const auto& row = kOptions[static_cast<int>(option)];
    return resultOf(setsockopt(handleOf(socket), row.level, row.name,
                               reinterpret_cast<const char*>(&value), sizeof value));
}

int osSocketSetBlocking(OsSocket socket, bool blocking) {
    u_long isNonBlocking = blocking ? 0 : 1;
    return resultOf(ioctlsocket(handleOf(socket), static_cast<long>(FIONBIO), &isNonBlocking));
}

int osSocketBind(OsSocket socket, uint16_t port) {
    const sockaddr_in address = systemAddress({htonl(INADDR_ANY), port});
    return resultOf(
        bind(handleOf(socket), reinterpret_cast<const sockaddr*>(&address), sizeof address));
}

int osSocketListen(OsSocket socket, int backlog) {
    return resultOf(listen(handleOf(socket), backlog));
}

int osSocketAccept(OsSocket listener, OsSocket* socket, OsSocketAddress* peer) {
    *socket = kOsNoSocket;
    const AcceptEvent event(handleOf(listener));
    if (event.error() != 0) return event.error();
    for (;;) {
        sockaddr_in address{};
        int size = sizeof address;
        const SOCKET made =
            accept(handleOf(listener), reinterpret_cast<sockaddr*>(&address), &size);
        if (made != INVALID_SOCKET) {
            *socket = static_cast<OsSocket>(made);
            *peer = {static_cast<uint32_t>(address.sin_addr.s_addr), ntohs(address.sin_port)};
            return makeUsual(made);
        }
        const int error = WSAGetLastError();
        if (error != WSAEWOULDBLOCK) return error;
        const HANDLE handle = event.handle();
        const DWORD woken = MsgWaitForMultipleObjects(1, &handle, FALSE, INFINITE, QS_POSTMESSAGE);
        if (woken == WAIT_OBJECT_0 + 1 && osWaitForEvent(nullptr, 0) != OsWake::Event)
            return WSAEINTR;
        WSAResetEvent(event.handle());
    }
}

int osSocketConnect(OsSocket socket, const OsSocketAddress& address, bool* isUnderWay) {
    const sockaddr_in wanted = systemAddress(address);
    const int error = resultOf(
        connect(handleOf(socket), reinterpret_cast<const sockaddr*>(&wanted), sizeof wanted));
    *isUnderWay = error == WSAEWOULDBLOCK;
    return error;
}

int osSocketPendingError(OsSocket socket, int* pending) {
    int size = sizeof *pending;
    return resultOf(getsockopt(handleOf(socket), SOL_SOCKET, SO_ERROR,
                               reinterpret_cast<char*>(pending), &size));
}

int osSocketWait(OsSocket socket, OsSocketReady ready, uint64_t microseconds, OsEvent* event,
                 bool* isReady) {
    *isReady = false;
    OsVirtualClock* clock = osVirtualClock.load(std::memory_order_acquire);
    uint64_t rest = clock == nullptr ? microseconds : 0;
    for (;;) {
        const uint64_t step = event == nullptr ? rest : std::min(rest, kStep);
        const int error = selectFor(handleOf(socket), ready, step, isReady);
        if (error != 0) return error;
        rest -= step;
        if (*isReady || isRaised(event)) return 0;
        if (rest == 0) break;
    }
    if (clock != nullptr) {
        clock->advance(microseconds / kMicroseconds);
        SwitchToThread();
    }
    return 0;
}

int osSocketSend(OsSocket socket, const char* data, size_t length) {
    const int count = static_cast<int>(std::min<size_t>(length, INT_MAX));
    return send(handleOf(socket), data, count, 0) == SOCKET_ERROR ? WSAGetLastError() : 0;
}

int osSocketRead(OsSocket socket, char* buffer, size_t length, size_t* got) {
    *got = 0;
    bool isReady = false;
    const int error = selectFor(handleOf(socket), OsSocketReady::Read, 0, &isReady);
    if (error != 0) return error;
    return isReady ? readReady(handleOf(socket), buffer, length, got) : WSAEWOULDBLOCK;
}

int osSocketReadFirst(OsSocket socket, char* buffer, size_t length, uint64_t microseconds,
                      size_t* got, bool* isReady, bool* hasWaited) {
    *got = 0;
    *hasWaited = false;
    const int error = osSocketWait(socket, OsSocketReady::Read, microseconds, nullptr, isReady);
    if (error != 0 || !*isReady) return error;
    *hasWaited = true;
    return readReady(handleOf(socket), buffer, length, got);
}
