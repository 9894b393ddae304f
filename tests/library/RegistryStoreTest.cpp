#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <functional>
#include <iterator>

#include "ScriptCases.h"

namespace fs = std::filesystem;

namespace {

constexpr char kCommands[] = R"(
string word
function getreg
  string s
  getreg "HKEY_LOCAL_MACHINE\\a" "v" "str" s word
end
function getregsubkeys
  list l
  getregsubkeys "HKEY_LOCAL_MACHINE" l word
end
function setreg
  setreg "HKEY_LOCAL_MACHINE\\a" "v" "str" "x" word
end
function delregvalue
  delregvalue "HKEY_LOCAL_MACHINE\\a" "v" word
end
function delregkey
  delregkey "HKEY_LOCAL_MACHINE\\a" word
end
function tell
  logerror word
  eval ( word = "" )
end
)";

// The commands on a store that is not as it should be: a file of the test's own.
class RegistryStoreTest : public ScriptCases {
  protected:
    void SetUp() override {
        folder_ = fs::temp_directory_path() / ("store" + std::to_string(getpid()));
        fs::create_directory(folder_);
        fs::permissions(folder_, fs::perms::all);
        file_ = folder_ / "registry.db";
        osSetEnvironment("QUOREL_REGISTRY", file_.string());
        ASSERT_TRUE(parse(kCommands)) << heard;
    }
    void TearDown() override {
        ScriptCases::TearDown();
        fs::remove_all(folder_);
        osSetEnvironment("QUOREL_REGISTRY", "ScriptCases.db");
    }
    std::string content() const {
        std::ifstream file(file_, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(file), {});
    }
    // The words of all commands, with `!` where a line in the log tells why.
    std::string words() {
        std::string all;
        for (const char* name : {"getreg", "getregsubkeys", "setreg", "delregvalue", "delregkey"}) {
            const bool told = run(name).find("is damaged, or the file of") != std::string::npos;
            run("tell");
            all += heard.substr(0, heard.size() - 1) + (told ? "!," : ",");
        }
        return all;
    }

    fs::path folder_;
    fs::path file_;
};

void writeForeign(const fs::path& path) {
    sqlite3* database = nullptr;
    sqlite3_open(path.c_str(), &database);
    sqlite3_exec(database,
                 "PRAGMA journal_mode = WAL; CREATE TABLE keys (id, parent, name);"
                 "PRAGMA wal_checkpoint(TRUNCATE)",
                 nullptr, nullptr, nullptr);
    sqlite3_close(database);
}

// One test: the statements outside functions run once in a process.
TEST_F(RegistryStoreTest, TheWordTellsWhatIsWrongAndNothingIsOverwritten) {
    const std::function<void()> makers[] = {
        [&] { std::ofstream(file_) << "another program's settings\n"; },
        [&] { writeForeign(file_); },
        [&] {
            // Ours, cut off.
            run("setreg");
            fs::resize_file(file_, 4096);
        },
        [&] {
            // Ours, with the pages of its tables gone.
            run("setreg");
            std::fstream file(file_, std::ios::in | std::ios::out | std::ios::binary);
            file.seekp(4096);
            for (auto left = fs::file_size(file_) - 4096; left > 0; --left) file.put('x');
        }};
    for (const auto& make : makers) {
        fs::remove(file_);
        make();
        const std::string before = content();
        EXPECT_EQ("error!,error!,error!,error!,error!,", words()) << before.substr(0, 20);
        EXPECT_EQ(before, content());
    }

    fs::remove(file_);
    std::ofstream(file_).close();
    EXPECT_EQ("not found,,,,,", words()) << "a root is always there";

    run("setreg");
    const std::string before = content();
    chmod(file_.c_str(), 0);
    const bool isRoot = seteuid(65534) == 0;
    EXPECT_EQ("access,access,error,error,access,", words());
    ASSERT_EQ(0, isRoot ? seteuid(0) : 0);
    chmod(file_.c_str(), 0444);
    ASSERT_EQ(0, isRoot ? seteuid(65534) : 0);
    EXPECT_EQ(",,error,error,error,", words());
    ASSERT_EQ(0, isRoot ? seteuid(0) : 0);
    EXPECT_EQ(before, content());
}

}  // namespace
