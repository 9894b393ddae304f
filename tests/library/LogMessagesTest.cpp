#include "logger/LogMessages.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>

#include "containers/Memory.h"
#include "logger/MessageCatalogue.h"
#include "logger/MessageExpand.h"
#include "platform/machine.h"

namespace {

namespace fs = std::filesystem;

// Each test runs in a folder of its own, which is all of the search path too, with
// a settings store that does not exist.
class LogMessagesTest : public testing::Test {
  protected:
    LogMessagesTest()
        : start(fs::current_path()),
          folder(fs::temp_directory_path() / ("LogMessagesTest" + id())) {
        fs::remove_all(folder);
        fs::create_directories(folder);
        fs::current_path(folder);
        osSetEnvironment("path", folder.string());
        osSetEnvironment("QUOREL_REGISTRY", (folder / "none.db").string());
    }
    ~LogMessagesTest() override {
        logMessagesDone();
        fs::current_path(start);
        fs::remove_all(folder);
    }

    static std::string id() {
        return std::to_string(std::chrono::steady_clock::now().time_since_epoch().count());
    }
    static void put(const std::string& text) {
        std::ofstream("logmsg.conf", std::ios::binary) << text;
    }
    static std::string at(uint32_t number) {
        const String* text = messageCatalogueFind(number);
        return text == nullptr ? "(none)" : std::string(stringView(text));
    }

    fs::path start;
    fs::path folder;
};

TEST_F(LogMessagesTest, ReadsLinesByTheirRules) {
    put("\r\n# 1=comment\n 2 = two = 2 \r\n\n3\n=x\n4x=no\n-5=no\n6=\n7=#::2%S\n2=later\n" +
        std::string(50, '\x01') + "8 =last\xFF");
    EXPECT_TRUE(logMessagesInit());
    EXPECT_EQ("two = 2", at(2));
    EXPECT_EQ("", at(3));
    EXPECT_EQ("", at(6));
    EXPECT_EQ("#::2%S", at(7));
    EXPECT_EQ("last\xFF", at(8));
    EXPECT_EQ(6u, messageCatalogueCount());
}

TEST_F(LogMessagesTest, CountsItsUsers) {
    put("1=a");
    EXPECT_TRUE(logMessagesInit());
    EXPECT_TRUE(logMessagesInit());
    logMessagesDone();
    EXPECT_EQ("a", at(1));
    logMessagesDone();
    EXPECT_EQ("(none)", at(1));
    logMessagesDone();
    EXPECT_TRUE(logMessagesInit());
}

TEST_F(LogMessagesTest, TellsMissingEmptyAndUnreadableFilesApart) {
    EXPECT_FALSE(logMessagesInit());
    EXPECT_TRUE(messageCatalogueExists());
    EXPECT_EQ(0u, messageCatalogueCount());
    logMessagesDone();
    put("# nothing but a comment");
    EXPECT_TRUE(logMessagesInit());
    EXPECT_EQ(11u, messageCatalogueCount());
    EXPECT_EQ("Could not find/access file \"%s\"", at(200)) << "the first of two";
    logMessagesDone();
    fs::remove("logmsg.conf");
    fs::create_directory("logmsg.conf");
    EXPECT_FALSE(logMessagesInit());
    EXPECT_FALSE(messageCatalogueExists());
}

TEST_F(LogMessagesTest, LinesThatAreTooLongEndTheReading) {
    put("1=a\n2=" + std::string(9997, 'x') + "\n3=b\n4=" + std::string(9998, 'x') + "\n5=c\n");
    EXPECT_TRUE(logMessagesInit());
    EXPECT_EQ("b", at(3));
    EXPECT_EQ(3u, messageCatalogueCount());
}

TEST_F(LogMessagesTest, FailsCleanlyWithoutMemory) {
    put("1=a\n2=b\n3=c\n");
    for (int n = 0; n < 60; ++n) {
        memFailAfter(n, n % 2 == 0);
        logMessagesInit();
        memFailAfter(-1, false);
        logMessagesDone();
    }
    EXPECT_TRUE(logMessagesInit());
    EXPECT_EQ(3u, messageCatalogueCount());
}

// Each number with the letters of the arguments that its messages pass.
TEST_F(LogMessagesTest, TheProgramsOwnCatalogueTakesWhatIsPassed) {
    const std::string kNumbers =
        "0:SN 10: 11: 12:S 13:S 14:N 15:S 16:S 100: 200:S 201:S 202:S 203:S 204:S 205:S 206:S "
        "208:S 209:SN 211:SS 214:S 216:S 220: 221:N 222:S 223:S 225:S 226:S 227:S 228:S 231:S 400: "
        "401: 402: 403: 404: 405:S 406: 407: 408: 409:S 410:SN 411: 412: 413: 414: 415: 416: 417: "
        "451: 500:S 501:S 502: 503:NS 504:SNS 505:S 506:NS 507:SSS 508:S 713:SS 714:S 1000:S "
        "1001: 1002: 1003: 1100: 1101: 1102: 1111: 1116:S 1118:SNS 1119:SS 1122:SNS 1123: 1124: "
        "1132:S 1135:NS 1147:S 1300: 1301: 1302: ";
    fs::copy_file(start / "logmsg.conf", "logmsg.conf");
    ASSERT_TRUE(logMessagesInit());
    uint32_t count = 0;
    for (size_t from = 0; from < kNumbers.size(); ++count) {
        const size_t colon = kNumbers.find(':', from);
        const size_t end = kNumbers.find(' ', colon);
        const std::string number = kNumbers.substr(from, colon - from);
        const std::string letters = kNumbers.substr(colon + 1, end - colon - 1);
        from = end + 1;
        std::string taken;
        const std::string text = at(static_cast<uint32_t>(std::stoul(number)));
        for (size_t i = text.find('%'); i != std::string::npos; i = text.find('%', i + 2))
            taken += text[i + 1] == 's' || text[i + 1] == 'S' ? 'S' : 'N';
        EXPECT_EQ(letters, taken) << number << "=" << text;
        EXPECT_LT(8u, text.size()) << number;
    }
    EXPECT_EQ(count, messageCatalogueCount());
    const LogArg args[] = {"else", 3u, "x.qcs", "y"};
    Owned<String> line(messageExpand("scriptEngineParseBlock: #::1122", LogForm::Call, args, 4));
    EXPECT_EQ("scriptEngineParseBlock: \"else\" without its \"if\", line 3 in file \"x.qcs\"",
              stringView(line.get()));
}

}  // namespace
