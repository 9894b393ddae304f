#include "threads/NamedLock.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "platform/machine.h"
#include "processes/ProcessCpp.h"

namespace fs = std::filesystem;

namespace {

// Takes the lock, starts a program that lives on, tells so, and ends when it may.
constexpr const char* kHolder = R"(
function main
  string line
  number own child thread
  setlock "NamedLockTest é/:%" "wait"
  getpid own
  spawn "\")" PLAINCAST_CHILD R"(\"" "sleep 60000" line child thread
  strtofile ( own . " " . child . " ." ) "held.txt"
  query "" "" line
end
)";

// Adds 1 to a number in a file many times, under the lock.
constexpr const char* kCounter = R"(
function main
  string count
  number at
  for ( at = 0 ) ( at < 20 ) ( ++ at )
    setlock "NamedLockTest count" "wait"
    filetostr "count.txt" count
    eval ( count = "" . ( &num count + 1 ) )
    strtofile count "count.txt"
    removelock "NamedLockTest count"
  end
end
)";

Owned<NamedLock> lockNamed(std::string_view name) {
    const Owned<String> text(stringFromView(name));
    return Owned<NamedLock>(namedLockCreate(text.get()));
}

class NamedLockTest : public testing::Test {
  protected:
    NamedLockTest()
        : folder_(fs::temp_directory_path() / ("namedlock" + std::to_string(std::rand()))),
          before_(fs::current_path()),
          program_(fs::absolute(PLAINCAST_PROGRAM).make_preferred().string()) {
        while (!fs::create_directory(folder_)) folder_ += "x";
        fs::current_path(folder_);
        osSetEnvironment("QUOREL_REGISTRY", (folder_ / "registry.db").string());
        osSetEnvironment("QUOREL_LOCKS", (folder_ / "locks").string());
        std::ofstream("holder.qcs") << kHolder;
        std::ofstream("counter.qcs") << kCounter;
    }
    ~NamedLockTest() override {
        fs::current_path(before_);
        fs::remove_all(folder_);
    }
    FILE* start(const char* script) const {
        return popen(("cd . && \"" + program_ + "\" --script " + script).c_str(), "w");
    }

  private:
    fs::path folder_;
    fs::path before_;
    std::string program_;
};

TEST_F(NamedLockTest, CountsTheTakesThatWait) {
    const Owned<NamedLock> lock = lockNamed("NamedLockTest");
    const Owned<NamedLock> other = lockNamed("NamedLockTest");
    EXPECT_FALSE(namedLockRelease(lock.get()));
    EXPECT_TRUE(namedLockTake(lock.get()));
    EXPECT_FALSE(namedLockTake(lock.get()));
    EXPECT_TRUE(namedLockTakeWaiting(lock.get()));
    EXPECT_TRUE(namedLockRelease(lock.get()));
    EXPECT_FALSE(namedLockTake(other.get()));
    EXPECT_TRUE(namedLockRelease(lock.get()));
    EXPECT_TRUE(namedLockTakeWaiting(other.get()));
    EXPECT_FALSE(namedLockTake(lock.get()));
    EXPECT_EQ(nullptr, lockNamed("").get());
}

TEST_F(NamedLockTest, NamesThatDifferAreDifferentLocks) {
    const bool windows = std::string_view(osPlatformName()) == "windows";
    const std::string longest(253, 'n');
    const std::string names[] = {"n",  "N",    "n ",       "n/m",  "n%2fm",    "n:m",
                                 "..", "\x81", "\xc3\xbc", "\xff", "n\nm\x01", longest};
    std::vector<Owned<NamedLock>> held;
    for (const std::string& name : names) {
        held.push_back(lockNamed(name));
        EXPECT_TRUE(namedLockTake(held.back().get())) << name;
    }
    // Where a lock is a file of its own these are names, too.
    const std::string others[] = {"Global\\n",
                                  longest + "n",
                                  longest + "m",
                                  {"n\0m", 3},
                                  std::string(100, 'n') + std::string(200, '%')};
    for (const std::string& name : others) {
        held.push_back(lockNamed(name));
        EXPECT_EQ(!windows, namedLockTake(held.back().get())) << name;
        EXPECT_EQ(false, windows && namedLockTakeWaiting(held.back().get())) << name;
    }
}

TEST_F(NamedLockTest, IsFreeWhenItsHolderHasEndedHowever) {
    const Owned<NamedLock> lock = lockNamed("NamedLockTest é/:%");
    for (const bool killed : {false, true}) {
        FILE* holder = start("holder.qcs");
        ASSERT_NE(nullptr, holder);
        uint32_t own = 0;
        uint32_t child = 0;
        for (std::string end; end != "."; std::ifstream("held.txt") >> own >> child >> end)
            std::this_thread::yield();
        EXPECT_FALSE(namedLockTake(lock.get()));
        std::thread wait([&] {
            EXPECT_TRUE(namedLockTakeWaiting(lock.get())) << killed;
            EXPECT_TRUE(namedLockRelease(lock.get())) << killed;
        });
        if (killed) Quorel::ProcessCpp(own, 0).terminate();
        fputs("end\n", holder);
        pclose(holder);
        wait.join();
        Owned<Process> survivor(processInitPid(child, 0));
        EXPECT_TRUE(processTerm(survivor.get())) << "the program that the holder started";
        fs::remove("held.txt");
    }
}

TEST_F(NamedLockTest, KeepsFourProcessesApart) {
    std::ofstream("count.txt") << "0";
    FILE* counters[4];
    for (FILE*& counter : counters) counter = start("counter.qcs");
    for (FILE* counter : counters) EXPECT_EQ(0, pclose(counter));
    std::string count;
    std::ifstream("count.txt") >> count;
    EXPECT_EQ("80", count);
}

}  // namespace
