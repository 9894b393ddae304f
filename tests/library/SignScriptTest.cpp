#include "ProgramRun.h"

namespace {

constexpr char kBody[] = "function main\n  echo \"ran\" # so\nend\n";

class SignScriptTest : public ProgramRun {
  protected:
    SignScriptTest() : ProgramRun(PLAINCAST_SIGNSCRIPT) {}
};

}  // namespace

TEST_F(SignScriptTest, PutsTheSignatureWhereTheAuthorWantsIt) {
    const std::string sign = "signature [NON:]";
    const std::pair<std::string, std::string> cases[] = {
        {"", sign + "\n"},
        {kBody, sign + "\n" + kBody},
        {"echo 1\r\nend", sign + "\r\necho 1\r\nend"},
        {"#! run\n\nend\n", "#! run\n" + sign + "\n\nend\n"},
        {"# a\n  signature\r\nend\n", "# a\n  " + sign + "\r\nend\n"},
        {"\tsignature  [AES:12] # b\nend\n", "\t" + sign + " # b\nend\n"},
        {"signat\rure \"a # b\" \r\nend", sign + " \r\nend"},
        {"# signature x\nend\n  signature ( a", "# signature x\nend\n  " + sign}};
    for (const auto& [before, after] : cases) {
        write("s.qcs", before);
        check({"--stdout", 0, after.c_str()}, run("--stdout --variant NON s.qcs"));
        EXPECT_EQ(before, read("s.qcs")) << "only shown";
        check({"in place", 0, "s.qcs: signed, NON"}, run("--variant NON s.qcs"));
        EXPECT_EQ(after, read("s.qcs"));
    }
    EXPECT_EQ(3, std::distance(fs::directory_iterator("."), {})) << "nothing is left beside it";
}

TEST_F(SignScriptTest, SaysWhetherASignatureHoldsAndWhyNot) {
    for (const char* variant : {"AES", "DES", "NON"}) {
        const std::string signedAs = std::string("s.qcs: signed, ") + variant;
        write("s.qcs", std::string("# head\n\nsignature\n") + kBody);
        run(std::string("s.qcs --variant ") + variant);
        const std::string text = read("s.qcs");
        check({"--verify", 0, signedAs.c_str()}, run("--verify s.qcs"));
        check({variant, 0, "ran\n"}, run(PLAINCAST_PROGRAM, "s.qcs"));
        if (std::string("NON") == variant) break;
        write("s.qcs", text + "global more\n");
        check({"a line", 1, "line 3: the lines below are not"}, run("--verify s.qcs"));
        check({"a line", 3, "CONFIGURATION ERROR"}, run(PLAINCAST_PROGRAM, "s.qcs"));
        check({"other", 1, "is asked for"}, run("--verify --variant NON s.qcs"));
    }
    run("--include s.qcs");
    check({"included", 0, "signed, AES"}, run("--verify --include s.qcs"));
    check({"included", 1, "only when the script is included (--include)"}, run("--verify s.qcs"));
}

TEST_F(SignScriptTest, SaysWhyItDoesNotDoIt) {
    const struct {
        std::string script;
        ProgramCase wanted;
    } cases[] = {
        {kBody, {"--verify s.qcs", 1, "s.qcs: NOT SIGNED: there is no signature line"}},
        {"signature\n", {"--verify s.qcs", 1, "line 1: the signature line has no text yet"}},
        {"signature \"[NON:]\"\n", {"--verify s.qcs", 1, "in quotes"}},
        {"signature [NON:12]\n", {"--verify s.qcs", 1, "nothing may stand behind the colon"}},
        {"signature {AES:12]\n", {"--verify s.qcs", 1, "has not the form"}},
        {"signature [aes:12]\n", {"--verify s.qcs", 1, "its variant aes is none of"}},
        {"signature [AES:12]\n", {"--verify s.qcs", 1, "it has 2 digits in place of 32"}},
        {"signature [DES:0123456789abcdef]\n", {"--verify s.qcs", 1, "must be in capitals"}},
        {"signature [AES:0123456789ABCDEG]\n", {"--verify s.qcs", 1, "digits that are none"}},
        {"signature x\n\nsignature x\n", {"s.qcs", 2, "on line 1 and on line 3"}},
        {"end\n" + std::string(10000, 'x'), {"s.qcs", 2, "line 2 has 10000 bytes"}},
        {kBody, {"--help --nonsense", 2, "no option --nonsense"}},
        {kBody, {"--help", 0, "Exit codes: "}},
        {kBody, {"", 2, "no script is named"}},
        {kBody, {"--variant aes s.qcs", 2, "\"aes\" is none of"}},
        {kBody, {"--stdout s.qcs s.qcs", 2, "one script"}},
        {kBody, {"-- --verify", 2, "--verify: cannot be read"}},
        {kBody, {". s.qcs.none", 2, ".: cannot be read"}},
        {kBody, {"--verify none.qcs s.qcs", 2, "s.qcs: NOT SIGNED"}}};
    for (const auto& [script, wanted] : cases) {
        write("s.qcs", script);
        check(wanted, run(wanted.arguments));
        EXPECT_EQ(script, read("s.qcs"));
    }
}
