#include "config/ConfPatcher.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "containers/Memory.h"

namespace {

namespace fs = std::filesystem;

Owned<String> text(std::string_view bytes) {
    return Owned<String>(stringFromView(bytes));
}

class ConfPatcherTest : public testing::Test {
  protected:
    ConfPatcherTest() : conf(confPatchCreate()) {
        fs::remove_all(kFolder);
        fs::create_directories(kFolder);
    }
    ~ConfPatcherTest() override {
        memFailAfter(-1, false);
        fs::remove_all(kFolder);
    }

    static std::string path(const char* name) { return std::string(kFolder) + "/" + name; }
    static void put(std::string_view bytes, const char* name = "a.conf") {
        std::ofstream(path(name), std::ios::binary) << bytes;
    }
    static std::string content(const char* name = "a.conf") {
        std::ifstream in(path(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }
    bool load(const char* name = "a.conf") {
        return confPatchParse(conf.get(), text(path(name)).get());
    }
    bool set(std::string_view node, std::initializer_list<std::string_view> values) {
        ConfValues all;
        for (const std::string_view value : values) all.add(text(value).get());
        return confSetOpen(conf.get(), text(node).get(), &all);
    }
    std::string get(std::string_view node) {
        const ConfNode* found = confPatchGet(conf.get(), text(node).get(), false);
        if (found == nullptr) return "none";
        std::string all = confNodeTypeText(found);
        LocalString value;
        for (uint32_t at = 0; at < vectorSize(found->values); ++at, stringClear(&value))
            if (confAppendValue(conf.get(), found, at, &value))
                all.append("|").append(stringView(&value));
        return all;
    }

    static constexpr const char* kFolder = "ConfPatcherTest.tmp";
    Owned<ConfPatcher> conf;
};

}  // namespace

TEST_F(ConfPatcherTest, WritesWhatItReadByTheRules) {
    constexpr const char* kCases[][2] = {
        {"r\n{\n}\n", ""},
        {"\n# c\n \tr \r\n\n{\n#\n}\nbehind", ""},
        {"r\n{\ntype=int\nvalue=a=b\nvalue=\nvalue= x y \n}",
         "\ttype=int\n\tvalue=a=b\n\tvalue=\n\tvalue=x y\n"},
        {"r\n{\nvalue=1\nc\n{\n}\ntype=String\nvalue=2\nType=int\n}",
         "\ttype=string\n\tvalue=1\n\tvalue=2\n\tc\n\t{\n\t}\n"},
        {"r\n{\nvalue=lost\nvalue =x\n}", ""},
        {"r\n{\ntype=MultiInteger\n}", "\ttype=int\n\tvalue=\n"},
        {"r\n{\ntype=REAL\ntype=\n=\n{\n}\n=a=\n}", "\ttype=open\n\tvalue=\n\t=\n\t{\n\t}\n"},
        {"r\n{\ntype=multi\nvalue=\x01\xff\x02\n}", "\ttype=open\n\tvalue=\xff\n"},
    };
    for (const auto& [given, body] : kCases) {
        put(given);
        ASSERT_TRUE(load()) << given;
        ASSERT_TRUE(confPatchSave(conf.get()));
        EXPECT_EQ(std::string("r\n{\n") + body + "}\n", content());
        const std::string once = content();
        EXPECT_TRUE(load() && confPatchSave(conf.get()));
        EXPECT_EQ(once, content());
    }
}

TEST_F(ConfPatcherTest, FindsTheFirstOfItsNameAmongFewAndMany) {
    for (const int count : {3, 1000}) {
        std::string file = "r\n{\n";
        for (int i = 0; i < count; ++i) {
            const std::string name = "n" + std::to_string(i % (count - 1));
            file += name + "\n{\ntype=int\nvalue=" + std::to_string(i) + "\n}\n";
        }
        put(file + "}");
        ASSERT_TRUE(load());
        for (const char* name : {"r.n0", "r.n0", "r.n0"}) EXPECT_EQ("int|0", get(name));
        for (const char* missing :
             {"", "r", "r.", ".n0", "q.n0", "r.N0", "r.n0.", "r.n0.x", "r..n0"})
            EXPECT_EQ("none", get(missing)) << missing;
    }
}

TEST_F(ConfPatcherTest, NormalisesNamesOfFilesAndDirectories) {
    put("r\n{\nd\n{\ntype=dirname\n}\nf\n{\ntype=multifilename\n}\nu\n{\n}\n}");
    ASSERT_TRUE(load());
    EXPECT_TRUE(set("r.d", {"a/./b//..", "", "c\\"}) && set("r.f", {"/a/../b/"}));
    EXPECT_EQ("dirname|a\\||c\\", get("r.d"));
    EXPECT_EQ("filename|\\b\\", get("r.f"));
    EXPECT_TRUE(set("r.u", {"1", "2"}) && set("r.u", {}));
    EXPECT_EQ("undef", get("r.u"));
    EXPECT_FALSE(set("r.none", {"x"}));
}

TEST_F(ConfPatcherTest, ExpandsVariablesFromSignToSign) {
    mapInsert(conf->variables, stringFromText("%a%"), stringFromText("%b%"));
    mapInsert(conf->variables, stringFromText("%b%"), stringFromText("B"));
    put("r\n{\nx\n{\n}\n}");
    ASSERT_TRUE(load() && set("r.x", {"%a%b%", "%b%%b%%", "%n%b%", "50%"}));
    conf.reset(confPatchCopy(conf.get()));
    EXPECT_EQ("undef|%b%b%|BB%|%n%b%|50%", get("r.x"));
}

TEST_F(ConfPatcherTest, RefusesEveryCutAndKeepsWhatItRead) {
    const std::string whole = "r\n{\n\ttype=int\n\tvalue=1\n\tc\n\t{\n\t}\n}";
    for (size_t size = 0; size <= whole.size(); ++size) {
        put(whole.substr(0, size));
        EXPECT_EQ(size == whole.size(), load()) << size;
    }
    put("r\n{\nc\n{\ntype=int\nvalue=1\n}\nx\n");
    EXPECT_FALSE(load());
    EXPECT_EQ("int|1", get("r.c"));
}

TEST_F(ConfPatcherTest, NestsDeeperThanTheStack) {
    for (const int depth : {1000, 100000}) {
        std::string file = "r\n{\n";
        std::string deepest = "r";
        for (int i = 0; i < depth; ++i, deepest += ".a") file += "a\n{\n";
        for (int i = 0; i <= depth; ++i) file += "}\n";
        put(file);
        ASSERT_TRUE(load());
        conf.reset(confPatchCopy(conf.get()));
        EXPECT_EQ("undef", get(deepest));
        EXPECT_EQ("none", get(deepest + ".a"));
        // The blanks of the deeper one would fill a disk.
        EXPECT_TRUE(depth > 1000 || (confPatchSave(conf.get()) && load()));
    }
}

TEST_F(ConfPatcherTest, ReplacesTheFileAndNothingElse) {
    EXPECT_FALSE(confPatchSave(conf.get())) << "no name";
    put("r\n{\n}");
    put("left by another run", "a.conf.tmp");
    ASSERT_TRUE(load());
    fs::permissions(path("a.conf"), fs::perms::owner_read);
    ASSERT_TRUE(confPatchSave(conf.get()));
    EXPECT_EQ("r\n{\n}\n", content());
    EXPECT_FALSE(fs::exists(path("a.conf.tmp")));
    EXPECT_EQ(fs::perms::none, fs::status(path("a.conf")).permissions() & fs::perms::owner_write);
    fs::permissions(path("a.conf"), fs::perms::owner_all);
    fs::create_directories(path("a.conf.tmp/x"));
    EXPECT_FALSE(confPatchSave(conf.get())) << "no temporary file";
    stringSetText(&conf->fileName, path("dir").c_str());
    fs::create_directories(path("dir"));
    EXPECT_FALSE(confPatchSave(conf.get())) << "cannot take its place";
    EXPECT_EQ("r\n{\n}\n", content("dir.tmp")) << "the temporary file stays";
    EXPECT_FALSE(load("dir") || load("none") || confPatchParse(conf.get(), text("").get()));
    EXPECT_FALSE(stringIsEmpty(&conf->root->name)) << "the tree is still there";
    put("", "b.conf");
    EXPECT_FALSE(load("b.conf") || confPatchSave(conf.get())) << "nothing to save";
    EXPECT_FALSE(fs::exists(path("b.conf.tmp")));
    stringSetView(&conf->fileName, path("a.conf") + '\0');
    EXPECT_FALSE(confPatchSave(conf.get()));
    EXPECT_EQ("r\n{\n}\n", content());
    BasicFile closed = {};
    EXPECT_FALSE(confPatchSaveConf(conf.get(), &closed) || confPatchParseConf(conf.get(), &closed));
}

TEST_F(ConfPatcherTest, IsWholeWhereverMemoryRunsOut) {
    const std::string old = "r\n{\n\ta\n\t{\n\t\ttype=int\n\t\tvalue=1\n\t}\n}\n";
    std::string patched = old;
    patched[patched.find('1')] = '2';
    bool done = false;
    for (int requests = 0; !done; ++requests) {
        ASSERT_GT(1000, requests);
        put(old);
        conf.reset(confPatchCreate());
        const Owned<String> name(text(path("a.conf")));
        memFailAfter(requests, true);
        done = confPatchParse(conf.get(), name.get());
        const Owned<ConfPatcher> copy(done ? confPatchCopy(conf.get()) : nullptr);
        done = copy && set("r.a", {"2"}) && confPatchSave(conf.get());
        memFailAfter(-1, false);
        EXPECT_EQ(done ? patched : old, content());
        EXPECT_FALSE(fs::exists(path("a.conf.tmp")));
    }
}
