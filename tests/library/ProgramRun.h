#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "platform/machine.h"

namespace fs = std::filesystem;

// Runs one of the programs in a folder of the test's own.

struct Outcome {
    int exitCode;
    std::string output;
    std::string errors;
};

class ProgramRun : public testing::Test {
  protected:
    explicit ProgramRun(const char* program)
        : folder_(fs::temp_directory_path() / ("plaincast" + std::to_string(std::rand()))),
          before_(fs::current_path()),
          program_(program) {
        while (!fs::create_directory(folder_)) folder_ += "x";
        fs::current_path(folder_);
        // No settings of this machine, where they are kept in a file.
        osSetEnvironment("QUOREL_REGISTRY", (folder_ / "registry.db").string());
    }
    ~ProgramRun() override {
        fs::current_path(before_);
        fs::remove_all(folder_);
    }
    static void write(const fs::path& name, const std::string& text) {
        std::ofstream(name, std::ios::binary) << text;
    }
    static std::string read(const fs::path& name) {
        std::ifstream file(name, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(file), {});
    }
    Outcome run(const std::string& arguments) const { return run(program_, arguments); }
    Outcome run(const std::string& program, const std::string& arguments) const {
        // With the drive, which changed with the folder. One of the shells takes off the
        // quotes of a line that begins with one.
        const std::string path = (before_ / program).make_preferred().string();
        const std::string line = "cd . && \"" + path + "\" " + arguments + " > out.txt 2> err.txt";
        const int status = std::system(line.c_str());
        // The other system has the code in the upper byte.
        return {status > 255 ? status >> 8 : status, read("out.txt"), read("err.txt")};
    }

  private:
    fs::path folder_;
    fs::path before_;
    std::string program_;
};

struct ProgramCase {
    const char* arguments;
    int exitCode;
    const char* output;  // must be in it; nothing at all may be written when empty
};

inline void check(const ProgramCase& expected, const Outcome& outcome) {
    const std::string all = outcome.output + outcome.errors;
    EXPECT_EQ(expected.exitCode, outcome.exitCode) << expected.arguments << "\n" << all;
    if (*expected.output == 0)
        EXPECT_EQ("", all) << expected.arguments;
    else
        EXPECT_NE(all.npos, all.find(expected.output)) << expected.arguments << "\n" << all;
}
