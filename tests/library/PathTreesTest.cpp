#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>

#include "PathFolder.h"
#include "paths/DirectoryList.h"
#include "paths/PathOperations.h"
#include "paths/Paths.h"
#include "paths/TreeWalk.h"

// Names, links and files of other kinds that only this system has.

namespace {

namespace fs = std::filesystem;

bool isLinkTo(const char* path, const char* target) {
    return fs::is_symlink(path) && fs::read_symlink(path) == target;
}

std::string permissions(const std::string& path) {
    struct stat status {};
    stat(path.c_str(), &status);
    char text[8];
    snprintf(text, sizeof text, "%o", static_cast<unsigned>(status.st_mode & 07777));
    return text;
}

class PathTrees : public PathFolder {
  protected:
    void SetUp() override {
        PathFolder::SetUp();
        fs::create_directories("victim");
        fs::create_directories("tree/below");
        write("victim/x", "kept");
    }
};

TEST_F(PathTrees, NoNameLeadsOutOfATree) {
    const std::string longest(255, 'n');
    const std::string names[] = {
        "..\\victim\\x", "..\\..\\victim\\x", "\\", "%fonts%", "\xff\xfe\x80", "a\nb", " ",
        longest};
    for (const std::string& name : names) {
        write("tree/" + name, "bait");
        write("tree/below/" + name, "bait");
    }
    fs::create_directory("tree/..\\victim");
    write("tree/..\\victim/x", "bait");
    DirectoryList list;
    ASSERT_TRUE(pathListDirectory(text("tree").get(), nullptr, &list));
    EXPECT_EQ(6u, list.size());
    EXPECT_EQ(4u, list.unnamed());
    EXPECT_EQ(0u, code2(pathCopyDirectory, "tree", "copy", true));
    for (const std::string& name : names) EXPECT_EQ("bait", read("copy/below/" + name)) << name;
    EXPECT_EQ("bait", read("copy/..\\victim/x"));
    for (const char* tree : {"tree", "copy"}) {
        EXPECT_EQ(0u, code(pathRemoveDirectory, tree, true, true));
        EXPECT_EQ("kept", read("victim/x"));
    }
}

TEST_F(PathTrees, LinksAreLinks) {
    fs::create_symlink("../victim", "tree/out");
    fs::create_symlink("..", "tree/below/loop");
    fs::create_symlink("nowhere", "tree/dangling");
    write("f", "file");
    fs::create_symlink("f", "to file");
    fs::create_symlink("tree", "to tree");
    DirectoryList list;
    ASSERT_TRUE(pathListDirectory(text("to tree").get(), text("*").get(), &list));
    list.sort();
    const bool leads[] = {true, false, true};  // below, dangling, out
    ASSERT_EQ(3u, list.size());
    for (uint32_t i = 0; i < 3; ++i) EXPECT_EQ(leads[i], list[i].isDirectory) << list[i].name;

    EXPECT_EQ(0u, code2(pathCopyDirectory, "tree", "copy", false));
    EXPECT_TRUE(isLinkTo("copy/out", "../victim"));
    EXPECT_TRUE(isLinkTo("copy/below/loop", ".."));
    EXPECT_TRUE(isLinkTo("copy/dangling", "nowhere"));
    EXPECT_EQ(0u, code2(pathCopy, "to file", "copied", false)) << "what a link leads to";
    EXPECT_FALSE(fs::is_symlink("copied"));
    EXPECT_EQ(0u, code2(pathMove, "copy/out", "moved", true));
    EXPECT_TRUE(isLinkTo("moved", "../victim"));
    // A link over its own target would leave neither.
    EXPECT_EQ(kPathTargetExists, code2(pathMove, "to file", "f", true));
    EXPECT_EQ(kPathTargetExists, code2(pathCopy, "f", "to file", true));
    EXPECT_EQ(kPathTargetExists, code2(pathCopyDirectory, "to tree", "tree/below/loop/x", true));
    EXPECT_EQ(kPathTargetExists, code2(pathCopyDirectory, "tree", "to tree", true));
    EXPECT_EQ("file", read("f"));

    EXPECT_EQ(kPathNotDirectory, code(pathRemoveDirectory, "to file", true, true));
    EXPECT_EQ(0u, code(pathRemoveDirectory, "to tree/", true, true));
    EXPECT_FALSE(fs::is_symlink("to tree"));
    EXPECT_EQ("/", read("tree/below"));
    EXPECT_EQ(0u, code(pathRemoveDirectory, "tree", true, true));
    EXPECT_EQ("kept", read("victim/x"));
}

TEST_F(PathTrees, PipesAndDevicesAreNotOpened) {
    ASSERT_EQ(0, mkfifo("tree/pipe", 0666));
    write("f", "file");
    // Opened, any of these would wait for another program.
    EXPECT_EQ(kPathSystem, code2(pathCopy, "tree/pipe", "new", true));
    EXPECT_EQ(kPathSystem, code2(pathCopy, "f", "tree/pipe", true));
    EXPECT_EQ(kPathSystem, code2(pathCopy, "/dev/zero", "new", true));
    EXPECT_EQ(kPathSystem, code2(pathCopy, "f", "/dev/null", true));
    EXPECT_EQ(kPathSystem, code2(pathCopyDirectory, "tree", "copy", true));
    EXPECT_EQ("-", read("new"));
    EXPECT_EQ(0u, code2(pathMove, "tree/pipe", "tree/other", true));
    EXPECT_EQ(0u, code(pathRemoveDirectory, "tree", true, true));
    EXPECT_EQ(0u, code2(pathCopy, "/proc/self/status", "status", true)) << "a file without a size";
    EXPECT_EQ(0u, read("status").find("Name:"));
}

TEST_F(PathTrees, CopiesKeepWhatBelongsToTheContents) {
    write("tree/script", std::string(200000, 'x') + "end");
    chmod("tree/script", 04751);
    chmod("tree/below", 0500);
    const timespec times[] = {{0, UTIME_OMIT}, {1000000000, 0}};
    ASSERT_EQ(0, utimensat(AT_FDCWD, "tree/script", times, 0));
    int sparse = open("tree/sparse", O_WRONLY | O_CREAT, 0600);
    ASSERT_EQ(1, pwrite(sparse, "a", 1, 30 << 20));
    ASSERT_EQ(0, ftruncate(sparse, 50 << 20));
    close(sparse);
    const mode_t mask = umask(022);
    EXPECT_EQ(0u, code2(pathCopyDirectory, "tree", "copy", true));
    umask(mask);
    EXPECT_EQ("751", permissions("copy/script"));
    EXPECT_EQ("700", permissions("copy/below")) << "never open to more than the source";
    struct stat status {};
    ASSERT_EQ(0, stat("copy/script", &status));
    EXPECT_EQ(1000000000, status.st_mtim.tv_sec);
    ASSERT_EQ(0, stat("copy/sparse", &status));
    EXPECT_EQ(50 << 20, status.st_size);
    EXPECT_LT(status.st_blocks, 4096) << "the holes stay holes";
    for (const char* file : {"script", "sparse"}) {
        const std::string name = file;
        EXPECT_EQ(0u, code2(pathCopy, "tree/" + name, "victim/x", true));
        EXPECT_TRUE(read("victim/x") == read("tree/" + name)) << name;
    }
    write("tree/script", "short");
    EXPECT_EQ(0u, code2(pathCopy, "tree/script", "victim/x", true));
    EXPECT_EQ("short", read("victim/x"));
}

TEST_F(PathTrees, ModesAreWriteBits) {
    write("f", "");
    chmod("f", 0666);
    EXPECT_EQ(0u, code(pathSetMode, "f", 0u));
    EXPECT_EQ("444", permissions("f"));
    EXPECT_EQ(0u, code(pathSetMode, "f", 0777u));
    EXPECT_EQ("644", permissions("f"));
    chmod("tree/below", 0555);
    EXPECT_EQ(0555u, pathMode(text("tree/below/").get()));
    EXPECT_EQ(kPathSystem, code(pathRemoveDirectory, "tree", true, false));
    EXPECT_EQ(0u, code(pathSetMode, "tree/below", 0777u));
    EXPECT_EQ(0u, code(pathRemoveDirectory, "tree", true, false));
}

TEST_F(PathTrees, WithoutRoomNothingIsLost) {
    write("big", std::string(300000, 'b'));
    write("old", "old contents");
    fs::create_directory("tree2");
    fs::rename("big", "tree2/big");
    signal(SIGXFSZ, SIG_IGN);
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    const rlimit small{100000, before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &small);
    EXPECT_EQ(kPathSystem, code2(pathCopy, "tree2/big", "new", true));
    EXPECT_EQ(kPathSystem, code2(pathCopy, "tree2/big", "old", true));
    EXPECT_EQ(kPathSystem, code2(pathCopyDirectory, "tree2", "copy", true));
    const uint32_t moved = code2(pathMoveDirectory, "tree2", "/dev/shm/PathTreesTest", true);
    setrlimit(RLIMIT_FSIZE, &before);
    EXPECT_EQ("-", read("new"));
    EXPECT_EQ("old contents", read("old"));
    EXPECT_EQ("-", read("copy/big"));
    // Where both are one file system the move needs no room.
    EXPECT_EQ(moved == 0 ? "/" : "-", read("/dev/shm/PathTreesTest"));
    EXPECT_EQ(moved == 0 ? "-" : "/", read("tree2"));
    fs::remove_all("/dev/shm/PathTreesTest");
}

TEST_F(PathTrees, MovesToAnotherFileSystem) {
    const std::string far = "/dev/shm/" + folder_;
    fs::remove_all(far);
    fs::create_directory(far);
    write("tree/below/f", "f");
    fs::create_symlink("below", "tree/link");
    write("g", "new g");
    write(far + "/g", "old g");
    fs::create_symlink("nowhere", "dangling");
    EXPECT_EQ(0u, code2(pathMoveDirectory, "tree/", far + "/tree/", true));
    EXPECT_EQ(0u, code2(pathMove, "g", far + "/g", true));
    EXPECT_EQ(0u, code2(pathMove, "dangling", far + "/dangling", true));
    EXPECT_NE(0u, code2(pathMove, "victim", far + "/g/x", true));
    EXPECT_NE(0u, code2(pathMove, "victim/x", far + "/tree", true));
    EXPECT_EQ("f", read(far + "/tree/below/f"));
    EXPECT_TRUE(isLinkTo((far + "/tree/link").c_str(), "below"));
    EXPECT_TRUE(isLinkTo((far + "/dangling").c_str(), "nowhere"));
    EXPECT_EQ("new g", read(far + "/g"));
    EXPECT_EQ("kept", read("victim/x"));
    EXPECT_EQ(1, std::distance(fs::directory_iterator("."), fs::directory_iterator()));
    EXPECT_EQ(3, std::distance(fs::directory_iterator(far), fs::directory_iterator()));
    fs::remove_all(far);
}

TEST_F(PathTrees, AWalkNoticesWhatIsSwappedUnderIt) {
    OsDirectory* top = nullptr;
    TreeWalk walk;
    TreeStep step;
    ASSERT_EQ(0, osDirectoryOpen("tree", false, &top));
    ASSERT_TRUE(walk.start(top));
    fs::remove("tree/below");
    fs::create_symlink("../victim", "tree/below");
    EXPECT_FALSE(walk.next(&step));
    EXPECT_EQ(kPathSystem, pathLastErrorCode());

    std::string deep = "tree/d";
    for (int i = 0; i < 100; ++i) deep += "/d";
    fs::create_directories(deep);
    TreeWalk below;
    ASSERT_EQ(0, osDirectoryOpen("tree/d", false, &top));
    ASSERT_TRUE(below.start(top));
    for (int i = 0; i < 100; ++i) ASSERT_TRUE(below.next(&step));
    fs::rename("tree/d/d/d/d", "victim/d");
    bool going = true;
    for (int i = 0; i < 200 && going; ++i) going = below.next(&step);
    EXPECT_FALSE(going) << "its way back leads elsewhere now";
    EXPECT_EQ(kPathNotFound, pathLastErrorCode());
}

TEST_F(PathTrees, AListingWarnsOnceOfWhatItLeavesOut) {
    write("tree/a\\b", "");
    write("tree/c\\d", "");
    write("list.qcs",
          "function main\nvector v\ngetfiles \"tree\" \"*\" v\ngetsubdirs \"tree\" \"*\" v\n"
          "echo v\nend\n");
    FILE* run = popen(PLAINCAST_PROGRAM " --script list.qcs", "r");
    ASSERT_NE(nullptr, run);
    std::string printed;
    for (int byte; (byte = fgetc(run)) != EOF;) printed += static_cast<char>(byte);
    EXPECT_EQ(0, pclose(run));
    const std::string warning = ": Left out names with a separator in them: 2 of \"tree\"\n";
    EXPECT_NE(std::string::npos, printed.find("scriptEngineGetFiles" + warning)) << printed;
    EXPECT_NE(std::string::npos, printed.find("scriptEngineGetSubDirs" + warning)) << printed;
    EXPECT_EQ(printed.size() - 6, printed.rfind("below\n"));
}

}  // namespace
