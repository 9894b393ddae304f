#pragma once

#include <source_location>

#include "config/ConfPatcher.h"

// Logs an error about up to two names, and the place of the call; gives false.
inline bool confFailed(const ConfPatcher* conf, const char* message, const String* name = nullptr,
                       const String* second = nullptr,
                       std::source_location where = std::source_location::current()) {
    logError(conf->logger, message, name, second);
    logLocation(conf->logger, kLogError, where);
    return false;
}
