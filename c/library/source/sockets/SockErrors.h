#pragma once

#include <cstdint>

#include "containers/Owned.h"
#include "logger/Logger.h"

// What failed sends, receives and waits say in the log.

enum SockTransfer : unsigned { kSockSends = 1, kSockReceives = 2 };

// Logs what a failed send or receive means, and gives its `SockStatus`.
uint32_t sockReportTransfer(SockTransfer transfer, int error);

// Logs why the wait of `sockHaveData` failed. Whether the connection is broken.
bool sockReportLook(int error);

// Logs a line of this module. The handle is made for the line: two threads use the
// module, and neither can tell when the other one is done with a common one.
template <typename... Args>
void sockLog(int level, const char* format, const Args&... args) {
    if (!logWanted(level)) return;
    const Owned<Logger> logger(logCreate());
    logAt(logger.get(), level, format, args...);
}
