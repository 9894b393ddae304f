#include "PlainCast.h"

#include <algorithm>

#include "AppCommands.h"
#include "logger/LogMessages.h"
#include "logger/StandardOutput.h"
#include "threads/QuitFlag.h"

namespace Quorel {

namespace {

// The longest time between two looks at what ends a wait.
constexpr uint32_t kPollMilliseconds = 100;
// How long the end of the program waits for the update thread's.
constexpr uint32_t kShutdownMilliseconds = 100;

PlainCast* theProgram = nullptr;

}  // namespace

PlainCast::PlainCast() {
    theProgram = this;
    threadModuleInit();
}

PlainCast::~PlainCast() {
    Thread* thread = updateThread_.thread();
    {
        const std::lock_guard hold(shutdownOrder_);
        quitFlagSet();
        scriptEngineDestroy(&engine_);
        logVerbose(logger(), "PlainCast::~PlainCast: Terminating");
    }
    threadWait(thread, kShutdownMilliseconds);
    threadModuleDone();
    logVerbose(logger(), "PlainCast::~PlainCast: Terminated");
    logShutdown();
    if (logSink_ != nullptr) logMessagesDone();
    logConsoleDestroy(&logSink_);
    delete logShell_;
    theProgram = nullptr;
}

PlainCast* PlainCast::current() {
    return theProgram;
}

bool PlainCast::run() {
    if (logShell_ == nullptr) return false;
    if (helpShown_ || parseOnly_) return true;
    if (!updateThread_.start()) {
        const Thread* thread = updateThread_.thread();
        const String* name = thread == nullptr ? nullptr : thread->name;
        logFatal(logger(), "PlainCast::run: Failed to start thread \"%S\"", name);
        return false;
    }
    awaitUpdate();
    logInfo(logger(), "PlainCast::run: Running");
    if (!quitFlagIsSet()) runScript();
    logVerbose(logger(), "PlainCast::run: Finished executing the script");
    if (timeNow() < runUntil)
        logDebug(logger(), "PlainCast::run: Waiting for designated run time to expire");
    waitForRunTime();
    logInfo(logger(), "PlainCast::run: Exited run");
    return true;
}

void PlainCast::runScript() {
    threadTouch(nullptr);
    if (threadQuitRequested()) return;
    if (runUsageFunction_) startFunction_ = "usage";
    if (scriptEngineRun(engine_, startFunction_.string())) return;
    logFatal(logger(), "PlainCast::run: #::1102");
    logLocation(logger(), kLogFatal);
}

void PlainCast::waitForRunTime() {
    while (!quitFlagIsSet()) {
        const Time now = timeNow();
        if (now >= runUntil || scriptHasExited()) return;
        threadTouch(nullptr);
        if (threadQuitRequested()) return;
        outputFlush();
        sleepInterruptible(
            static_cast<uint32_t>(std::min<Time>(runUntil - now, kPollMilliseconds)));
    }
}

void PlainCast::announceUpdate() {
    const std::lock_guard hold(startOrder_);
    updateAnnounced_ = true;
    startChanged_.notify_one();
}

void PlainCast::awaitUpdate() {
    std::unique_lock hold(startOrder_);
    startChanged_.wait(hold, [this] { return updateAnnounced_; });
}

unsigned PlainCast::update(Thread* thread) {
    auto* program = static_cast<PlainCast*>(thread->data);
    logDebug(program->logger(), "PlainCast::update: Starting");
    program->announceUpdate();
    while (!quitFlagIsSet()) {
        threadTouch(thread);
        if (threadQuitRequested()) break;
        sleepInterruptible(kPollMilliseconds);
    }
    const std::lock_guard hold(program->shutdownOrder_);
    logDebug(program->logger(), "PlainCast::update: Detected quit signal");
    return 0;
}

bool PlainCast::scriptHasExited() const {
    return (engine_->pending & kExitPending) != 0;
}

int PlainCast::exitCode() const {
    if (engine_ == nullptr) return 0;
    return scriptHasExited() ? engine_->exitValue : engine_->statusCode;
}

}  // namespace Quorel
