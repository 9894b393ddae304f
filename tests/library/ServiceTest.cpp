#include "services/Service.h"

#include <sstream>

#include "ScriptCases.h"
#include "ServiceWorld.h"

using std::string_literals::operator""s;

namespace {

TEST(Service, EachFailureHasItsText) {
    const std::pair<ServiceStep, const char*> tables[] = {
        {ServiceStep::Manager, R"(5 Access to service manager was denied
1065 Service data base does not exist
2 Unable to open service manager. (Error code=%u)
)"},
        {ServiceStep::Open, R"(5 Access to service manager was denied
123 Invalid service name "%S"
1060 Service "%S" does not exist
1065 Unable to open service "%S". (Error code=%u)
)"},
        {ServiceStep::GetState, R"(5 Access denied when attempting to access service "%S"
1115 The system is shutting down
1062 Failed to stop service "%S". (Error code=%u)
)"},
        {ServiceStep::Stop, R"(5 Access denied when attempting to stop service "%S"
1051 A service depending on "%S" is still running
1053 The service "%S" process was previously started, but it did not report successful start or is blocking control
1061 The service "%S" is in a state where it cannot be stopped
1062 The service "%S" has not been started
1115 The system is shutting down
3 Failed to stop service "%S". (Error code=%u)
)"},
        {ServiceStep::Start, R"(3 Binary for service "%S" could not be found
5 Access denied when attempting to start service "%S"
1053 The service "%S" process was started, but it did not report successful start
1054 A thread could not be created for the service "%S"
1056 Service "%S" is already running
1058 The service "%S" has been disabled
1068 The service "%S" depends on another service that has failed to start
1069 The service "%S" did not start due to a logon failure
1072 The service "%S" is marked for deletion
1075 A service "%S" is depending on does not exist (or has been marked for deletion)
1115 Failed to start service "%S". (Error code=%u)
)"}};
    for (const auto& [step, table] : tables) {
        std::istringstream rows(table);
        std::string text;
        for (uint32_t error; rows >> error && std::getline(rows.ignore(), text);)
            EXPECT_EQ(text, serviceErrorFormat(step, error)) << error;
    }
    std::string states;
    for (uint32_t state = 0; state <= 8; ++state) states += serviceStateWord(state) + ","s;
    EXPECT_EQ(
        "error,stopped,start pending,stop pending,running,"
        "continue pending,pause pending,paused,error,",
        states);
}

// A line each: NAME ACTION -> what `success` is, and the text, "old" before; `until STATE`;
// or as in `casesOf`.
std::vector<Case> serviceCases(const std::string& table) {
    std::istringstream rows(table);
    std::string cases = "\n";
    for (std::string line, name, word, rest; std::getline(rows, line); cases += line + "\n") {
        rest.clear();
        std::getline(std::istringstream(line) >> name >> word, rest);
        if (name == "until")
            line = "for ( n = 0 ) ( n < 100 & s != \"" + word + "\" ) ( ++ n ); service " +
                   "\"QuorelServiceTest\" \"getstate\" s; sleep 50; end; show ( s ) -> " + word;
        else if (line[0] != ' ' && word[0] != '"')
            line = "service \"" + name + "\" \"" + word + "\" s; OK; show ( ok . s )" + rest;
    }
    return casesOf(cases);
}

using ServiceTest = ScriptCases;

TEST_F(ServiceTest, ScriptsControlServices) {
    times_ = 1;
    constexpr char kShared[] = R"(QuorelServiceTest getstate -> 1stopped
QuorelServiceTest stop -> 0The service "QuorelServiceTest" has not been started
QuorelServiceTest explode -> 1old
QuorelServiceTest START -> 1old
QuorelServiceTest start -> 1old
until running
QuorelServiceTest start -> 0Service "QuorelServiceTest" is already running
QuorelServiceTest stop -> 1old
until stopped
QuorelServiceOff start -> 0The service "QuorelServiceOff" has been disabled
QuorelServiceOff getstate -> 1stopped
QuorelServiceNone getstate -> 0Service "QuorelServiceNone" does not exist
QuorelServiceNone explode -> 0Service "QuorelServiceNone" does not exist
a/b start -> 0Invalid service name "a/b"
service "" "stop" n; show ( n ) -> Invalid service name ""
)";
    const ServiceWorld world;
    check(serviceCases(std::string(kShared) + ServiceWorld::kCases),
          "string s ok\nnumber n\neval ( s = \"old\" )\n");
}

}  // namespace
