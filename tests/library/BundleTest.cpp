#include "files/Bundle.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <string>

#include "containers/Memory.h"
#include "containers/Vector.h"
#include "logger/MessageExpand.h"

namespace {

namespace fs = std::filesystem;

int logLevel = kLogError;
std::string heard;

bool hear(void*, int, LogForm form, const char* format, const LogArg* args, uint32_t count) {
    Owned<String> text(messageExpand(format, form, args, count));
    if (stringView(text.get()).starts_with("bundle")) heard += stringView(text.get());
    return true;
}

Owned<String> text(std::string_view bytes) {
    return Owned<String>(stringFromView(bytes));
}

struct Paths {
    Paths(std::initializer_list<const char*> names = {}) : all(vectorCreate()) {
        for (const char* name : names) vectorAppend(all, stringFromText(name));
    }
    ~Paths() { vectorDestroyWith(&all, stringDestroyElement); }
    Vector* all;
};

// Works in a folder of its own.
class BundleTest : public testing::Test {
  protected:
    static void SetUpTestSuite() { logAddGlobalListener(&heard, hear, &logLevel); }
    static void TearDownTestSuite() { logShutdown(); }
    BundleTest() {
        fs::remove_all("BundleTest.tmp");
        fs::create_directories("BundleTest.tmp/out");
        fs::current_path("BundleTest.tmp");
    }
    ~BundleTest() override { fs::current_path(".."); }
    static void put(const char* name, std::string_view bytes) {
        std::ofstream(name, std::ios::binary) << bytes;
    }
    static std::string get(const fs::path& name) {
        std::ifstream file(name, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    bool explode(const char* name, Paths* to = nullptr, bool deleteOriginal = false) {
        return bundleExplode(text(name).get(), text("out").get(), to == nullptr ? nullptr : to->all,
                             deleteOriginal, log.get());
    }

    Owned<Logger> log = Owned<Logger>(logCreate());
};

TEST_F(BundleTest, HoldsFilesByteForByte) {
    std::string every;
    for (int at = 0; at < 300000; ++at) every += static_cast<char>(at * 7 >> 3);
    put("a.txt", "hello\n");
    put("none", "");
    put("out/every", every);
    Paths first{"a.txt", "none"};
    Paths second{"out/every"};
    ASSERT_TRUE(bundleMake(text("b.GZ").get(), first.all, false, false, log.get()));
    ASSERT_TRUE(bundleAppend(text("b").get(), second.all, true, log.get()));
    const std::string bundle =
        "$Quorel_Bundle_v1\n6\na.txt\nhello\n0\nnone\n300000\nevery\n" + every;
    EXPECT_EQ(bundle, get("b"));
    Paths extracted;
    ASSERT_TRUE(explode("b", &extracted, true));
    EXPECT_EQ(2u, vectorSize(extracted.all)) << "empty files do not come out";
    EXPECT_EQ(every, get("out/every"));
    EXPECT_FALSE(fs::exists("b"));
    ASSERT_TRUE(bundleAttach(text("out/every").get(), text("a.txt").get(), true, log.get()));
    EXPECT_EQ("hello\n$QuorelBundleMaker\\BUNDLE:" + every, get("a.txt"));
}

TEST_F(BundleTest, TakesDamageAsItComes) {
    const std::string h = "$Quorel_Bundle_v1\n", x(2047, 'x');
    // What comes out is given as names and contents, in the order of names.
    const struct {
        std::string bytes, message, files;
    } cases[] = {
        {"", "bundleExplode: #::204 #::14", ""},
        {h.substr(0, 16), "bundleExplode: #::209", ""},
        {h.substr(0, 17), "", ""},
        {"$Quorel_Bundle_v1x", "", ""},
        {"$Quorel_Bundle_v2\n", "bundleExplode: #::209", ""},
        {"$Quorel_Bumble_v1\n", "bundleExplode: #::208", ""},
        {h + "\nno size\n\x80\xff\n3\none\nabcrest\n2\ntwo\nde", "", "one=abc two=de "},
        {h + "3\none\nabc9\ntwo\nde", "", "one=abc two=de "},
        {h + "9223372036854775807\none\nabc", "", "one=abc "},
        {h + "1\none\nabc\n2\ntwo\nde", "", "one=a two=de "},
        {h + "3\none\nabc12\n", "bundleExplode: #::204 #::14", "one=abc "},
        {h + "-5\none\n2\ntwo\nde", "", "one= two=de "},
        {h + "0\n9\n3\none\nabcdefghij2\ntwo\nde", "", "3=one\nabcde "},
        {h + x + "x\n3\none\nabc", "bundleExplode: #::204 #::14", ""},
        {h + x + "\n3\none\nabc", "", "one=abc "},
        {h + "1\nx.y\na1\nx.y\nb1\nx.y\nc", "", "x-00000.y=b x-00001.y=c x.y=a "},
        {h + std::string("1\nz\0a\na1\nz\0a\nb", 14), "", "z=a z-00000=b "},
        {h + "4\n../beside\nevil", "", ""},
        {h + "4\nno/where\nlost", "bundleExplode: #::203 #::14", ""},
    };
    for (const auto& [bytes, message, files] : cases) {
        fs::remove_all("out");
        fs::create_directory("out");
        put("b", bytes);
        heard.clear();
        EXPECT_EQ(message.empty(), explode("b")) << bytes;
        EXPECT_EQ(message, heard.substr(0, message.size())) << bytes;
        std::map<std::string, std::string> found;
        for (const auto& entry : fs::directory_iterator("out"))
            found[entry.path().filename().string()] = get(entry.path());
        std::string listed;
        for (const auto& [name, content] : found) listed += name + "=" + content + " ";
        EXPECT_EQ(files, listed) << bytes;
    }
    EXPECT_EQ("evil", get("beside"));
    put("b", h + "9\none\nabc");
    EXPECT_TRUE(explode("b", nullptr, true) && fs::exists("b")) << "not all of it came out";
}

TEST_F(BundleTest, DecompressesTheLastBlockTwiceWhereItIsFull) {
    for (const size_t size : {0, 1, 4095, 4096, 4097, 8192, 300000, 303104}) {
        std::string content;
        while (content.size() < size) content += std::to_string(content.size());
        content.resize(size);
        put("f", content);
        ASSERT_TRUE(bundleZip(text("f").get(), true, nullptr)) << size;
        EXPECT_FALSE(fs::exists("f"));
        ASSERT_TRUE(bundleUnZip(text("f.gz").get(), false, nullptr)) << size;
        if (size > 0 && size % 4096 == 0) content += content.substr(size - 4096);
        EXPECT_TRUE(content == get("f")) << size;
    }
    for (const size_t cut : {10, 100}) {
        fs::resize_file("f.gz", fs::file_size("f.gz") - cut);
        EXPECT_FALSE(bundleUnZip(text("f.gz").get(), true, log.get()));
        EXPECT_TRUE(fs::exists("f.gz"));
    }
}

TEST_F(BundleTest, NothingReplacesItsOwnSource) {
    put("f", "content");
    put("b", "$Quorel_Bundle_v1\n");
    Paths own{"f", "./b"};
    EXPECT_FALSE(bundleAppend(text("b").get(), own.all, true, log.get()));
    EXPECT_FALSE(bundleMake(text("f.gz").get(), own.all, true, true, log.get()));
    fs::create_hard_link("f", "g.gz");
    EXPECT_FALSE(bundleZipTrg(text("f").get(), text("g").get(), true, log.get()));
    EXPECT_FALSE(bundleUnZipTrg(text("g.gz").get(), text("f").get(), true, log.get()));
    EXPECT_FALSE(bundleAttach(text("f").get(), text("f").get(), true, log.get()));
    EXPECT_EQ("content", get("f"));
    EXPECT_EQ("$Quorel_Bundle_v1\n", get("b"));
}

TEST_F(BundleTest, AnyRequestForMemoryMayFail) {
    put("a", "hello\n");
    Paths files{"a"};
    bool done = false;
    for (long long at = 0; !done && at < 2000; ++at) {
        Paths extracted;
        memFailAfter(at, true);
        done = bundleMake(text("b.gz").get(), files.all, true, false, log.get()) &&
               explode("b.gz", &extracted);
        memFailAfter(-1, false);
    }
    EXPECT_TRUE(done);
}

}  // namespace
