#include "files/ZFile.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace {

namespace fs = std::filesystem;

// What the common compressor makes of "hello\n".
constexpr unsigned char kHello[] = {0x1f, 0x8b, 0x08, 0,    0,    0,    0,    0,    0x02,
                                    0x03, 0xcb, 0x48, 0xcd, 0xc9, 0xc9, 0xe7, 0x02, 0,
                                    0x20, 0x30, 0x3a, 0x36, 0x06, 0,    0,    0};

class ZFileTest : public testing::Test {
  protected:
    ZFileTest() : out(stringNewEmpty()) {
        fs::remove_all(kFolder);
        fs::create_directories(kFolder);
    }
    ~ZFileTest() override { fs::remove_all(kFolder); }

    static Owned<ZFile> record(const char* name) {
        Owned<String> path(stringFromView(std::string(kFolder) + "/" + name));
        return Owned<ZFile>(zfileInitStr(path.get()));
    }
    static void put(const char* name, size_t size) {
        std::ofstream(fs::path(kFolder) / name, std::ios::binary)
            .write(reinterpret_cast<const char*>(kHello), static_cast<std::streamsize>(size));
    }

    static constexpr const char* kFolder = "ZFileTest.tmp";
    Owned<String> out;
};

TEST_F(ZFileTest, NamesEndInTheSuffixExactly) {
    constexpr const char* kCases[][2] = {
        {"a.gz", "a.gz"}, {"a", "a.gz"}, {"a.GZ", "a.GZ.gz"}, {"gz", "gz.gz"}, {".gz", ".gz"}};
    for (const auto& [given, expected] : kCases)
        EXPECT_EQ(std::string(kFolder) + "/" + expected, stringView(record(given)->name));
    EXPECT_EQ(nullptr, zfileInitStr(nullptr));
}

TEST_F(ZFileTest, WritesWhatItReadsBack) {
    Owned<ZFile> file = record("f");
    EXPECT_EQ(1, file->atEnd);
    EXPECT_EQ(kFileNotOpen, zfileClose(file.get()));
    ASSERT_EQ(kFileDone, zfileOpen(file.get(), kFileWrite));
    EXPECT_EQ(kFileAlreadyOpen, zfileOpen(file.get(), kFileRead));
    EXPECT_EQ(kFileWrongMode, zfileRead(file.get(), out.get(), 10));
    std::string content;
    for (int i = 0; i < 50000; ++i) content += std::to_string(i);
    EXPECT_EQ(kFileDone, zfileWriteVal(file.get(), content.data(), 100000));
    EXPECT_EQ(kFileDone, zfileWriteVal(file.get(), content.data() + 100000,
                                       static_cast<uint32_t>(content.size() - 100000)));
    EXPECT_EQ(kFileNull, zfileWrite(file.get(), nullptr));
    EXPECT_EQ(kFileDone, zfileClose(file.get()));
    EXPECT_GT(content.size() / 2, fs::file_size(fs::path(kFolder) / "f.gz"));
    ASSERT_EQ(kFileDone, zfileOpen(file.get(), kFileRead));
    EXPECT_EQ(kFileWrongMode, zfileWriteVal(file.get(), "x", 1));
    std::string back;
    while (zfileRead(file.get(), out.get(), 4096) == kFileDone) {
        EXPECT_EQ(0, stringText(out.get())[out->length]);
        back += stringView(out.get());
    }
    EXPECT_EQ(content, back);
    EXPECT_EQ(1, file->atEnd);
    EXPECT_LT(0u, out->length) << "the end leaves the text alone";
    EXPECT_EQ(kFileAtEnd, zfileRead(file.get(), out.get(), 4096));
}

TEST_F(ZFileTest, ReadsTheCommonFormatAndSaysWhereItIsDamaged) {
    put("f.gz", sizeof kHello);
    Owned<ZFile> file = record("f");
    ASSERT_EQ(kFileDone, zfileOpen(file.get(), kFileRead));
    EXPECT_EQ(kFileDone, zfileRead(file.get(), out.get(), 3));
    EXPECT_EQ(0, file->atEnd);
    EXPECT_EQ(kFileDone, zfileRead(file.get(), out.get(), 10));
    EXPECT_EQ("lo\n", stringView(out.get()));
    EXPECT_EQ(1, file->atEnd);
    zfileClose(file.get());
    unsigned char damaged[sizeof kHello];
    std::copy(kHello, kHello + sizeof kHello, damaged);
    damaged[18] ^= 1;
    std::ofstream(fs::path(kFolder) / "f.gz", std::ios::binary)
        .write(reinterpret_cast<const char*>(damaged), sizeof damaged);
    ASSERT_EQ(kFileDone, zfileOpen(file.get(), kFileRead));
    FileStatus status = kFileDone;
    for (int i = 0; i < 9 && status == kFileDone; ++i) status = zfileRead(file.get(), out.get(), 4);
    EXPECT_EQ(kFileShort, status);
    EXPECT_EQ(1, file->atEnd);
}

TEST_F(ZFileTest, OpensInTwoModesOnly) {
    Owned<ZFile> file = record("new");
    for (uint32_t mode : {0u, 3u, 4u, 5u, 6u, 7u})
        EXPECT_EQ(kFileWrongMode, zfileOpen(file.get(), mode));
    EXPECT_TRUE(fs::is_empty(kFolder));
    EXPECT_EQ(kFileCannotOpen, zfileOpen(file.get(), kFileRead));
    EXPECT_EQ(kFileNull, zfileOpen(nullptr, kFileRead));
    EXPECT_FALSE(bfileIsReadable(file.get()));
}

}  // namespace
