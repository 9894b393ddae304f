#include "ScriptEngine3Functions/TimeCommands.h"

#include <algorithm>
#include <iterator>
#include <source_location>

#include "ScriptEngine3Defs/Arguments.h"
#include "ScriptEngine3Defs/ScriptContainers.h"
#include "logger/StandardOutput.h"
#include "platform/clock.h"
#include "strings/StringNumbers.h"
#include "threads/QuitFlag.h"
#include "time/TimeFormat.h"
#include "time/TimeParse.h"
#include "time/Zones.h"

namespace {

constexpr uint32_t kPlainSleepBelow = 50;
// What `maketime` takes off a year.
constexpr int32_t kYearsLeftOut = 1900;

Time timeOfSeconds(double seconds) {
    return timeFromEpoch(numberToInt64(seconds));
}

double secondsOf(Time time) {
    return static_cast<double>(timeToEpoch(time));
}

// Reports `message`, which has no arguments, with the place in our sources.
int failAt(ScriptEngine* engine, const char* message,
           const std::source_location& place = std::source_location::current()) {
    logError(engine->logger, message);
    logLocation(engine->logger, kLogError, place);
    return kOutOfMemory;
}

int scriptEngineTime(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    Arguments in(engine, block, args);
    ScriptObject* target = in.retyped(0, kTypeNumber);
    if (!in.ok()) return in.status();
    target->number = secondsOf(timeNow());
    return kDone;
}

int scriptEngineTimeToStr(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    Arguments in(engine, block, args);
    const double seconds = in.number(0);
    ScriptObject* target = in.retyped(1, kTypeString);
    if (!in.ok()) return in.status();
    Owned<String> text(timeToText(timeOfSeconds(seconds)));
    if (text && stringTake(&target->string, text.get())) return kDone;
    logError(engine->logger, "scriptEngineTimeToStr: #::100");
    return kOutOfMemory;
}

int scriptEngineStrToTime(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    Arguments in(engine, block, args);
    const String* text = in.string(0);
    ScriptObject* target = in.retyped(1, kTypeNumber);
    if (!in.ok()) return in.status();
    Time time;
    if (!timeFromText(&time, stringView(text)))
        return failAt(engine, "scriptEngineStrToTime: Failed to parse string time");
    target->number = secondsOf(time);
    return kDone;
}

// The keys of a broken down time. ORDER time-keys
enum TimeKey { kYear, kMon, kMday, kHour, kMin, kSec, kWday, kIsDst };
constexpr std::string_view kTimeKeys[] = {"year", "mon", "mday", "hour",
                                          "min",  "sec", "wday", "isdst"};
constexpr size_t kTimeKeyCount = std::size(kTimeKeys);

// Adds an entry, also where the key has one already: a second time in the same
// map leaves the first one there.
bool addEntry(Map* map, std::string_view key, double value) {
    Owned<ScriptObject> name(scriptObjectCreateString(key));
    Owned<ScriptObject> number(scriptObjectCreateNumber(value));
    if (!name || !number || !mapInsert(map, name.get(), number.get())) return false;
    name.release();
    number.release();
    return true;
}

bool addFields(Map* map, const DateTime& fields) {
    const uint32_t values[kTimeKeyCount] = {
        fields.date.year,    fields.date.month,   fields.date.day,  fields.clock.hour,
        fields.clock.minute, fields.clock.second, fields.date.wday, fields.dst == 1 ? 1u : 0u,
    };
    for (size_t at = 0; at < kTimeKeyCount; ++at)
        if (!addEntry(map, kTimeKeys[at], values[at])) return false;
    return true;
}

int breakDown(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, bool local,
              const char* name) {
    Arguments in(engine, block, args);
    const double seconds = in.number(0);
    ScriptObject* target = in.retyped(1, kTypeMap);
    if (!in.ok()) return in.status();
    DateTime fields;
    dateTimeSet(&fields, timeOfSeconds(seconds));
    if ((!local || dateTimeToLocal(&fields)) && addFields(target->map.map, fields)) return kDone;
    logError(engine->logger, "%s: #::100", name);
    return kOutOfMemory;
}

int scriptEngineLocalTime(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    return breakDown(engine, block, args, true, "scriptEngineLocalTime");
}

int scriptEngineGmTime(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    return breakDown(engine, block, args, false, "scriptEngineGmTime");
}

// The values by key; -1 where one is missing or no number. False without memory.
bool readFields(const Map* map, int32_t values[kTimeKeyCount]) {
    for (size_t at = 0; at < kTimeKeyCount; ++at) {
        Owned<ScriptObject> key(scriptObjectCreateString(kTimeKeys[at]));
        if (!key) return false;
        const auto* value = static_cast<const ScriptObject*>(mapGet(map, key.get()));
        const bool known = value != nullptr && value->type == kTypeNumber;
        values[at] = known ? numberToInt32(value->number) : -1;
    }
    return true;
}

bool timeOfFields(const int32_t values[kTimeKeyCount], Time* time) {
    if (values[kYear] < kYearsLeftOut) return false;
    const auto field = [](int32_t value) { return static_cast<uint32_t>(value); };
    return timeFromFields(time, field(values[kYear] - kYearsLeftOut), field(values[kMon]) - 1,
                          field(values[kMday]), field(values[kHour]), field(values[kMin]),
                          field(values[kSec]), 0);
}

// The year and the month are taken less 1900 and 1, so this is not the reverse
// of `gmtime`: most dates fail. Scripts know it so.
int scriptEngineMakeTime(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    Arguments in(engine, block, args);
    const ScriptObject* map = in.typed(0, kTypeMap);
    int32_t values[kTimeKeyCount];
    // Read before the target is made a number: it may be the map.
    const bool read = in.ok() && readFields(map->map.map, values);
    ScriptObject* target = in.retyped(1, kTypeNumber);
    if (!in.ok()) return in.status();
    Time time = 0;
    if (!read || !timeOfFields(values, &time))
        return failAt(engine, "scriptEngineMakeTime: #::100");
    target->number = secondsOf(time);
    return kDone;
}

int scriptEngineSleep(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    Arguments in(engine, block, args);
    const double milliseconds = in.number(0);
    if (!in.ok()) return in.status();
    outputFlush();
    scriptSleep(numberToUInt32(milliseconds));
    return kDone;
}

int scriptEngineGetTick(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    Arguments in(engine, block, args);
    ScriptObject* target = in.target(0, kTypeNumber);
    if (!in.ok()) return in.status();
    target->number = osClockTick32();
    return kDone;
}

constexpr CommandRow kTimeCommands[] = {
    {"time", scriptEngineTime, 1, 1, "1", kAnywhere},
    {"timetostr", scriptEngineTimeToStr, 2, 2, "2"},
    {"strtotime", scriptEngineStrToTime, 2, 2, "2"},
    {"localtime", scriptEngineLocalTime, 2, 2, "2"},
    {"gmtime", scriptEngineGmTime, 2, 2, "2"},
    {"maketime", scriptEngineMakeTime, 2, 2, "2"},
    {"sleep", scriptEngineSleep, 1, 1, nullptr},
    {"gettick", scriptEngineGetTick, 1, 1, "1"},
};

}  // namespace

void scriptSleep(uint32_t milliseconds) {
    if (milliseconds < kPlainSleepBelow) {
        osSleep(milliseconds);
        return;
    }
    const uint64_t target = uint64_t{osClockTick32()} + milliseconds;
    while (!quitFlagIsSet()) {
        const uint32_t now = osClockTick32();
        if (now >= target) return;
        // A message ends one wait; this one goes on.
        sleepInterruptible(static_cast<uint32_t>(std::min<uint64_t>(target - now, UINT32_MAX)));
    }
}

std::span<const CommandRow> timeCommands() {
    return kTimeCommands;
}
