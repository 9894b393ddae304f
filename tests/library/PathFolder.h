#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "paths/PathError.h"
#include "platform/files.h"
#include "strings/String.h"

// For tests of what the disk does: a folder of the test program's own, which is
// the current directory meanwhile, and short ways to make and read files.
class PathFolder : public testing::Test {
  protected:
    void SetUp() override {
        ASSERT_EQ(0, osCurrentDirectory(&before_));
        folder_ = std::string(testing::UnitTest::GetInstance()->current_test_info()->name());
        std::filesystem::remove_all(folder_);
        ASSERT_EQ(0, osMakeDirectory(folder_));
        ASSERT_EQ(0, osSetCurrentDirectory(folder_));
    }
    void TearDown() override {
        osSetCurrentDirectory(before_);
        std::filesystem::remove_all(folder_);
    }

    static Owned<String> text(std::string_view bytes) {
        return Owned<String>(stringFromView(bytes));
    }
    static void write(const std::string& path, std::string_view bytes) {
        std::ofstream(path, std::ios::binary) << bytes;
    }
    // The contents of a file, "-" when it is not there and "/" for a directory.
    static std::string read(const std::string& path) {
        if (std::filesystem::is_directory(path)) return "/";
        std::ifstream file(path, std::ios::binary);
        if (!file) return "-";
        return {std::istreambuf_iterator<char>(file), {}};
    }
    // Calls an operation on paths; gives the code of its failure, 0 for success.
    template <typename Operation, typename... Flags>
    static uint32_t code(Operation operation, std::string_view path, Flags... flags) {
        const bool done = operation(text(path).get(), flags...);
        EXPECT_EQ(done, pathLastErrorCode() == kPathDone) << path;
        return done ? 0u : pathLastErrorCode();
    }
    template <typename Operation>
    static uint32_t code2(Operation operation, std::string_view a, std::string_view b, bool flag) {
        const bool done = operation(text(a).get(), text(b).get(), flag);
        EXPECT_EQ(done, pathLastErrorCode() == kPathDone) << a << " " << b;
        return done ? 0u : pathLastErrorCode();
    }

    std::string before_;
    std::string folder_;
};
