#include "logger/LogConsole.h"

#include <cstring>

#include "containers/Lock.h"
#include "containers/Memory.h"
#include "logger/MessageExpand.h"
#include "logger/StandardOutput.h"
#include "strings/String.h"
#include "time/Time.h"
#include "time/Zones.h"

namespace {

constexpr uint32_t kLineRoom = 200;

// Local time to the second. The zone is worked out once a second only.
struct WallClock {
    Time second = ~Time{0};
    ClockFields fields{};
};

const ClockFields& localClock() {
    static thread_local WallClock last;
    const Time now = timeNow();
    if (now / kMsPerSecond != last.second) {
        DateTime local;
        dateTimeSet(&local, now);
        dateTimeToLocal(&local);
        last.second = now / kMsPerSecond;
        last.fields = local.clock;
    }
    return last.fields;
}

void appendTwoDigits(String* line, uint32_t value) {
    const char digits[] = {static_cast<char>('0' + value / 10),
                           static_cast<char>('0' + value % 10)};
    stringAppendBytes(line, digits, sizeof digits);
}

void appendPrefix(String* line, int level) {
    const ClockFields& clock = localClock();
    stringAppendText(line, logLevelLabel(level));
    stringAppendText(line, "  (");
    appendTwoDigits(line, clock.hour);
    stringAppendChar(line, ':');
    appendTwoDigits(line, clock.minute);
    stringAppendChar(line, ':');
    appendTwoDigits(line, clock.second);
    stringAppendText(line, "): ");
}

}  // namespace

LogConsole* logConsoleCreate(int level) {
    Owned<LogConsole> console(memNew<LogConsole>());
    if (!console) return nullptr;
    *console = {lockCreate(), level, level, kLogTrace};
    return console->lock == nullptr ? nullptr : console.release();
}

void logConsoleDestroy(LogConsole** console) {
    if (console == nullptr || *console == nullptr) return;
    lockDestroy(&(*console)->lock);
    memDelete(console);
}

bool logConsoleRegister(LogConsole* console) {
    return console != nullptr && logAddGlobalListener(console, logConsoleWrite, &console->level);
}

void logConsoleSetLevel(LogConsole* console, int level) {
    if (console == nullptr) return;
    console->level = level;
    if (level == kLogSilent) console->ceiling = kLogSilent;
    logLevelsChanged();
}

bool logConsoleWrite(void* context, int level, LogForm form, const char* format, const LogArg* args,
                     uint32_t count) {
    LogConsole* console = static_cast<LogConsole*>(context);
    if (console == nullptr) return false;
    if (level > console->level) return true;
    Owned<String> line(stringNew(kLineRoom));
    if (!line) return false;
    appendPrefix(line.get(), level);
    messageExpandInto(line.get(), format, form, args, count);
    // A zero byte ends the message, as it ends every text that is printed.
    stringSetLength(line.get(), static_cast<uint32_t>(std::strlen(stringText(line.get()))));
    if (!stringAppendChar(line.get(), '\n')) return false;
    const LockScope hold(console->lock);
    outputWrite(stringView(line.get()));
    return true;
}
