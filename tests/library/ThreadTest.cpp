#include "threads/Thread.h"

#include <gtest/gtest.h>

#include <mutex>
#include <string>
#include <vector>

#include "containers/Memory.h"
#include "logger/MessageExpand.h"
#include "platform/clock.h"
#include "platform/messages.h"
#include "platform/program.h"
#include "threads/QuitFlag.h"
#include "threads/ThreadCpp.h"

namespace {

constexpr uint32_t kHour = 3600 * 1000;

struct ThreadTest : testing::Test {
    ThreadTest() {
        threadModuleInit();
        quitFlagReset();
        uint32_t message = 0;
        while (osTakeMessage(&message)) continue;
    }
    ~ThreadTest() override { threadModuleDone(); }
};

struct VirtualClock {
    OsVirtualClock clock;
    VirtualClock() { osVirtualClock = &clock; }
    ~VirtualClock() { osVirtualClock = nullptr; }
};

// Collects what is logged, the threads' numbers masked.
struct LogTexts {
    std::mutex lock;
    std::vector<std::string> texts;
    std::string threadNumber;
    int level = kLogTrace;

    LogTexts() {
        // A new record puts the logger back into service.
        LogListener* record = logListenerCreate(this, listen, &level);
        logListenerDestroy(&record);
        logAddGlobalListener(this, listen, &level);
    }
    ~LogTexts() { logShutdown(); }
    static bool listen(void* context, int, LogForm form, const char* format, const LogArg* args,
                       uint32_t count) {
        auto* self = static_cast<LogTexts*>(context);
        Owned<String> text(messageExpand(format, form, args, count));
        const std::lock_guard hold(self->lock);
        self->texts.emplace_back(stringText(text.get()));
        return true;
    }
    std::vector<std::string> masked(uint32_t threadId) {
        const std::string number = std::to_string(threadId);
        std::vector<std::string> result = texts;
        for (std::string& text : result)
            for (size_t at; (at = text.find(number)) != std::string::npos;)
                text.replace(at, number.size(), "N");
        return result;
    }
};

unsigned endAtOnce(Thread*) {
    return 0;
}

unsigned runUntilAsked(Thread* thread) {
    do {
        threadTouch(thread);
        sleepInterruptible(kHour);
    } while (!quitFlagIsSet() && !threadQuitRequested());
    return 0;
}

Thread* startNamed(ThreadFunction function, const char* name) {
    Owned<String> text(stringFromText(name));
    Thread* thread = threadInitName(function, nullptr, text.get());
    return threadStart(thread) ? thread : nullptr;
}

TEST_F(ThreadTest, TakesOneMessageALookAndDropsUnrelatedOnes) {
    constexpr struct {
        uint32_t message;
        bool asksToStop;
    } kCases[] = {{16, true}, {0x401, false}, {2, true}, {18, false}, {0x400, false}};
    for (const auto& each : kCases)
        ASSERT_EQ(0, osPostMessage(osCurrentThreadId(), each.message)) << each.message;
    for (const auto& each : kCases)
        EXPECT_EQ(each.asksToStop, threadQuitRequested()) << each.message;
    EXPECT_FALSE(threadQuitRequested());
}

TEST_F(ThreadTest, PostsToLivingThreadsOnly) {
    Thread* thread = startNamed(endAtOnce, "short");
    ASSERT_TRUE(thread);
    ASSERT_TRUE(threadWait(thread, kHour));
    EXPECT_FALSE(threadSignalStop(thread));
    EXPECT_TRUE(threadSignalStop(nullptr));
    EXPECT_NE(0, osPostMessage(0x7FFFFFF0, kOsMessageClose));
}

TEST_F(ThreadTest, SleepsByTheClockUntilSomethingNewHappens) {
    const VirtualClock virtualClock;
    const auto passed = [](uint32_t milliseconds) {
        const uint64_t before = osClockTicks();
        sleepInterruptible(milliseconds);
        return osClockTicks() - before;
    };
    for (const uint32_t time : {0u, 49u, 50u, 51u, 175u}) EXPECT_EQ(time, passed(time));
    osVirtualClock.load()->ticks = UINT32_MAX - 10;  // the 32-bit tick begins again
    EXPECT_EQ(200u, passed(200));

    osPostMessage(osCurrentThreadId(), kOsMessageClose);
    EXPECT_EQ(0u, passed(100)) << "a new message ends the sleep";
    EXPECT_EQ(100u, passed(100)) << "but only one of them";
    EXPECT_TRUE(threadQuitRequested()) << "and it stays in the queue";

    quitFlagSet();
    EXPECT_EQ(0u, passed(100));
    EXPECT_EQ(49u, passed(49)) << "a short sleep is a plain one";
}

TEST_F(ThreadTest, EndsALongSleepOfAnotherThread) {
    Thread* first = startNamed(runUntilAsked, "first");
    Thread* second = startNamed(runUntilAsked, "second");
    ASSERT_TRUE(first && second);
    EXPECT_FALSE(threadStart(first)) << "it is running already";
    EXPECT_TRUE(threadSignalStop(first));
    EXPECT_TRUE(threadWait(first, kHour));
    EXPECT_FALSE(threadIsRunning(first));
    EXPECT_EQ(kThreadEnded, first->state);
    EXPECT_TRUE(threadIsRunning(second));
    quitFlagSet();
    EXPECT_TRUE(threadWait(second, kHour));
    EXPECT_NE(0u, second->lastTouch);
}

TEST_F(ThreadTest, LogsALifeInOrder) {
    LogTexts log;
    Thread* thread = startNamed(runUntilAsked, "a:b");
    ASSERT_TRUE(thread);
    const uint32_t number = thread->threadId;
    EXPECT_TRUE(threadSignalStop(thread));
    EXPECT_TRUE(threadWait(thread, kHour));
    threadModuleDone();
    EXPECT_FALSE(threadStart(nullptr));
    const std::vector<std::string> expected = {"threadInit: Created thread object",
                                               "threadStart: Starting thread \"a_b\"",
                                               "threadStart: Thread N (a_b) started",
                                               "threadSignalStop: Stopping thread N (a_b)",
                                               "threadSignalStop: Stop signal sent to thread N",
                                               "threadKill: Destroying thread N (\"a_b\")",
                                               "threadKill: Closing handle of:N"};
    EXPECT_EQ(expected, log.masked(number));
}

TEST_F(ThreadTest, TheEndOfTheListEndsWhatStillRuns) {
    LogTexts log;
    Thread* thread = threadInitFunc(runUntilAsked, nullptr);
    ASSERT_TRUE(threadStart(thread));
    const uint32_t number = thread->threadId;
    std::atomic<uint8_t> gone{0};
    thread->ownerFlag = &gone;
    threadModuleDone();
    EXPECT_EQ(1, gone);
    const std::vector<std::string> texts = log.masked(number);
    EXPECT_EQ("threadTerm: Killing thread N", texts.at(3));
    EXPECT_EQ("threadKill: Destroying thread N", texts.at(4));
}

TEST_F(ThreadTest, TheClassForgetsWhatTheListHasReaped) {
    Quorel::ThreadCpp ended;
    Quorel::ThreadCpp neverStarted;
    EXPECT_FALSE(ended.start()) << "nothing was created";
    ASSERT_TRUE(ended.create(endAtOnce, nullptr, "ended"));
    EXPECT_FALSE(ended.create(endAtOnce, nullptr, "again"));
    ASSERT_TRUE(neverStarted.create(endAtOnce, nullptr, "idle"));
    ASSERT_TRUE(ended.start());
    ASSERT_TRUE(threadWait(ended.thread(), kHour));
    EXPECT_NE(nullptr, ended.thread());
    {
        Quorel::ThreadCpp next;
        ASSERT_TRUE(next.create(endAtOnce, nullptr, "next"));
        ASSERT_TRUE(next.start());
    }
    EXPECT_EQ(nullptr, ended.thread());
}

TEST_F(ThreadTest, FailsCleanlyWithoutMemory) {
    Owned<String> name(stringFromText("name"));
    uint32_t failures = 0;
    for (Owned<Thread> thread; !thread; ++failures) {
        memFailAfter(failures, true);
        thread.reset(threadInitName(endAtOnce, nullptr, name.get()));
        memFailAfter(-1, false);
    }
    EXPECT_GT(failures, 2u);
}

struct DeepRun {
    bool messageCameAlong = false;
    size_t stackAtStart = 0;
    uint32_t depth = 0;
};

// Each level takes more than this; the sanitizers need a part of the rest.
constexpr size_t kFrame = 4096;
constexpr size_t kReserve = 256 * 1024;

void recurse(DeepRun* run) {
    volatile char frame[kFrame];
    frame[0] = 1;
    ++run->depth;
    if (osStackLeft() > kReserve) recurse(run);
    frame[kFrame - 1] = frame[0];
}

int goDeep(void* argument) {
    auto* run = static_cast<DeepRun*>(argument);
    run->messageCameAlong = threadQuitRequested();
    run->stackAtStart = osStackLeft();
    recurse(run);
    return 7;
}

TEST_F(ThreadTest, ADeepStackCanBeUsedUpToWhatIsToldToBeLeft) {
    DeepRun run;
    ASSERT_EQ(0, osPostMessage(osCurrentThreadId(), kOsMessageClose));
    EXPECT_EQ(7, osRunOnDeepStack(32 * 1024 * 1024, goDeep, &run));
    EXPECT_TRUE(run.messageCameAlong);
    EXPECT_GT(run.depth, 50u);
    EXPECT_LE(run.depth, (run.stackAtStart - kReserve) / kFrame + 1);
}

}  // namespace
