#pragma once

#include <cstdint>

#include "sockets/Sockets.h"

// What the files of this room share.

// What the module notes of its last failure.
enum SockFailure : uint32_t {
    kSockNotStarted = 1,
    kSockNoProtocol = 2,
    kSockNotCreated = 3,
    kSockNoOption = 4,
    kSockNotBound = 5,
    kSockNotListening = 6,
    kSockWouldBlock = 7,
    kSockNoHost = 10,
    kSockNotConnected = 11,
    kSockInterrupted = 16,
    kSockNotAccepted = 18
};

// Notes the failure; gives `kNoSocket`.
Socket sockFail(SockFailure failure);

// Which options a socket gets: the buffers, and before them what lets a listener
// have its port again at once.
enum SockOptions { kSockListener, kSockBuffers };

// Sets them. After a failure, false; `format` is logged with the option's name and
// the error.
bool sockSetOptions(Socket socket, SockOptions first, const char* format);
