#include "ProgramRun.h"

namespace {

constexpr const char* kScript = R"(
function main
  echo "ran"
end
function other
  echo "other"
end
function usage
  echo "usage"
end
function values
  echo a
end
function host
  echo localhost
end
function bin
  echo bindir
end
function leave
  setperiod 3600
  exit 7
end
function shorten
  setperiod 0.9
  echo "shortened"
end
function wrong
  setperiod "1"
end
)";

// The catalogue of the current folder, so that no other one is found.
constexpr const char* kCatalogue =
    "200=<no %S>\n1000=<lacks %s>\n1001=<no name>\n1002=<not added>\n1003=<no script>\n";

class PlainCastTest : public ProgramRun {
  protected:
    PlainCastTest() : ProgramRun(PLAINCAST_PROGRAM) {
        write("logmsg.conf", kCatalogue);
        write("t.qcs", kScript);
        write("bad.qcs", "function main\n  nonsense\nend\n");
    }
};

TEST_F(PlainCastTest, TakesTheScriptFromOneArgumentOrAnOption) {
    constexpr ProgramCase kCases[] = {
        {"t.qcs", 0, "ran\n"},
        {"/t.qcs", 3, "Usage: quorel_plaincast <options>\r\n"},
        {"-t.qcs", 3, "Usage: "},
        {"\"\"", 3, "Usage: "},
        {"t.qcs --debug", 3, "Usage: "},
        {"--debug --script t.qcs", 0, "PlainCast::configure: Done configuring\n"},
        {"--script \"'t.qcs'\"", 0, "ran\n"},
        {"--script nowhere.qcs", 3, "<no nowhere.qcs>"},
        {"--info", 3, "<no script>\n"},
        {"", 3, "CONFIGURATION ERROR\nCommand Line: "}};
    for (const ProgramCase& each : kCases) check(each, run(each.arguments));
    write("default.qcs", kScript);
    check({"", 0, "ran\n"}, run(""));
}

TEST_F(PlainCastTest, ReadsItsOptionsInOrder) {
    constexpr ProgramCase kCases[] = {
        {"--help --nonsense", 0, "  --info --verboxe --debug --trace : Set debug level\r\n"},
        {"--nonsense --help", 3, "CONFIGURATION ERROR"},
        {"--HELP", 3, "CONFIGURATION ERROR"},
        {"--parse --script t.qcs", 0, ""},
        {"--parse --script bad.qcs", 3, "CONFIGURATION ERROR"},
        {"--script bad.qcs", 3, "PlainCast::configure: "},
        {"--startfunc other --script t.qcs", 0, "other\n"},
        {"--startfunc other --usage --script t.qcs", 0, "usage\n"},
        {"--startfunc nowhere --script t.qcs", 0, "The function \"nowhere\" was not found"},
        {"--startfunc nowhere --silent --script t.qcs", 0, ""},
        {"--silent --info --script t.qcs", 0, "PlainCast::run: Exited run"},
        {"--startfunc", 3, "<lacks startfunc>"},
        {"--period", 3, "<lacks period>"},
        {"--var", 3, "<lacks var>"},
        {"--script", 3, "<lacks script>"}};
    for (const ProgramCase& each : kCases) check(each, run(each.arguments));
}

TEST_F(PlainCastTest, GivesVariablesToTheScript) {
    constexpr ProgramCase kCases[] = {
        {"--var a=b=c --startfunc values", 0, "b=c\n"},
        {"--var a=1 --var a=2 --startfunc values", 0, "2\n"},
        {"--var a --startfunc values", 0, "\n"},
        {"--var \"'a=x y'\" --startfunc values", 0, "x y\n"},
        {"--var =b", 3, "<no name>"},
        {"--var a-b=1", 3, "<not added>"},
        {"--var bindir=mine --startfunc bin", 0, "Failed to get string value"}};
    for (const ProgramCase& each : kCases)
        check(each, run(std::string(each.arguments) + " --script t.qcs"));
    // Bodies have a `scriptdir` of their own, so only a global statement sees this one.
    write("global.qcs", "new scriptdir made\nfunction main\n  echo made\nend\n");
    check({"scriptdir=number", 0, "0\n"}, run("--var scriptdir=number --script global.qcs"));
    check({"no such type", 0, "Failed to get string value"}, run("--script global.qcs"));
    const Outcome host = run("--startfunc host --script t.qcs");
    check({"localhost", 0, host.output.c_str()},
          run("--var localhost=- --startfunc host --script t.qcs"));
}

TEST_F(PlainCastTest, EndsWhenTheScriptSaysSo) {
    constexpr ProgramCase kCases[] = {{"--startfunc leave --period 3600", 7, ""},
                                      {"--startfunc shorten --period 3600", 0, "shortened\n"},
                                      {"--period nonsense", 0, "ran\n"},
                                      {"--startfunc wrong", 0, "Parameter 1 must be a \"number\""}};
    for (const ProgramCase& each : kCases)
        check(each, run(std::string(each.arguments) + " --script t.qcs"));
}

}  // namespace
