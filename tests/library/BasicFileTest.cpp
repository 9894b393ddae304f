#include "files/BasicFile.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "files/FileStream.h"
#include "platform/files.h"

namespace {

namespace fs = std::filesystem;

class BasicFileTest : public testing::Test {
  protected:
    BasicFileTest() : folder(fs::path("BasicFileTest.tmp") / info()), out(stringNewEmpty()) {
        fs::remove_all(folder);
        fs::create_directories(folder);
    }
    ~BasicFileTest() override { fs::remove_all(folder); }

    static std::string info() {
        return testing::UnitTest::GetInstance()->current_test_info()->name();
    }

    Owned<BasicFile> record(const char* name) const {
        Owned<String> path(stringFromView((folder / name).string()));
        return Owned<BasicFile>(bfileInitStr(path.get()));
    }
    Owned<BasicFile> open(const char* name, uint32_t mode) const {
        Owned<BasicFile> file = record(name);
        EXPECT_EQ(kFileDone, bfileOpen(file.get(), mode));
        return file;
    }
    void put(const char* name, const std::string& text) const {
        std::ofstream(folder / name, std::ios::binary) << text;
    }
    std::string get(const char* name) const {
        std::ifstream in(folder / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }
    std::string text() const { return std::string(stringView(out.get())); }

    fs::path folder;
    Owned<String> out;
};

TEST_F(BasicFileTest, ReadsTextByItsRules) {
    struct Read {
        const char* stops;
        uint32_t limit;
        FileStatus status;
        const char* text;
        char hit;
        uint32_t line, recordLine;
        bool atEnd;
    };
    struct Case {
        const char* content;
        std::vector<Read> reads;
    };
    const Case kCases[] = {
        {"", {{"\n", kNoLimit, 23, "", 0, 0, 1, true}, {"\n", kNoLimit, 23, "", 0, 0, 1, true}}},
        {"a\r\nb",
         {{"\n", kNoLimit, 0, "a", '\n', 1, 1, false},
          {"\n", kNoLimit, 0, "b", 0, 1, 2, true},
          {"\n", kNoLimit, 23, "", 0, 1, 2, true}}},
        {"abcd\n",
         {{"\n", 3, 1, "abc", 0, 0, 1, false},
          {"\n", 3, 0, "d", '\n', 1, 1, false},
          {"\n", 3, 23, "", 0, 1, 2, true}}},
        {"abc\nx", {{"\n", 3, 1, "abc", 0, 0, 1, false}, {"\n", 3, 0, "", '\n', 1, 1, false}}},
        {"\r\ra\rbcd", {{"\n", 3, 1, "abc", 0, 0, 1, false}}},
        {"\rx", {{"\n", 0, 1, "", 0, 0, 1, false}, {"\n", 0, 1, "x", 0, 0, 1, false}}},
        // Newlines before the text move the record on; those in it do not.
        {"\n\n \tk\nv;\n;z",
         {{";", kNoLimit, 0, "\n\n \tk\nv", ';', 3, 2, false},
          {";,", kNoLimit, 0, "\n", ';', 4, 4, false},
          {"", kNoLimit, 0, "z", 0, 4, 5, true}}},
        {"p\xE4q,r", {{"\xE4,", kNoLimit, 0, "p\xE4q", ',', 0, 1, false}}},
        {"k=v\n", {{"=\n", 9, 0, "k", '=', 0, 1, false}, {"=\n", 9, 0, "v", '\n', 1, 1, false}}}};
    for (const Case& c : kCases) {
        put("f", c.content);
        Owned<BasicFile> file = open("f", kFileRead);
        for (const Read& r : c.reads) {
            char hit = 'x';
            EXPECT_EQ(r.status, bfileReadUntilFirst(file.get(), out.get(), r.stops, &hit, r.limit))
                << c.content;
            EXPECT_EQ(r.text, text()) << c.content;
            EXPECT_EQ(r.hit, hit) << c.content;
            EXPECT_EQ(r.line, file->line) << c.content;
            EXPECT_EQ(r.recordLine, file->recordLine) << c.content;
            EXPECT_EQ(r.atEnd, bfileAtEnd(file.get())) << c.content;
        }
    }
}

TEST_F(BasicFileTest, LinesCrossBlocks) {
    std::string content;
    for (int i = 0; i < 3000; ++i) content += std::string(i % 97, 'x') + "\r\n";
    content += std::string(200000, 'y');
    put("f", content);
    Owned<BasicFile> file = open("f", kFileRead);
    for (int i = 0; i < 3000; ++i) {
        ASSERT_EQ(kFileDone, bfileReadLine(file.get(), out.get(), 10000));
        ASSERT_EQ(std::string(i % 97, 'x'), text());
    }
    EXPECT_EQ(3000u, file->line);
    EXPECT_EQ(kFileLimit, bfileReadLine(file.get(), out.get(), 10000));
    EXPECT_EQ(kFileDone, bfileReadLine(file.get(), out.get(), kNoLimit));
    EXPECT_EQ(190000u, out->length);
    EXPECT_EQ(kFileAtEnd, bfileReadLine(file.get(), out.get(), kNoLimit));
}

TEST_F(BasicFileTest, BlocksEndWithAShortOneAndThenNone) {
    put("f", std::string(150000, 'x'));
    Owned<BasicFile> file = open("f", kFileRead);
    EXPECT_EQ(kFileDone, bfileRead(file.get(), out.get(), 0));
    EXPECT_EQ(kFileDone, bfileRead(file.get(), out.get(), 100000));
    EXPECT_EQ(100000u, out->length);
    EXPECT_FALSE(bfileAtEnd(file.get()));
    EXPECT_EQ(kFileDone, bfileRead(file.get(), out.get(), 0xFFFFFFFF)) << "costs what is there";
    EXPECT_EQ(50000u, out->length);
    EXPECT_TRUE(bfileAtEnd(file.get()));
    EXPECT_EQ(kFileAtEnd, bfileRead(file.get(), out.get(), 1));
    EXPECT_EQ(0u, out->length);
    EXPECT_EQ(kFileNull, bfileRead(file.get(), nullptr, 1));
}

TEST_F(BasicFileTest, ModesAllowWhatTheySay) {
    struct Case {
        uint32_t mode;
        bool needsFile, reads, writes;
        const char* after;  // of "old", with "W" written straight away
    };
    constexpr Case kCases[] = {
        {kFileRead, true, true, false, "old"},     {kFileWrite, false, false, true, "W"},
        {kFileAppend, false, false, true, "oldW"}, {kFileReadWrite, true, true, true, "Wld"},
        {kFileWriteRead, false, true, true, "W"},  {kFileAppendRead, false, true, true, "oldW"}};
    for (const Case& c : kCases) {
        fs::remove(folder / "new");
        EXPECT_EQ(c.needsFile ? kFileCannotOpen : kFileDone,
                  bfileOpen(record("new").get(), c.mode));
        put("f", "old");
        Owned<BasicFile> file = open("f", c.mode);
        EXPECT_EQ(c.reads, bfileIsReadable(file.get()));
        EXPECT_EQ(c.writes, bfileIsWritable(file.get()));
        EXPECT_EQ(c.writes ? kFileDone : kFileWrongMode, bfileWriteVal(file.get(), "W", 1));
        EXPECT_EQ(c.writes ? kFileDone : kFileWrongMode, bfileFlush(file.get()));
        EXPECT_EQ(c.after, get("f")) << c.mode;
        if (!c.reads) {
            EXPECT_EQ(kFileWrongMode, bfileRead(file.get(), out.get(), 1));
        }
        EXPECT_EQ(kFileDone, bfileClose(file.get()));
    }
    EXPECT_FALSE(bfileIsReadable(static_cast<BasicFile*>(nullptr)));
}

TEST_F(BasicFileTest, SwitchesBetweenReadingAndWriting) {
    put("f", "one\ntwo\nthree\n");
    Owned<BasicFile> file = open("f", kFileReadWrite);
    bfileReadLine(file.get(), out.get(), kNoLimit);
    bfileWriteVal(file.get(), "TWO", 3);
    bfileReadLine(file.get(), out.get(), kNoLimit);
    EXPECT_EQ("", text()) << "goes on behind what was written";
    bfileReadLine(file.get(), out.get(), kNoLimit);
    EXPECT_EQ("three", text());
    EXPECT_EQ(kFileAtEnd, bfileReadLine(file.get(), out.get(), kNoLimit));
    bfileWriteLineVal(file.get(), "four", 4);
    EXPECT_EQ(kFileDone, bfileClose(file.get()));
    EXPECT_EQ("one\nTWO\nthree\nfour\n", get("f"));
    EXPECT_EQ(kFileDone, bfileOpen(file.get(), kFileAppendRead));
    bfileReadLine(file.get(), out.get(), kNoLimit);
    EXPECT_EQ("one", text());
    bfileWriteVal(file.get(), "end", 3);
    EXPECT_EQ(kFileAtEnd, bfileReadLine(file.get(), out.get(), kNoLimit));
    bfileClose(file.get());
    EXPECT_EQ("one\nTWO\nthree\nfour\nend", get("f"));
}

TEST_F(BasicFileTest, RefusesToOpenInOrder) {
    Owned<BasicFile> file(bfileInit());
    EXPECT_TRUE(bfileAtEnd(file.get()));
    EXPECT_EQ(kFileNull, bfileOpen(nullptr, kFileRead));
    EXPECT_EQ(kFileNoName, bfileOpen(file.get(), 99));
    EXPECT_EQ(kFileNotOpen, bfileClose(file.get()));
    Owned<String> name(stringFromView(folder.string()));
    EXPECT_TRUE(bfileSetName(file.get(), name.get()));
    EXPECT_EQ(kFileWrongMode, bfileOpen(file.get(), 0));
    EXPECT_EQ(kFileWrongMode, bfileOpen(file.get(), 7));
    for (uint32_t mode = kFileRead; mode <= kFileAppendRead; ++mode)
        EXPECT_EQ(kFileCannotOpen, bfileOpen(file.get(), mode)) << "a directory";
    EXPECT_EQ(kFileClosed, bfileMode(file.get()));
    file = open("f", kFileWrite);
    EXPECT_EQ(kFileAlreadyOpen, bfileOpen(file.get(), 99));
    EXPECT_FALSE(bfileSetName(file.get(), name.get()));
}

TEST_F(BasicFileTest, CopiesShareTheStreamUntilOneIsClosed) {
    put("f", "1\n2\n3\n4\n");
    Owned<BasicFile> file = open("f", kFileRead);
    Owned<BasicFile> copy(bfileCopy(file.get()));
    Owned<BasicFile> third(bfileCopy(copy.get()));
    bfileReadLine(file.get(), out.get(), kNoLimit);
    file.reset();
    EXPECT_EQ(kFileDone, bfileReadLine(copy.get(), out.get(), kNoLimit));
    EXPECT_EQ("2", text());
    EXPECT_EQ(kFileDone, bfileClose(copy.get()));
    EXPECT_TRUE(bfileAtEnd(third.get()));
    EXPECT_EQ(kFileClosed, bfileMode(third.get()));
    EXPECT_EQ(kFileWrongMode, bfileReadLine(third.get(), out.get(), kNoLimit));
    EXPECT_EQ(kFileNotOpen, bfileClose(third.get()));
    EXPECT_EQ(kFileDone, bfileOpen(third.get(), kFileRead)) << "closed, so it opens anew";
    EXPECT_EQ(kFileClosed, bfileMode(copy.get()));
}

// A descriptor that was taken away stands for a disk that fails.
TEST_F(BasicFileTest, FailuresOfTheSystemEndReadersAndShowInWriters) {
    put("f", "1\n2\n");
    Owned<BasicFile> file = open("f", kFileRead);
    osFileClose(file->stream->file);
    EXPECT_EQ(kFileShort, bfileReadLine(file.get(), out.get(), kNoLimit));
    EXPECT_TRUE(bfileAtEnd(file.get()));
    EXPECT_EQ(kFileAtEnd, bfileReadLine(file.get(), out.get(), kNoLimit));
    EXPECT_EQ(kFileCannotClose, bfileClose(file.get()));
    EXPECT_EQ(kFileRead, bfileMode(file.get())) << "as it was";
    file = open("f", kFileWrite);
    osFileClose(file->stream->file);
    EXPECT_EQ(kFileDone, bfileWriteVal(file.get(), "pending", 7));
    EXPECT_EQ(kFileNotFlushed, bfileFlush(file.get()));
    const std::string large(100000, 'x');
    EXPECT_EQ(kFileShort, bfileWriteVal(file.get(), large.data(), 100000));
    EXPECT_EQ(kFileShort, bfileWriteLineVal(file.get(), large.data(), 65530));
    EXPECT_EQ(kFileCannotClose, bfileClose(file.get()));
    EXPECT_EQ(7u, file->stream->pending) << "what was taken over is kept";
}

TEST_F(BasicFileTest, ComparesByContent) {
    const std::string large(70000, 'x');
    struct Case {
        std::string a, b;
        FileComparison result;
    };
    const Case kCases[] = {
        {"", "", FileComparison::Equal},
        {large, large, FileComparison::Equal},
        {large, large + "y", FileComparison::Different},
        {std::string(65536, 'x'), large, FileComparison::Different},
        {std::string("a\0b", 3), std::string("a\0c", 3), FileComparison::Different}};
    for (const Case& c : kCases) {
        put("a", c.a);
        put("b", c.b);
        Owned<BasicFile> a = record("a");
        EXPECT_EQ(c.result, bfileCompare(a.get(), record("b").get()));
        EXPECT_EQ(c.result, bfileCompare(record("b").get(), a.get()));
        EXPECT_EQ(FileComparison::Failed, bfileCompare(a.get(), record("none").get()));
        EXPECT_EQ(kFileClosed, bfileMode(a.get()));
    }
}

}  // namespace
