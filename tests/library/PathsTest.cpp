#include "paths/Paths.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <tuple>

#include "containers/Memory.h"
#include "paths/PathError.h"
#include "platform/files.h"
#include "platform/machine.h"
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

void writeFile(std::string_view path, std::string_view bytes) {
    OsFile file;
    size_t written;
    ASSERT_EQ(0, osFileOpen(path, kOsOpenWrite, &file)) << path;
    EXPECT_EQ(0, osFileWrite(file, bytes.data(), bytes.size(), &written));
    EXPECT_EQ(0, osFileClose(file));
}

TEST(PathText, PartsOfAPath) {
    // path, last separator, directory, base, suffix, without suffix, cut to the directory
    const std::tuple<const char*, int64_t, const char*, const char*, const char*, const char*,
                     const char*>
        cases[] = {{"a/b\\c.txt", 3, "a/b\\", "c.txt", "txt", "a/b\\c", "a/b\\"},
                   {"a\\", -1, "", "a", "", "a", "a\\"},
                   {"a.b\\c", 3, "a.b\\", "c", "b\\c", "a", "a.b\\"},
                   {"a.b\\", -1, "", "a.b", "b", "a", "a.b\\"},
                   {"/", 0, "/", "", "", "", "/"},
                   {"//", 0, "/", "", "", "/", "/"},
                   {"./", -1, "", ".", "", "", "./"},
                   {"", -1, "", "", "", "", ""},
                   {"name", -1, "", "name", "", "name", "name"},
                   {"\\name.", 0, "\\", "name.", "", "\\name", "\\"}};
    for (const auto& [given, separator, directory, base, suffix, withoutSuffix, cut] : cases) {
        Owned<String> path(text(given));
        EXPECT_EQ(separator, pathLastSeparator(path.get())) << given;
        EXPECT_EQ(directory, made(pathDirectoryPart(path.get()))) << given;
        EXPECT_EQ(base, made(pathBaseName(path.get()))) << given;
        EXPECT_EQ(suffix, made(pathSuffix(path.get()))) << given;
        EXPECT_EQ(withoutSuffix, changed(pathCutSuffix, given)) << given;
        EXPECT_EQ(cut, changed(pathCutToDirectory, given)) << given;
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
    constexpr const char* kCases[][3] = {{"", "", ""},
                                         {"a//b/\\c\\", "a\\b\\c\\", "a\\b\\c\\"},
                                         {"//host///share", "\\\\host\\share", "\\\\host\\share"},
                                         {"///a", "\\\\a", "\\\\a"},
                                         {"/a/./b/../c", "\\a\\.\\b\\..\\c", "\\a\\c"},
                                         {"./", ".\\", ""},
                                         {"a/../", "a\\..\\", ""},
                                         {"./a", ".\\a", "a"},
                                         {"../../a/..", "..\\..\\a\\..", "..\\.."},
                                         {"../a/../../b/", "..\\a\\..\\..\\b\\", "..\\..\\b\\"},
                                         {"/", "\\", "\\"},
                                         {"//", "\\\\", "\\\\"},
                                         {"/..", "\\..", "\\.."},
                                         {"/a/..", "\\a\\..", "\\"},
                                         {"c:/x/..", "c:\\x\\..", "c:"},
                                         {"a/...", "a\\...", "a\\..."}};
    for (const auto& [path, unified, resolved] : kCases) {
        EXPECT_EQ(unified, changed(pathUnifySeparators, path)) << path;
        EXPECT_EQ(resolved, changed(pathResolveDots, path)) << path;
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
    for (const char* path : {"%nosuch%\\x", "c:\\%nosuch%\\x", "a%", "%%", "a%%b", "%a%b%c%"})
        EXPECT_EQ(path, changed(pathExpand, path));
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
    const std::tuple<const char*, bool, bool, uint64_t> cases[] = {
        {"", true, false, 0},
        {".", true, true, 0},
        {"./", true, true, 0},
        {"/", true, true, 0},
        {"a.txt", true, false, 5},
        {"a.txt\\", true, false, 5},
        {".\\Sub.dir\\inner.txt", true, false, 0},
        {"Sub.dir/", true, true, 0},
        {"missing", false, false, 0},
        {"Sub.dir\\no", false, false, 0}};
    for (const auto& [name, exists, isDirectory, size] : cases) {
        Owned<String> path(text(name));
        EXPECT_EQ(exists, pathExists(path.get())) << name;
        EXPECT_EQ(size, pathFileSize(path.get())) << name;
        if (*name == '.' && name[1] != '\\') continue;
        EXPECT_EQ(isDirectory, pathIsDirectory(path.get())) << name;
    }
    EXPECT_FALSE(pathIsDirectory(text("missing").get()));
    EXPECT_EQ(kPathEmpty, pathLastErrorCode());
    EXPECT_FALSE(pathExists(text("missing").get()));
    EXPECT_EQ(kPathSystem, pathLastErrorCode());
    EXPECT_EQ(0u, made(pathLastErrorText()).find("Windows(2): "));
    EXPECT_TRUE(pathExists(text("a.txt").get()));
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
    const std::tuple<const char*, bool, std::string> cases[] = {
        {"c:/x//y", true, "c:\\x\\y"},
        {"//host/share", true, "\\\\host\\share"},
        {"Sub.dir//inner.txt", true, here_ + "\\Sub.dir\\inner.txt"},
        {"missing/x", false, "missing\\x"},
        {"c:", false, "c:"},
        {"/missing", osLeadingSeparatorIsAbsolute(), "\\missing"}};
    for (const auto& [given, isFull, becomes] : cases) {
        Owned<String> path(text(given));
        EXPECT_EQ(isFull, pathIsFull(path.get())) << given;
        EXPECT_EQ(becomes, stringView(path.get()));
    }
}

TEST_F(PathFiles, CanonicalPathsTakeTheSpellingOfTheDisk) {
    bool caseMatters = !pathExists(text("SUB.DIR").get());
    EXPECT_EQ(caseMatters ? "sub.DIR\\INNER.txt" : "Sub.dir\\inner.txt",
              changed(pathCanonical, "x/../sub.DIR//INNER.txt"));
    EXPECT_EQ("..\\PathsTestFiles\\Sub.dir\\",
              changed(pathCanonical, "..\\PathsTestFiles\\Sub.dir\\"));
    EXPECT_EQ("Sub.dir\\no such\\x.y", changed(pathCanonical, "Sub.dir/no such/x.y"));
    EXPECT_EQ(kPathNoShellLibrary, pathLastErrorCode());
    EXPECT_EQ("\\no such\\x", changed(pathCanonical, "/no such/x"));
    std::string deep;
    for (int i = 0; i < 50000; ++i) deep += "x\\";
    EXPECT_EQ(deep, changed(pathCanonical, deep));
}

TEST_F(PathFiles, UniquePathsCountUpward) {
    const std::tuple<const char*, bool, const char*> cases[] = {
        {"a.txt", false, "a-00001.txt"},
        {"free.txt", false, "free.txt"},
        {"free.txt", true, "free-00000.txt"},
        {"noend", true, "noend-00000"},
        {"Sub.dir/deep/x", true, "Sub.dir/deep/x-00000.dir/deep/x"}};
    writeFile("a-00000.txt", "");
    for (const auto& [given, always, becomes] : cases) {
        Owned<String> path(text(given));
        EXPECT_TRUE(pathMakeUnique(path.get(), always));
        EXPECT_EQ(becomes, stringView(path.get()));
    }
}

TEST_F(PathFiles, DirectoriesAreMadeWithTheirParents) {
    // path, whether it is done, what exists then, what does not
    const std::tuple<std::string, bool, const char*, const char*> cases[] = {
        {"made/one/two/", true, "made/one/two", "made/one/two/three"},
        {"made/x/file.txt", true, "made/x", "made/x/file.txt"},
        {"bare.txt", true, ".", "bare.txt"},
        {"./", true, ".", "x"},
        {here_ + "/made/absolute/y/", true, "made/absolute/y", "x"},
        {"a.txt/below/", false, "a.txt", "a.txt/below"},
        {"made/./z/../w/", true, "made/w", "made/z"},
        {"", false, ".", "x"}};
    for (const auto& [path, done, exists, missing] : cases) {
        EXPECT_EQ(done, pathMakeDirectoryPath(text(path).get())) << path;
        EXPECT_TRUE(pathExists(text(exists).get())) << path;
        EXPECT_FALSE(pathExists(text(missing).get())) << path;
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

}  // namespace
