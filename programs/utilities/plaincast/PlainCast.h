#pragma once

#include <condition_variable>
#include <map>
#include <mutex>

#include "ScriptEngine3/ScriptEngine.h"
#include "logger/LogConsole.h"
#include "logger/LoggerShell.h"
#include "strings/StringCpp.h"
#include "threads/ThreadCpp.h"

namespace Quorel {

// The program: one object, made by `main`, from the command line to the exit code.
class PlainCast {
  public:
    PlainCast();
    PlainCast(const PlainCast&) = delete;
    PlainCast& operator=(const PlainCast&) = delete;
    // Ends whatever was made, threads included, and the logger last.
    virtual ~PlainCast();

    // Reads the command line and parses the script; nothing of it has run
    // afterwards. False, after a message, for a configuration error. Called once.
    bool configure(int argc, char** argv);

    // Runs the script and waits out the least run time. False only when the
    // program itself fails: a script that fails is no failure here.
    bool run();

    // What the process ends with after `run`.
    int exitCode() const;

    // The one object of the process.
    static PlainCast* current();

  private:
    class OptionReader;
    using Variables = std::map<StringCpp, StringCpp>;

    // The steps of `configure`; each false after its message.
    bool startLogger();
    bool startEngine();
    bool chooseScript(int argc, char** argv, Variables* variables);
    bool locateScript(StringCpp* directory);
    bool registerCommands();
    bool addVariables(const Variables& variables, const StringCpp& directory);
    bool addBinDirectory();
    bool createUpdateThread();
    bool parseScript();

    // Writes the usage text to standard output or to standard error. Gives its
    // argument, so that callers can give it on.
    bool printUsage(bool toStdout);

    bool addVariable(const char* name, const String* value);
    Logger* logger() const { return logShell_ == nullptr ? nullptr : logShell_->logger(); }

    void runScript();
    void waitForRunTime();
    bool scriptHasExited() const;
    void announceUpdate();
    void awaitUpdate();
    // The body of the update thread.
    static unsigned update(Thread* thread);

    bool helpShown_ = false;
    LoggerShellCpp* logShell_ = nullptr;
    LogConsole* logSink_ = nullptr;
    ScriptEngine* engine_ = nullptr;
    StringCpp scriptPath_;
    bool parseOnly_ = false;
    StringCpp startFunction_;  // empty means "main"
    bool runUsageFunction_ = false;
    ThreadCpp updateThread_;

    // Two threads log around the start and the end of the run. These keep their
    // lines in one order, whatever the machine is doing.
    // No std::latch: MinGW's looks at its count outside of its lock, and sleeps on
    // when the count falls just then.
    std::mutex startOrder_;
    std::condition_variable startChanged_;
    bool updateAnnounced_ = false;
    std::mutex shutdownOrder_;
};

}  // namespace Quorel
