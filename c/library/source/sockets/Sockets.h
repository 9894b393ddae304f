#pragma once

#include <cstdint>

#include "strings/String.h"
#include "time/Time.h"

// TCP over IPv4: what stands below the protocol and the network commands. Sockets
// are plain handle numbers. Every one that is handed out holds a reference to the
// module, which its close gives back. Failures have been logged when a function
// returns; a failed send or receive leaves the socket open.

using Socket = int64_t;
constexpr Socket kNoSocket = -1;

// What the functions give; callers compare some of them.
enum SockStatus : uint32_t {
    kSockDone = 0,
    kSockNoLibrary = 1,  // the system has no sockets
    kSockReset = 8,      // the peer broke the connection
    kSockAborted = 9,    // the connection broke while receiving
    kSockClosed = 12,    // of `sockClose`: closed well
    kSockFailed = 13,    // of a send
    kSockError = 14,     // of a receive
    kSockTimeout = 15,   // nothing came
    kSockWaitError = 18  // the wait for bytes failed
};

// Starts the module, or counts one more user: 0, or 1 when the system has no sockets.
uint32_t sockInit();
// One user less; the last one ends the module.
void sockTerm();

// A socket that listens on the port at all addresses, after up to five attempts to
// get the port; the quit flag or a message to the calling thread ends them. -1 on
// failure.
Socket sockCreateListener(uint32_t port);

// Waits for a connection, however long it takes, or for a message to the calling
// thread that came after the last look at its queue. `host` (may be null) becomes the
// peer's name and address, at most `hostSize` - 1 bytes and a terminator; `port` (may
// be null) the peer's port. -1 on failure.
Socket sockListen(Socket listener, char* host, uint32_t hostSize, uint32_t* port);

// A connection to the host, or -1; `tries` of 0 stands for 100000. Failures come into
// the log at its upper levels only from the time `notBefore` on.
Socket sockConnect(const String* host, uint32_t port, Time notBefore, uint32_t tries);
// The same; `quiet` keeps the lines about progress out of the log.
Socket sockConnectEx(const String* host, uint32_t port, Time notBefore, uint32_t tries, bool quiet);

// Wakes a thread of this process that waits in `sockListen` on the port, by a
// connection that is closed again. Whether it could be made.
bool sockBreak(uint32_t port);

// Sends the bytes; 0, or a `SockStatus`.
uint32_t sockSend(Socket socket, const char* data, uint32_t length);

// Receives up to `*length` bytes within the attempts that there are; `*length`
// becomes the count that came, which may be less on a good status too.
uint32_t sockReceive(Socket socket, char* buffer, uint32_t* length);

// Whether bytes, or the end of the stream, can be read within the time: the
// thousands of `timeoutMs` as seconds, the rest as microseconds. `closed` (may be
// null) becomes true when the connection turns out to be broken.
bool sockHaveData(Socket socket, bool* closed, uint32_t timeoutMs);

// Drops what has arrived so far.
void sockFlushInput(Socket socket);

// 12 when the socket was closed, also for -1; 0 on failure.
uint32_t sockClose(Socket socket);
