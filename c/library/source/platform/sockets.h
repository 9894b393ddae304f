#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

// TCP over IPv4. Functions with an int result give the system's error number, 0
// for success; `osSocketErrorKind` tells what a number means. No child inherits a
// socket, and no signal ends a call or the program.

struct OsEvent;

using OsSocket = int64_t;
constexpr OsSocket kOsNoSocket = -1;

struct OsSocketAddress {
    uint32_t host = 0;  // the address's four bytes as they go over the wire
    uint16_t port = 0;
};

// What the error numbers of a system mean, as far as they are told apart.
enum class OsSocketError {
    Other,
    NotStarted,
    NetDown,
    Access,
    Interrupted,
    InProgress,
    Fault,
    NetReset,
    NoBuffers,
    NotConnected,
    NotSocket,
    NotSupported,
    ShutDown,
    MessageSize,
    HostUnreachable,
    Invalid,
    Aborted,
    Reset,
    TimedOut,
    WouldBlock
};
OsSocketError osSocketErrorKind(int error);

// ---- The system's library ----

// Starts it; `isRightVersion` tells whether it is version 2.0. To be ended once,
// also when the version is another one.
int osSocketsStart(bool* isRightVersion);
void osSocketsEnd();

// The number of the protocol TCP.
int osSocketTcpProtocol(int* protocol);

// ---- Names ----

// The first address of a host, given by its name or with four numbers. May take
// as long as a name server takes.
int osHostFind(std::string_view name, uint32_t* host);

// The name that belongs to an address; false when there is none.
bool osHostName(uint32_t host, std::string* name);

// The four numbers of an address.
std::string osHostText(uint32_t host);

// ---- Making and ending ----

int osSocketCreate(int protocol, OsSocket* socket);
// What is no socket stays open, with the error of kind `NotSocket`.
int osSocketClose(OsSocket socket);

enum class OsSocketOption {
    ReuseAddress,
    SendBuffer,
    ReceiveBuffer,
    NoDelay  // what is sent goes out at once
};
int osSocketSetOption(OsSocket socket, OsSocketOption option, int value);

// Whether calls on the socket wait.
int osSocketSetBlocking(OsSocket socket, bool blocking);

// ---- Listening ----

// Binds to the port at all addresses of the machine.
int osSocketBind(OsSocket socket, uint16_t port);
int osSocketListen(OsSocket socket, int backlog);

// Waits for a connection, or for a message to the calling thread that came after
// the last look at its queue: that is the error of kind `Interrupted`. The new
// socket has the listener's options, and its calls wait.
int osSocketAccept(OsSocket listener, OsSocket* socket, OsSocketAddress* peer);

// ---- Connecting ----

// Begins to connect a socket whose calls do not wait. `isUnderWay` tells that the
// error says no more than that. A socket that failed to connect can try again.
int osSocketConnect(OsSocket socket, const OsSocketAddress& address, bool* isUnderWay);

// What became of a connect that was under way: 0 for a connection.
int osSocketPendingError(OsSocket socket, int* pending);

// ---- Bytes ----

enum class OsSocketReady { Read, Write };

// Waits until a read or a write would not wait, which may be to tell of an error
// or of the end; until the event (may be null) was raised; or for the time.
int osSocketWait(OsSocket socket, OsSocketReady ready, uint64_t microseconds, OsEvent* event,
                 bool* isReady);

// Waits for bytes to read, at most the time, and reads what is there then, at most
// `length` bytes: `isReady` tells whether anything came, with `got` of 0 the end of
// the stream. An error is that of the wait where `hasWaited` is false.
int osSocketReadFirst(OsSocket socket, char* buffer, size_t length, uint64_t microseconds,
                      size_t* got, bool* isReady, bool* hasWaited);

// Sends the bytes, all of them where the socket's calls wait.
int osSocketSend(OsSocket socket, const char* data, size_t length);

// Reads what is there, at most `length` bytes, and never waits: the error is of
// kind `WouldBlock` when nothing is. `got` is 0 at the end of the stream.
int osSocketRead(OsSocket socket, char* buffer, size_t length, size_t* got);
