#pragma once

#include "logger/Logger.h"

namespace Quorel {

class StringStream;

// A handle of its own for a class of the application layer.
class LoggerShellCpp {
  public:
    LoggerShellCpp();
    LoggerShellCpp(const LoggerShellCpp&) = delete;
    LoggerShellCpp& operator=(const LoggerShellCpp&) = delete;
    virtual ~LoggerShellCpp();

    // The handle; null when memory ran out.
    Logger* logger() const { return logger_; }
    bool isDebug() const;

    void fatal(const char* text);
    void error(const char* text);
    void info(const char* text);
    void verbose(const char* text);
    void debug(const char* text);

    // With arguments, in the order in which they were put into the stream. A
    // stream that holds a boolean gives none.
    void fatal(const char* text, StringStream arguments);
    void error(const char* text, StringStream arguments);

  private:
    Logger* logger_;
};

}  // namespace Quorel
