#include "paths/Paths.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "containers/Memory.h"
#include "paths/ConfiguredDirectories.h"
#include "paths/PathError.h"
#include "platform/files.h"
#include "platform/machine.h"
#include "platform/registry.h"
#include "strings/StringEdit.h"

namespace {

Owned<String> text(std::string_view bytes) {
    return Owned<String>(stringFromView(bytes));
}

std::string changed(bool (*change)(String*), std::string_view path) {
    Owned<String> copy(text(path));
    EXPECT_TRUE(change(copy.get())) << path;
    return std::string(stringView(copy.get()));
}

std::string made(String* result) {
    Owned<String> owned(result);
    return std::string(stringView(owned.get()));
}

std::string suffixOf(const String* path) {
    return made(pathSuffix(path));
}

void writeFile(std::string_view path, std::string_view bytes) {
    OsFile file;
    size_t written;
    ASSERT_EQ(0, osFileOpen(path, kOsOpenWrite, &file)) << path;
    EXPECT_EQ(0, osFileWrite(file, bytes.data(), bytes.size(), &written));
    EXPECT_EQ(0, osFileClose(file));
}

TEST(PathText, PartsOfAPath) {
    struct {
        const char* path;
        int64_t lastSeparator;
        const char* directory;
        const char* base;
        const char* suffix;
        const char* withoutSuffix;
        const char* cutToDirectory;
    } cases[] = {
        {"a/b\\c.txt", 3, "a/b\\", "c.txt", "txt", "a/b\\c", "a/b\\"},
        {"a\\", -1, "", "a", "", "a", "a\\"},
        {"a.b\\c", 3, "a.b\\", "c", "b\\c", "a", "a.b\\"},
        {"a.b\\", -1, "", "a.b", "b", "a", "a.b\\"},
        {"/", 0, "/", "", "", "", "/"},
        {"//", 0, "/", "", "", "/", "/"},
        {"./", -1, "", ".", "", "", "./"},
        {"", -1, "", "", "", "", ""},
        {"name", -1, "", "name", "", "name", "name"},
        {"\\name.", 0, "\\", "name.", "", "\\name", "\\"},
    };
    for (const auto& row : cases) {
        Owned<String> path(text(row.path));
        EXPECT_EQ(row.lastSeparator, pathLastSeparator(path.get())) << row.path;
        EXPECT_EQ(row.directory, made(pathDirectoryPart(path.get()))) << row.path;
        EXPECT_EQ(row.base, made(pathBaseName(path.get()))) << row.path;
        EXPECT_EQ(row.suffix, suffixOf(path.get())) << row.path;
        EXPECT_EQ(row.withoutSuffix, changed(pathCutSuffix, row.path)) << row.path;
        EXPECT_EQ(row.cutToDirectory, changed(pathCutToDirectory, row.path)) << row.path;
    }
}

TEST(PathText, SeparatorsAtTheEnd) {
    EXPECT_EQ("a/", changed(pathRemoveTrailingSeparator, "a//"));
    EXPECT_EQ("", changed(pathRemoveTrailingSeparator, "\\"));
    EXPECT_EQ("a\\", changed(pathEnsureTrailingSeparator, "a"));
    EXPECT_EQ("a/", changed(pathEnsureTrailingSeparator, "a/"));
    EXPECT_EQ("", changed(pathEnsureTrailingSeparator, ""));
}

TEST(PathText, UnifiedAndResolved) {
    struct {
        const char* path;
        const char* unified;
        const char* resolved;
    } cases[] = {
        {"", "", ""},
        {"a//b/\\c\\", "a\\b\\c\\", "a\\b\\c\\"},
        {"//host///share", "\\\\host\\share", "\\\\host\\share"},
        {"///a", "\\\\a", "\\\\a"},
        {"/a/./b/../c", "\\a\\.\\b\\..\\c", "\\a\\c"},
        {"./", ".\\", ""},
        {"a/../", "a\\..\\", ""},
        {"./a", ".\\a", "a"},
        {"../../a/..", "..\\..\\a\\..", "..\\.."},
        {"a/../../b", "a\\..\\..\\b", "..\\b"},
        {"../a/../../b/", "..\\a\\..\\..\\b\\", "..\\..\\b\\"},
        {"/", "\\", "\\"},
        {"//", "\\\\", "\\\\"},
        {"/..", "\\..", "\\.."},
        {"/a/..", "\\a\\..", "\\"},
        {"c:/x/..", "c:\\x\\..", "c:"},
        {"a/...", "a\\...", "a\\..."},
    };
    for (const auto& row : cases) {
        EXPECT_EQ(row.unified, changed(pathUnifySeparators, row.path)) << row.path;
        EXPECT_EQ(row.resolved, changed(pathResolveDots, row.path)) << row.path;
    }
}

TEST(PathText, NullAndMissingMemoryFail) {
    EXPECT_FALSE(pathResolveDots(nullptr));
    EXPECT_FALSE(pathExpand(nullptr));
    EXPECT_FALSE(pathCanonical(nullptr));
    EXPECT_FALSE(pathExists(nullptr));
    EXPECT_EQ(nullptr, pathBaseName(nullptr));
    Owned<String> path(text("some/longer path of a file.txt"));
    Owned<String> name(text("no such file of any directory"));
    Owned<String> target(text("old"));
    for (long long request = 0; request < 40; ++request) {
        memFailAfter(request, true);
        bool unique = pathMakeUnique(path.get(), true);
        bool found = pathFindInPath(name.get(), target.get());
        memFailAfter(-1, false);
        EXPECT_FALSE(found);
        if (unique) break;
        EXPECT_EQ("some/longer path of a file.txt", stringView(path.get()));
    }
    EXPECT_EQ("some/longer path of a file-00000.txt", stringView(path.get()));
    EXPECT_EQ("old", stringView(target.get()));
}

TEST(PathExpand, WordsAndFolders) {
    EXPECT_EQ("c:", changed(pathExpand, "/C:"));
    EXPECT_EQ("\\c:x", changed(pathExpand, "\\c:x"));
    EXPECT_EQ("", changed(pathExpand, "/??"));
    std::string root;
    ASSERT_EQ(0, osSystemRoot(&root));
    EXPECT_EQ(root, changed(pathExpand, "\\SystemRoot"));
    EXPECT_EQ("\\systemroot\\x", changed(pathExpand, "\\systemroot\\x"));
    std::string folder = changed(pathExpand, "%Fonts%");
    EXPECT_TRUE(pathIsSeparator(folder.back())) << folder;
    EXPECT_EQ(folder + "x", changed(pathExpand, "%fonts%x"));
    EXPECT_EQ(folder + "b", changed(pathExpand, "%nosuch%fonts%b").substr(7)) << "second name";
}

TEST(PathExpand, EndsWhateverThePathHolds) {
    // The second search begins at the second byte and would meet the same sign for ever.
    for (const char* path : {"%nosuch%\\x", "c:\\%nosuch%\\x", "a%", "%%", "a%%b", "%a%b%c%"}) {
        EXPECT_EQ(path, changed(pathExpand, path));
    }
    osSetEnvironment("%QUOREL_PATHS_TEST%", "x");
    EXPECT_EQ("x\\y", changed(pathExpand, "%QUOREL_PATHS_TEST%\\y"));
    osSetEnvironment("%QUOREL_PATHS_TEST%", "x%QUOREL_PATHS_TEST%");
    EXPECT_LT(changed(pathExpand, "a%QUOREL_PATHS_TEST%").size(), 100000u);
}

// Works in a folder of its own, which is the current directory meanwhile.
class PathFiles : public testing::Test {
  protected:
    void SetUp() override {
        ASSERT_EQ(0, osCurrentDirectory(&before_));
        std::filesystem::remove_all(kFolder);
        ASSERT_EQ(0, osMakeDirectory(kFolder));
        ASSERT_EQ(0, osSetCurrentDirectory(kFolder));
        ASSERT_EQ(0, osCurrentDirectory(&here_));
        osMakeDirectory("Sub.dir");
        writeFile("a.txt", "12345");
        writeFile("Sub.dir/inner.txt", "");
        osMakeDirectory("Sub.dir/deep");
    }
    void TearDown() override {
        osSetCurrentDirectory(before_);
        std::filesystem::remove_all(kFolder);
    }

    static constexpr char kFolder[] = "PathsTestFiles";
    std::string before_;
    std::string here_;
};

TEST_F(PathFiles, WhatIsThere) {
    struct {
        const char* path;
        bool exists;
        bool isDirectory;
        uint64_t size;
    } cases[] = {
        {"", true, false, 0},
        {".", true, true, 0},
        {"./", true, true, 0},
        {"a.txt", true, false, 5},
        {"a.txt\\", true, false, 5},
        {".\\Sub.dir\\inner.txt", true, false, 0},
        {"Sub.dir/", true, true, 0},
        {"missing", false, false, 0},
        {"Sub.dir\\no", false, false, 0},
    };
    for (const auto& row : cases) {
        Owned<String> path(text(row.path));
        EXPECT_EQ(row.exists, pathExists(path.get())) << row.path;
        EXPECT_EQ(row.size, pathFileSize(path.get())) << row.path;
        if (*row.path == '.' && row.path[1] != '\\') continue;
        EXPECT_EQ(row.isDirectory, pathIsDirectory(path.get())) << row.path;
    }
    EXPECT_FALSE(pathIsDirectory(text("missing").get()));
    EXPECT_EQ(kPathEmpty, pathLastErrorCode());
    EXPECT_FALSE(pathExists(text("missing").get()));
    EXPECT_EQ(kPathSystem, pathLastErrorCode());
    EXPECT_EQ(0u, made(pathLastErrorText()).find("Windows(2): "));
    EXPECT_TRUE(pathExists(text("a.txt").get()));
    EXPECT_EQ(kPathDone, pathLastErrorCode());
    EXPECT_EQ(nullptr, pathLastErrorText());
}

TEST_F(PathFiles, InformationHasTheFullPathAndTimes) {
    FileInfo info;
    ASSERT_TRUE(getFileInfo(text("Sub.dir/").get(), &info));
    EXPECT_EQ(here_ + (here_[0] == '/' ? "/" : "\\") + "Sub.dir", stringView(info.path));
    EXPECT_EQ(static_cast<uint32_t>(kOsFileDirectory), info.flags & kOsFileDirectory);
    constexpr uint64_t k2020 = 3786825600000;
    constexpr uint64_t k2100 = 6311433600000;
    EXPECT_GT(info.modified, k2020);
    EXPECT_LT(info.modified, k2100);
    fileInfoClear(&info);
    EXPECT_FALSE(getFileInfo(text("missing").get(), &info));
    EXPECT_EQ(nullptr, info.path);
}

TEST_F(PathFiles, FullPaths) {
    struct {
        const char* path;
        bool isFull;
        std::string becomes;
    } cases[] = {
        {"c:/x//y", true, "c:\\x\\y"},
        {"//host/share", true, "\\\\host\\share"},
        {"Sub.dir//inner.txt", true, here_ + "\\Sub.dir\\inner.txt"},
        {"missing/x", false, "missing\\x"},
        {"c:", false, "c:"},
        {"/missing", osLeadingSeparatorIsAbsolute(), "\\missing"},
    };
    for (const auto& row : cases) {
        Owned<String> path(text(row.path));
        EXPECT_EQ(row.isFull, pathIsFull(path.get())) << row.path;
        EXPECT_EQ(row.becomes, stringView(path.get()));
    }
}

TEST_F(PathFiles, CanonicalPathsTakeTheSpellingOfTheDisk) {
    bool caseMatters = !pathExists(text("SUB.DIR").get());
    EXPECT_EQ(caseMatters ? "sub.DIR\\INNER.txt" : "Sub.dir\\inner.txt",
              changed(pathCanonical, "x/../sub.DIR//INNER.txt"));
    EXPECT_EQ("..\\PathsTestFiles\\Sub.dir\\",
              changed(pathCanonical, "..\\PathsTestFiles\\Sub.dir\\"));
    EXPECT_EQ("Sub.dir\\no such\\x.y", changed(pathCanonical, "Sub.dir/no such/x.y"));
    EXPECT_EQ("\\no such\\x", changed(pathCanonical, "/no such/x"));
    std::string deep;
    for (int i = 0; i < 50000; ++i) deep += "x\\";
    EXPECT_EQ(deep, changed(pathCanonical, deep));
}

TEST_F(PathFiles, UniquePathsCountUpward) {
    struct {
        const char* path;
        bool always;
        const char* becomes;
    } cases[] = {
        {"a.txt", false, "a-00001.txt"},
        {"free.txt", false, "free.txt"},
        {"free.txt", true, "free-00000.txt"},
        {"Sub.dir/deep/x", true, "Sub.dir/deep/x-00000.dir/deep/x"},
        {"noend", true, "noend-00000"},
    };
    writeFile("a-00000.txt", "");
    for (const auto& row : cases) {
        Owned<String> path(text(row.path));
        EXPECT_TRUE(pathMakeUnique(path.get(), row.always));
        EXPECT_EQ(row.becomes, stringView(path.get()));
    }
}

TEST_F(PathFiles, DirectoriesAreMadeWithTheirParents) {
    struct {
        std::string path;
        bool done;
        const char* exists;
        const char* missing;
    } cases[] = {
        {"made/one/two/", true, "made/one/two", "made/one/two/three"},
        {"made/x/file.txt", true, "made/x", "made/x/file.txt"},
        {"bare.txt", true, ".", "bare.txt"},
        {"./", true, ".", "x"},
        {here_ + "/made/absolute/y/", true, "made/absolute/y", "x"},
        {"a.txt/below/", false, "a.txt", "a.txt/below"},
        {"made/./z/../w/", true, "made/w", "made/z"},
        {"", false, ".", "x"},
    };
    for (const auto& row : cases) {
        EXPECT_EQ(row.done, pathMakeDirectoryPath(text(row.path).get())) << row.path;
        EXPECT_TRUE(pathExists(text(row.exists).get())) << row.path;
        EXPECT_FALSE(pathExists(text(row.missing).get())) << row.path;
    }
    EXPECT_FALSE(pathMakeDirectory(text("made").get()));
    EXPECT_EQ(kPathSystem, pathLastErrorCode());
}

TEST_F(PathFiles, SearchGoesThroughTheListAndAllParents) {
    osSetEnvironment("path", here_ + "/nothing;;" + here_ + "/Sub.dir/deep;" + here_);
    Owned<String> target(text("old"));
    EXPECT_TRUE(pathFindInPath(text("inner.txt").get(), target.get()));
    std::string expected = changed(pathCanonical, here_ + "\\Sub.dir") + "\\inner.txt";
    EXPECT_EQ(expected, stringView(target.get()));
    ASSERT_TRUE(pathSetCurrentDirectory(text("Sub.dir\\deep").get()));
    EXPECT_TRUE(pathFindInPath(text("a.txt").get(), target.get()));
    EXPECT_EQ(changed(pathCanonical, here_) + "\\a.txt", stringView(target.get()));
    EXPECT_FALSE(pathFindInPath(text("no such file").get(), target.get()));
    EXPECT_FALSE(pathFindInPath(text("").get(), target.get()));
    EXPECT_EQ(changed(pathCanonical, here_) + "\\a.txt", stringView(target.get()));
}

TEST_F(PathFiles, OpenRefusesDirectoriesAndTellsWhatItRead) {
    OsFile file;
    for (uint32_t mode = kOsOpenRead; mode <= kOsOpenAppendRead; ++mode) {
        EXPECT_NE(0, osFileOpen("Sub.dir", mode, &file)) << mode;
    }
    EXPECT_NE(0, osFileOpen("a.txt", 0, &file));
    EXPECT_NE(0, osFileOpen("missing", kOsOpenReadWrite, &file));
    ASSERT_EQ(0, osFileOpen("Sub.dir\\modes.txt", kOsOpenWriteRead, &file));
    size_t count = 0;
    EXPECT_EQ(0, osFileWrite(file, "a\r\nb\x1a", 5, &count));
    EXPECT_EQ(0, osFileClose(file));
    ASSERT_EQ(0, osFileOpen("Sub.dir/modes.txt", kOsOpenAppendRead, &file));
    EXPECT_EQ(0, osFileWrite(file, "c", 1, &count));
    uint64_t place = 99;
    EXPECT_EQ(0, osFileSeek(file, 0, OsSeek::Start, &place));
    EXPECT_EQ(0u, place);
    char buffer[16];
    EXPECT_EQ(0, osFileRead(file, buffer, sizeof buffer, &count));
    EXPECT_EQ(
        "a\r\nb\x1a"
        "c",
        std::string(buffer, count));
    EXPECT_EQ(0, osFileRead(file, buffer, sizeof buffer, &count));
    EXPECT_EQ(0u, count);
    EXPECT_EQ(0, osFileClose(file));
}

TEST_F(PathFiles, ConfiguredDirectoriesCountOnlyTogether) {
    constexpr char kKey[] = "SOFTWARE\\Quorel\\version6\\directories";
    osSetEnvironment("QUOREL_REGISTRY", here_ + "/registry.db");
    pathReleaseConfiguredDirectories();
    EXPECT_EQ(nullptr, pathConfiguredDirectory(kBinDirectory));
    for (const char* name :
         {"installdir", "bin", "scripts", "config", "debug", "work", "temp", "sandbox"}) {
        EXPECT_EQ(nullptr, pathConfiguredDirectory(kConfigDirectory)) << name;
        pathReleaseConfiguredDirectories();
        ASSERT_EQ(OsRegistryResult::Done, osRegistrySet(kOsLocalMachine, kKey, name, kOsRegString,
                                                        std::string("/") + name));
    }
    EXPECT_EQ("/config\\", made(pathConfiguredDirectory(kConfigDirectory)));
    EXPECT_EQ("/bin\\", made(pathConfiguredDirectory(kBinDirectory)));
    EXPECT_EQ(nullptr, pathConfiguredDirectory(kSourceRootDirectory));
    osRegistryDeleteKey(kOsLocalMachine, kKey);
    pathReleaseConfiguredDirectories();
}

}  // namespace
