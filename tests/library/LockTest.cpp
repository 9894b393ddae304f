#include "containers/Lock.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

TEST(Lock, KeepsThreadsApartAndLetsItsHolderInAgain) {
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
    EXPECT_EQ(0u, lock->depth);
}

TEST(Lock, EndsHeldOrFree) {
    Lock* lock = lockCreate();
    lockDestroy(&lock);
    EXPECT_EQ(nullptr, lock);
    lock = lockCreate();
    lockEnter(lock);
    lockDestroy(&lock);
    EXPECT_EQ(nullptr, lock);
    lockDestroy(&lock);
    lockEnter(nullptr);
    lockLeave(nullptr);
}
