#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "containers/List.h"
#include "logger/LogConsole.h"
#include "logger/Logger.h"
#include "logger/LoggerShell.h"
#include "logger/MessageCatalogue.h"
#include "logger/MessageExpand.h"
#include "logger/StandardOutput.h"
#include "platform/clock.h"
#include "streams/StringStream.h"

namespace {

struct Heard {
    int level = kLogTrace;
    std::vector<std::string> lines;

    static bool hear(void* context, int level, LogForm form, const char* format, const LogArg* args,
                     uint32_t count) {
        Owned<String> text(messageExpand(format, form, args, count));
        static_cast<Heard*>(context)->lines.push_back(std::to_string(level) +
                                                      std::string(stringView(text.get())));
        return false;
    }
};

class LoggerTest : public testing::Test {
  protected:
    // A new record is what puts the logger into service after another test.
    LoggerTest() : logger(logCreate()) {
        LogListener* record = logListenerCreate(&heard, Heard::hear, &heard.level);
        logListenerDestroy(&record);
    }
    ~LoggerTest() override {
        logShutdown();
        messageCatalogueDestroy();
    }

    void listen() { ASSERT_TRUE(logAddGlobalListener(&heard, Heard::hear, &heard.level)); }

    Heard heard;
    Owned<Logger> logger;
};

template <typename... Args>
std::string expand(LogForm form, const char* format, const Args&... args) {
    const LogArg list[] = {LogArg(args)..., LogArg(0)};
    Owned<String> text(messageExpand(format, form, list, sizeof...(Args)));
    return std::string(stringView(text.get()));
}

TEST_F(LoggerTest, ExpandsReferencesWithAllOddities) {
    messageCatalogueCreate();
    messageCatalogueAdd(7, "seven %S");
    messageCatalogueAdd(8, "<#::7> %i");
    messageCatalogueAdd(9, "");
    constexpr const char* kCases[][2] = {{"#5", "#5"},
                                         {"#:5", "#:5"},
                                         {"##::7", "##::7"},
                                         {"end #", "end "},
                                         {"end #:", "end "},
                                         {"#::", "::"},
                                         {"#::x", "::#:x"},
                                         {"#:::7", "::seven A"},
                                         {"#::99999", "#::99999"},
                                         {"#::099%i", "#::99%i"},
                                         {"#::99#::7", "#::99#::7"},
                                         {"#::9%S", "A"},
                                         {"f: #::7, %i", "f: seven A, 2"},
                                         {"#::8!", "<seven A> 2!"},
                                         {"%i #::7", "A seven 2"}};
    for (const auto& [format, expected] : kCases)
        EXPECT_EQ(expected, expand(LogForm::Call, format, "A", 2)) << format;
}

TEST_F(LoggerTest, ExpandsTextsThatReferToEachOtherWithinBounds) {
    messageCatalogueCreate();
    messageCatalogueAdd(1, "x#::1");
    messageCatalogueAdd(2, "#::3#::3 #::3");
    messageCatalogueAdd(3, "#::2#::2 #::2");
    EXPECT_EQ("xxxxxxxxxxxxxxxx#::1", expand(LogForm::Call, "#::1"));
    EXPECT_GT(4000u, expand(LogForm::Call, "#::2").size());
}

TEST_F(LoggerTest, LettersTakeArgumentsOfAnyTypeSafely) {
    Owned<String> s(stringFromText("str"));
    const String* string = s.get();
    constexpr LogForm kCall = LogForm::Call;
    EXPECT_EQ("-1 4294967295 -1 18446744073709551615",
              expand(kCall, "%i %u %I %U", 0xFFFFFFFFu, -1, ~0ull, -1ll));
    EXPECT_EQ("1.5 c abc str str abc",
              expand(kCall, "%f %c %s %S %s %S", 1.5, 'c', "abc", string, string, "abc"));
    EXPECT_EQ("705032704", expand(kCall, "%t", 5000000000ull));
    EXPECT_EQ("5000000000", expand(LogForm::List, "%t", 5000000000ull));
    EXPECT_EQ("abc 1.5 97 7 5000000000 A x",
              expand(kCall, "%i %u %I %s %i %c %f", "abc", 1.5, 'a', 7, 5000000000, 65, "x"));
    EXPECT_EQ("<NULL><NULL>", expand(kCall, "%s%S", static_cast<const char*>(nullptr),
                                     static_cast<const String*>(nullptr)));
    EXPECT_EQ("a%b", expand(kCall, "%s", "a%b")) << "an argument is no format";
}

TEST_F(LoggerTest, PercentSignsWithAndWithoutArguments) {
    struct Case {
        LogForm form;
        const char* format;
        const char* without;
        const char* with;
    };
    constexpr Case kCases[] = {
        {LogForm::Call, "100%%", "100%%", "100"},  {LogForm::Call, "%d%", "%d%", ""},
        {LogForm::Call, "%i %i", "%i %i", "5 %i"}, {LogForm::Call, "%i%%", "%i%%", "5"},
        {LogForm::List, "100%%", "100%%", "100"},  {LogForm::List, "%i%%", "%i%%", "5%%"}};
    for (const auto& [form, format, without, with] : kCases) {
        EXPECT_EQ(without, expand(form, format)) << format;
        EXPECT_EQ(with, expand(form, format, 5)) << format;
    }
}

TEST_F(LoggerTest, NobodyHearsWhatIsAboveTheHighestLevel) {
    logError(logger.get(), "too early");
    listen();
    logFlood(logger.get(), "flood");
    logTrace(logger.get(), "t %u", 1);
    heard.level = kLogError;
    logLevelsChanged();
    EXPECT_FALSE(logWanted(kLogWarning));
    logWarning(logger.get(), "warning");
    logError(nullptr, "no logger");
    logError(logger.get(), "e");
    // A listener of a handle's own hears what is sent through that handle alone.
    Heard own;
    Owned<Logger> other(logCreate());
    ASSERT_TRUE(logAddListener(other.get(), logListenerCreate(&own, Heard::hear, &own.level)));
    logFatal(other.get(), "f");
    logFatal(logger.get(), "g");
    other.reset();
    EXPECT_EQ((std::vector<std::string>{"8t 1", "3e", "2f", "2g"}), heard.lines);
    EXPECT_EQ(std::vector<std::string>{"2f"}, own.lines);
    EXPECT_FALSE(logWanted(kLogWarning));
    logShutdown();
    EXPECT_FALSE(logWanted(kLogFatal));
    EXPECT_FALSE(logAddGlobalListener(&heard, Heard::hear, &heard.level));
}

TEST_F(LoggerTest, LocationsNameOurOwnSources) {
    listen();
    messageCatalogueCreate();
    messageCatalogueAdd(0, "in \"%s\", line %i");
    const int line = __LINE__ + 1;
    logLocation(logger.get(), kLogWarning);
    EXPECT_EQ("4   in \"tests/library/LoggerTest.cpp\", line " + std::to_string(line),
              heard.lines.at(0));
}

TEST_F(LoggerTest, TextsOfScriptsAndStreamsGoOutAsLists) {
    listen();
    messageCatalogueCreate();
    messageCatalogueAdd(7, "seven");
    Owned<String> text(stringFromText("50% of %S #::7"));
    logText(logger.get(), kLogInfo, text.get());
    Quorel::LoggerShellCpp shell;
    shell.info("plain %i");
    Quorel::StringStream stream;
    stream << int8_t{'c'} << int16_t{-3} << uint32_t{4000000000u} << uint64_t{1} << 2.25 << "z";
    shell.error("%c %i %u %t %f %s %i", stream);
    stream << true;
    shell.fatal("%c %i", stream);
    EXPECT_EQ((std::vector<std::string>{"550% of %S seven", "5plain %i",
                                        "3c -3 4000000000 1 2.25 z %i", "2%c %i"}),
              heard.lines);
}

TEST_F(LoggerTest, ConsoleWritesLinesAboveItsLevelOnly) {
    OsVirtualClock clock;
    clock.utc = 1236866709123;
    osVirtualClock = &clock;
    OsTimeOfDay local{};
    osTimeOfDayLocal(1236866709, &local);
    char time[12];
    snprintf(time, sizeof time, "%02d:%02d:%02d", local.hour, local.minute, local.second);
    Owned<LogConsole> console(logConsoleCreate(kLogWarning));
    ASSERT_TRUE(logConsoleRegister(console.get()));
    testing::internal::CaptureStdout();
    outputWrite("printed\n");
    logInfo(logger.get(), "not yet");
    logError(logger.get(), "bfileClose: %S - file %i", "50%d", 3);
    logConsoleSetLevel(console.get(), kLogTrace);
    logTrace(logger.get(), "t");
    logAt(logger.get(), 1, "odd");
    logConsoleSetLevel(console.get(), kLogSilent);
    logFatal(logger.get(), "silent");
    outputTryFlush(1000);
    const std::string at = "  (" + std::string(time) + "): ";
    EXPECT_EQ("printed\nERROR  " + at + "bfileClose: 50%d - file 3\ntrace  " + at + "t\n???????" +
                  at + "odd\n",
              testing::internal::GetCapturedStdout());
    osVirtualClock = nullptr;
}

TEST_F(LoggerTest, LinesOfManyThreadsStayWhole) {
    Owned<LogConsole> console(logConsoleCreate(kLogTrace));
    ASSERT_TRUE(logConsoleRegister(console.get()));
    testing::internal::CaptureStdout();
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([this] {
            for (int i = 0; i < 500; ++i) logTrace(logger.get(), "%S", std::string(90, 'x'));
        });
    for (std::thread& thread : threads) thread.join();
    outputWrite(std::string(200000, 'y'));
    EXPECT_TRUE(outputFlush());
    const std::string all = testing::internal::GetCapturedStdout();
    size_t at = 0;
    for (int i = 0; i < 2000; ++i) {
        const size_t end = all.find('\n', at);
        ASSERT_EQ(at + 21 + 90, end);
        at = end + 1;
    }
    EXPECT_EQ(std::string(200000, 'y'), all.substr(at));
}

}  // namespace
