#include "containers/Lock.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

TEST(Lock, KeepsThreadsApartAndEndsHeldOrFree) {
    for (const bool held : {false, true}) {
        Owned<Lock> lock(lockCreate());
        int counter = 0;
        std::vector<std::thread> threads;
        for (int i = 0; i < 4; ++i) {
            threads.emplace_back([&] {
                for (int round = 0; round < 2000; ++round) {
                    const LockScope outer(lock.get());
                    const LockScope inner(lock.get());
                    ++counter;
                }
            });
        }
        for (std::thread& thread : threads) thread.join();
        EXPECT_EQ(8000, counter);
        if (held) lockEnter(lock.get());
    }
}
