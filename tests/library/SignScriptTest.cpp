#include <iterator>

#include "ProgramRun.h"

namespace {

constexpr char kBody[] = "function main\n  echo \"ran\" # so\nend\n";

class SignScriptTest : public ProgramRun {
  protected:
    SignScriptTest() : ProgramRun(PLAINCAST_SIGNSCRIPT) {}
    static std::string written(const std::string& text) {
        write("s.qcs", text);
        return text;
    }
};

}  // namespace

TEST_F(SignScriptTest, PutsTheSignatureWhereTheAuthorWantsIt) {
    const std::string sign = "signature [NON:]";
    const std::pair<std::string, std::string> cases[] = {
        {"", sign + "\n"},
        {kBody, sign + "\n" + kBody},
        {"echo 1\r\nend", sign + "\r\necho 1\r\nend"},
        {"#! run\n\nend\n", "#! run\n" + sign + "\n\nend\n"},
        {"#! run", "#! run\n" + sign + "\n"},
        {"# a\n  signature\r\nend\n", "# a\n  " + sign + "\r\nend\n"},
        {"\tsignature  [AES:12] # b\nend\n", "\t" + sign + " # b\nend\n"},
        {"signat\rure \"a # b\" \r\nend", sign + " \r\nend"},
        {"# signature x\nend\n  signature ( a", "# signature x\nend\n  " + sign}};
    for (const auto& [before, after] : cases) {
        written(before);
        check({"--stdout", 0, after.c_str()}, run("--stdout --variant NON s.qcs"));
        EXPECT_EQ(before, read("s.qcs")) << "only shown";
        fs::permissions("s.qcs", fs::perms::owner_all);
        const fs::perms rights = fs::status("s.qcs").permissions();
        check({"in place", 0, "s.qcs: signed, NON"}, run("--variant NON s.qcs"));
        EXPECT_EQ(after, read("s.qcs"));
        EXPECT_EQ(rights, fs::status("s.qcs").permissions());
    }
    EXPECT_EQ(3, std::distance(fs::directory_iterator("."), {})) << "nothing is left beside it";
}

TEST_F(SignScriptTest, SaysWhetherASignatureHoldsAndWhyNot) {
    for (const char* variant : {"AES", "DES", "NON"}) {
        const std::string signedAs = std::string("s.qcs: signed, ") + variant;
        written(std::string("# head\n\nsignature\n") + kBody);
        run(std::string("s.qcs --variant ") + variant);
        const std::string text = read("s.qcs");
        check({"--verify", 0, signedAs.c_str()}, run("--verify s.qcs"));
        check({variant, 0, "ran\n"}, run(PLAINCAST_PROGRAM, "s.qcs"));
        if (std::string("NON") == variant) break;
        written(text + "# more\n");
        check({"a comment", 0, signedAs.c_str()}, run("--verify s.qcs"));
        written(text + "global more\n");
        check({"a line", 1, "line 3: the lines below are not"}, run("--verify s.qcs"));
        check({"a line", 3, "CONFIGURATION ERROR"}, run(PLAINCAST_PROGRAM, "s.qcs"));
        check({"again", 0, signedAs.c_str()}, run(std::string("s.qcs --variant ") + variant));
        check({"again", 0, "ran\n"}, run(PLAINCAST_PROGRAM, "s.qcs"));
        check({"other", 1, "is asked for"}, run("--verify --variant NON s.qcs"));
    }
    run("--include s.qcs");
    check({"included", 0, "signed, AES"}, run("--verify --include s.qcs"));
    check({"included", 1, "only when the script is included (--include)"}, run("--verify s.qcs"));
    const std::pair<std::string, const char*> cases[] = {
        {kBody, "there is no signature line"},
        {"signature\n", "line 1: the signature line has no text yet"},
        {"signature \"[NON:]\"\n", "in quotes"},
        {"signature [NON: ]\n", "blanks are in it"},
        {"signature [NON:12]\n", "nothing may stand behind the colon of NON"},
        {"signature {AES:12]\n", "has not the form"},
        {"signature [aes:12]\n", "its variant aes is none of"},
        {"signature [AES:12]\n", "it has 2 digits in place of 32"},
        {"signature [DES:0123456789abcdef0123456789ABCDEF]\n", "must be in capitals"},
        {"signature [AES:0123456789ABCDEG0123456789ABCDEF]\n", "digits that are none"}};
    for (const auto& [text, why] : cases) {
        written(text);
        check({text.c_str(), 1, why}, run("--verify s.qcs"));
    }
}

TEST_F(SignScriptTest, RefusesWhatItCannotDo) {
    write("two.qcs", "signature [NON:]\n\nsignature [NON:]\n");
    write("long.qcs", "end\n" + std::string(10000, 'x') + "\n");
    written(kBody);
    constexpr ProgramCase kCases[] = {{"--help --nonsense", 2, "no option --nonsense"},
                                      {"--help", 0, "Exit codes: "},
                                      {"", 2, "no script is named"},
                                      {"--variant", 2, "lacks its name"},
                                      {"--variant aes s.qcs", 2, "\"aes\" is none of"},
                                      {"--stdout s.qcs s.qcs", 2, "one script"},
                                      {"--stdout --verify s.qcs", 2, "one script"},
                                      {"-- --verify", 2, "--verify: cannot be read"},
                                      {"two.qcs", 2, "on line 1 and on line 3"},
                                      {"long.qcs", 2, "line 2 has 10000 bytes"},
                                      {".", 2, ".: cannot be read"},
                                      {"--verify none.qcs s.qcs", 2, "s.qcs: NOT SIGNED"}};
    for (const ProgramCase& each : kCases) check(each, run(each.arguments));
    EXPECT_EQ(kBody, read("s.qcs"));
}
