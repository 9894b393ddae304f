#include "ScriptEngine3Functions/TimeCommands.h"

#include <gtest/gtest.h>

#include <thread>

#include "platform/clock.h"
#include "threads/QuitFlag.h"

namespace {

constexpr uint32_t kMinute = 60 * 1000;
constexpr uint32_t kHour = 60 * kMinute;

struct SleepTest : testing::Test {
    OsVirtualClock clock;
    SleepTest() {
        quitFlagReset();
        osVirtualClock = &clock;
    }
    ~SleepTest() override {
        osVirtualClock = nullptr;
        quitFlagReset();
    }
    uint64_t slept(uint32_t milliseconds) {
        const uint64_t before = clock.ticks;
        scriptSleep(milliseconds);
        return clock.ticks - before;
    }
};

TEST_F(SleepTest, LastsItsTime) {
    for (const uint32_t milliseconds : {0u, 1u, 49u, 50u, 51u, 12345u, kMinute})
        EXPECT_EQ(milliseconds, slept(milliseconds));
    quitFlagSet();
    EXPECT_EQ(49u, slept(49)) << "too short for a look at the flag";
    EXPECT_EQ(0u, slept(kHour));
}

// The clock of the machine: nobody waits for more than the other thread's start.
TEST_F(SleepTest, EndsAtOnceWhenAnotherThreadSetsTheFlag) {
    osVirtualClock = nullptr;
    const uint64_t began = osClockTicks();
    std::thread other(quitFlagSet);
    scriptSleep(kHour);
    other.join();
    EXPECT_GT(kHour / 2, osClockTicks() - began);
}

TEST_F(SleepTest, BeyondTheLastTickOnlyTheFlagEndsIt) {
    clock.ticks = UINT32_MAX - 100;
    const uint64_t much = UINT32_MAX + uint64_t{kMinute};
    std::thread other([this, much] {
        while (clock.ticks < much) std::this_thread::yield();
        quitFlagSet();
    });
    scriptSleep(200);
    other.join();
    EXPECT_LE(much, clock.ticks);
}

}  // namespace
