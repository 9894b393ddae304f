#include "paths/PathOperations.h"

#include "PathFolder.h"
#include "containers/Memory.h"
#include "paths/DirectoryList.h"
#include "paths/Paths.h"

namespace {

using Operation = bool (*)(const String*, const String*, bool);

class PathOperations : public PathFolder {
  protected:
    // A small tree beside some files, for each row of a table anew.
    void fill() {
        for (const auto& entry : std::filesystem::directory_iterator(".")) {
            pathSetMode(text(entry.path().string()).get(), 0777);
            std::filesystem::remove_all(entry.path());
        }
        std::filesystem::create_directories("tree/sub/deep");
        std::filesystem::create_directories("full");
        write("a", "one");
        write("b", "of b");
        write("empty", "");
        write("tree/t", "leaf");
        write("tree/sub/s", "sub leaf");
        write("full/f", "old");
    }
};

TEST_F(PathOperations, WhatTheyDoAndWhatTheyRefuse) {
    const struct {
        Operation operation;
        const char* source;
        const char* target;
        bool overwrite;
        uint32_t code;
        const char* looked;  // at this path, afterwards ...
        const char* found;   // ... stands this
        const char* left;    // and this at the source
    } cases[] = {
        {pathCopy, "a", "b", true, 0, "b", "one", "one"},
        {pathCopy, "a", "b", false, kPathSystem, "b", "of b", "one"},
        {pathCopy, "empty", "b", true, 0, "b", "", ""},
        {pathCopy, "a", "./a", true, kPathTargetExists, "a", "one", "one"},
        {pathCopy, "a", "full", true, kPathSystem, "full/f", "old", "one"},
        {pathCopy, "tree", "new", true, kPathSystem, "new", "-", "/"},
        {pathCopy, "missing", "b", true, kPathSystem, "b", "of b", "-"},
        {pathCopy, "", "b", true, kPathEmpty, "b", "of b", "-"},
        {pathMove, "a", "b", true, 0, "b", "one", "-"},
        {pathMove, "a", "b", false, kPathSystem, "b", "of b", "one"},
        {pathMove, "a", "full", true, kPathIsDirectory, "full/f", "old", "one"},
        {pathMove, "missing", "b", true, kPathSystem, "b", "of b", "-"},
        {pathMove, "a", "tree/../a", true, kPathTargetExists, "a", "one", "one"},
        {pathMove, "tree", "b", true, 0, "b/t", "leaf", "-"},
        {pathMove, "tree", "tree/sub/x", true, kPathTargetExists, "tree/t", "leaf", "/"},
        {pathMoveDirectory, "tree/", "new/", true, 0, "new/t", "leaf", "-"},
        {pathMoveDirectory, "tree", "full\\", true, kPathIsDirectory, "full/f", "old", "/"},
        {pathMoveDirectory, "", "x", true, kPathEmpty, "x", "-", "-"},
        {pathCopyDirectory, "tree", "new", false, 0, "new/sub/s", "sub leaf", "/"},
        {pathCopyDirectory, "tree/sub/..", "new/", false, 0, "new/sub/deep", "/", "/"},
        {pathCopyDirectory, "tree", "full", true, 0, "full/f", "-", "/"},
        {pathCopyDirectory, "tree", "full", false, kPathTargetExists, "full/f", "old", "/"},
        {pathCopyDirectory, "tree", "a", true, kPathNotDirectory, "a", "one", "/"},
        {pathCopyDirectory, "missing", "full", true, kPathNotFound, "full/f", "old", "-"},
        {pathCopyDirectory, "a", "full", true, kPathSystem, "full/f", "old", "one"},
        {pathCopyDirectory, "tree", "tree/sub/x", true, kPathTargetExists, "tree/t", "leaf", "/"},
        {pathCopyDirectory, "./", "full", true, kPathTargetExists, "full/f", "old", "/"},
        {pathCopyDirectory, "tree/sub", "tree", true, kPathTargetExists, "tree/t", "leaf", "/"},
    };
    for (const auto& row : cases) {
        fill();
        const std::string name = std::string(row.source) + " > " + row.target;
        EXPECT_EQ(row.code, code2(row.operation, row.source, row.target, row.overwrite)) << name;
        EXPECT_EQ(row.found, read(row.looked)) << name;
        EXPECT_EQ(row.left, read(row.source)) << name;
    }
}

TEST_F(PathOperations, Removals) {
    fill();
    EXPECT_EQ(kPathEmpty, code(pathRemoveDirectory, "", true, true));
    EXPECT_EQ(kPathNotDirectory, code(pathRemoveDirectory, "a", true, true));
    EXPECT_EQ(kPathNotDirectory, code(pathRemoveDirectory, "missing", true, true));
    EXPECT_EQ(kPathSystem, code(pathRemoveDirectory, "tree", false, true));
    // What the system would refuse at the end must not be emptied before.
    for (const char* path : {".", "./", "tree/sub/..", "/"}) {
        EXPECT_NE(0u, code(pathRemoveDirectory, path, true, true)) << path;
        EXPECT_EQ("leaf", read("tree/t")) << path;
    }
    pathSetMode(text("tree/t").get(), 0);
    pathSetMode(text("tree/sub").get(), 0);
    EXPECT_EQ(0u, code(pathRemoveDirectory, "tree\\", true, true));
    EXPECT_EQ("-", read("tree"));
    EXPECT_EQ(kPathSystem, code(pathDelete, "full", true));
    EXPECT_EQ(kPathSystem, code(pathDelete, "missing", true));
    EXPECT_EQ(kPathEmpty, code(pathDelete, "", true));
    pathSetMode(text("a").get(), 0);
    EXPECT_EQ(0u, code(pathDelete, "a", true));
    EXPECT_EQ("-", read("a"));
}

TEST_F(PathOperations, TheReadOnlyMarkIsAllThatModesKnow) {
    fill();
    Owned<String> name(text("a"));
    EXPECT_EQ(0777u, pathMode(name.get()));
    EXPECT_TRUE(pathSetMode(name.get(), 0775));
    EXPECT_EQ(0555u, pathMode(name.get()));
    EXPECT_TRUE(pathSetAttributes(name.get(), kOsFileReadOnly | kOsFileDirectory, true));
    EXPECT_EQ(0777u, pathMode(name.get()));
    EXPECT_TRUE(pathSetAttributes(name.get(), kOsFileReadOnly | kOsFileDirectory, false));
    EXPECT_TRUE(pathSetMode(name.get(), 02));
    EXPECT_EQ(0777u, pathMode(name.get()));
    EXPECT_EQ(0u, pathMode(text("missing").get()));
    EXPECT_EQ(kPathSystem, code(pathSetMode, "missing", 02u));
    EXPECT_EQ(kPathSystem, code(pathSetAttributes, "missing", 64u, false));
}

TEST_F(PathOperations, OneFileByTextOrByContents) {
    fill();
    write("one", "one");
    write("two", "two");
    write("empty too", "");
    const struct {
        const char* a;
        const char* b;
        bool same;
        uint32_t code;
    } cases[] = {
        {"missing", "missing", true, 0},
        {"a", "one", true, 0},
        {"a", "two", false, 0},
        {"a", "b", false, 0},
        {"empty", "./empty", false, 0},
        {"empty", "empty too", false, 0},
        {"a", "missing", false, kPathNotFound},
        {"tree", "a", false, kPathIsDirectory},
    };
    for (const auto& row : cases) {
        EXPECT_EQ(row.same, pathAreSameFile(text(row.a).get(), text(row.b).get())) << row.a;
        EXPECT_EQ(row.code, pathLastErrorCode()) << row.a << " " << row.b;
    }
    EXPECT_TRUE(pathAreSameFile(nullptr, nullptr));
    EXPECT_FALSE(pathAreSameFile(text("a").get(), nullptr));
}

TEST_F(PathOperations, ListingsMatchByCaseAndSortBySignedBytes) {
    fill();
    for (const char* name : {"x.txt", "x.TXT2", "y.txt", "x", "z~.txt"}) write(name, "");
    const auto listed = [](std::string_view directory, std::string_view pattern) {
        DirectoryList list;
        if (!pathListDirectory(text(directory).get(), text(pattern).get(), &list))
            return "!" + std::to_string(pathLastErrorCode());
        list.sort();
        std::string names;
        for (uint32_t i = 0; i < list.size(); ++i)
            names += std::string(list[i].name) + (list[i].isDirectory ? "/ " : " ");
        return names;
    };
    const std::string all = "a b empty full/ tree/ x x.TXT2 x.txt y.txt z~.txt ";
    for (const char* directory : {".", "./", "tree/..", "tree/../", "full\\.\\.."})
        EXPECT_EQ(all, listed(directory, "*")) << directory;
    EXPECT_EQ(all, listed(".", ""));
    EXPECT_EQ("x.txt y.txt z~.txt ", listed(".", "*.txt"));
    EXPECT_EQ("", listed(".", "*.none"));
    EXPECT_EQ("", listed(".", "tree/*"));
    EXPECT_EQ("sub/ t ", listed("tree/", "*"));
    EXPECT_EQ("!2", listed("", "*"));
    EXPECT_EQ("!17", listed("missing", "*"));
    EXPECT_EQ("!18", listed("a", "*"));
}

TEST_F(PathOperations, DeepTreesNeedFewOpenFiles) {
    // The functions of one system end at 260 bytes in all.
    const int levels = osLeadingSeparatorIsAbsolute() ? 300 : 60;
    ASSERT_EQ(0, osMakeDirectory("deep"));
    ASSERT_EQ(0, osSetCurrentDirectory("deep"));
    for (int i = 0; i < levels; ++i) {
        write("x", "y");
        ASSERT_EQ(0, osMakeDirectory("d"));
        ASSERT_EQ(0, osSetCurrentDirectory("d"));
    }
    for (int i = 0; i <= levels; ++i) osSetCurrentDirectory("..");
    EXPECT_EQ(0u, code2(pathCopyDirectory, "deep", "copy", false));
    EXPECT_EQ("y", read("copy/d/d/d/d/d/d/d/d/d/x"));
    for (const char* tree : {"deep", "copy"}) {
        EXPECT_EQ(0u, code(pathRemoveDirectory, tree, true, true));
        EXPECT_EQ("-", read(tree));
    }
}

TEST_F(PathOperations, MissingMemoryIsAnAnswer) {
    fill();
    Owned<String> source(text("tree"));
    Owned<String> target(text("copy"));
    bool done = false;
    for (long long request = 0; request < 200 && !done; ++request) {
        memFailAfter(request, true);
        done = pathCopyDirectory(source.get(), target.get(), true) &&
               pathMoveDirectory(target.get(), text("moved").get(), false);
        DirectoryList list;
        pathListDirectory(source.get(), nullptr, &list);
        memFailAfter(-1, false);
        EXPECT_EQ("leaf", read("tree/t"));
    }
    EXPECT_TRUE(done);
    EXPECT_EQ("sub leaf", read("moved/sub/s"));
}

}  // namespace
