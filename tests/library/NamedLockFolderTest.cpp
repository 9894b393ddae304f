#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "platform/machine.h"
#include "threads/NamedLock.h"

namespace fs = std::filesystem;

namespace {

bool takes(const char* name) {
    const Owned<String> text(stringFromView(name));
    const Owned<NamedLock> lock(namedLockCreate(text.get()));
    return namedLockTake(lock.get());
}

// The folder of the locks is one of the test's own, and the test an ordinary user.
TEST(NamedLockFolder, IsMadeForAllAndMayBeOutOfReach) {
    const fs::path place = fs::temp_directory_path() / ("locks" + std::to_string(getpid()));
    const fs::path folder = place / "locks";
    osSetEnvironment("QUOREL_LOCKS", folder.string());
    EXPECT_FALSE(takes("a")) << "nothing to make it in";
    fs::create_directory(place);
    const mode_t mask = umask(077);
    EXPECT_TRUE(takes("a"));
    umask(mask);
    struct stat status {};
    ASSERT_EQ(0, stat(folder.c_str(), &status));
    EXPECT_EQ(01777u, status.st_mode & 07777);
    ASSERT_EQ(0, stat((folder / "a").c_str(), &status));
    EXPECT_EQ(0666u, status.st_mode & 07777);
    fs::create_symlink("/etc/passwd", folder / "link");
    EXPECT_FALSE(takes("link"));

    chmod(folder.c_str(), 0555);
    const bool isRoot = seteuid(65534) == 0;
    EXPECT_TRUE(takes("a")) << "somebody else's file is enough";
    EXPECT_FALSE(takes("b"));
    ASSERT_EQ(0, isRoot ? seteuid(0) : 0);
    chmod(folder.c_str(), 0755);

    fs::remove_all(folder);
    std::ofstream(folder.c_str()) << "no folder";
    EXPECT_FALSE(takes("a"));
    fs::remove_all(place);
}

}  // namespace
