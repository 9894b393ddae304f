#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include "ScriptEngine3/CommandFamilies.h"
#include "ScriptEngine3/ScriptEngine.h"
#include "platform/machine.h"

// Every command that writes to a variable, run with that variable as each of
// its other arguments too: what is read must stay readable while it is written.
// The sanitizers judge; what the commands say or do is the matter of other tests.

namespace {

constexpr char kFile[] = "CommandAliasTest.qcs";

// Reads its answer from the console.
constexpr std::string_view kWaits[] = {"query"};

// The numbers of a target list, "1,3" or "1-100".
std::vector<unsigned> targetsOf(const CommandRow& row) {
    std::vector<unsigned> targets;
    for (const char* at = row.targetSpec; at != nullptr && *at != 0; at += *at == ',') {
        char* end;
        unsigned number = static_cast<unsigned>(strtoul(at, &end, 10));
        unsigned last = *end == '-' ? static_cast<unsigned>(strtoul(end + 1, &end, 10)) : number;
        for (; number <= last; ++number) targets.push_back(number);
        at = end;
    }
    return targets;
}

class CommandAlias : public testing::Test {
  protected:
    // A function that runs the command with `name` at target and source, once
    // for each type that `name` can have.
    void add(const CommandRow& row, unsigned count, unsigned target, unsigned source) {
        static constexpr const char* kTypes[] = {"number", "string", "list",   "vector", "set",
                                                 "map",    "tree",   "parser", "config", "file"};
        for (const char* type : kTypes)
            for (const char* name : {"v", "p"}) {
                script_ += "function f" + std::to_string(functions_++) + "\npointer p q\n" + type +
                           " v\nsetptr p v\nvar a b c d e f g\n";
                // Texts and numbers that are no names of anything.
                if (type == std::string_view("string")) script_ += "eval ( v = \"1;a=b\" )\n";
                if (type == std::string_view("number")) script_ += "eval ( v = 1 )\n";
                script_ += row.name;
                for (unsigned at = 1; at <= count; ++at)
                    script_ += at == target   ? std::string(" v")
                               : at == source ? " " + std::string(name)
                                              : " " + std::string(1, static_cast<char>('`' + at));
                script_ += "\necho ( v . p . q )\nend\n";
            }
    }

    void runAll() const {
        std::ofstream(kFile, std::ios::binary) << script_;
        ScriptEngine* engine = scriptEngineCreate();
        ASSERT_TRUE(scriptEnginePrepareEngine(engine));
        engine->requireSignature = 0;
        const Owned<String> path(stringFromView(kFile));
        ASSERT_TRUE(scriptEnginePrepareRun(engine, path.get()));
        for (unsigned number = 0; number < functions_; ++number) {
            const Owned<String> name(stringFromView("f" + std::to_string(number)));
            scriptEngineRun(engine, name.get());
            EXPECT_EQ(0u, engine->stack.size()) << stringView(name.get());
        }
        scriptEngineDestroy(&engine);
        remove(kFile);
    }

    std::string script_ = "function main\nend\n";
    unsigned functions_ = 0;
};

TEST_F(CommandAlias, EveryTargetAsEverySource) {
    osSetEnvironment("QUOREL_REGISTRY", "CommandAliasTest.db");
    unsigned commands = 0;
    for (const CommandFamily& family : commandFamilies())
        for (const CommandRow& row : family.rows) {
            const std::vector<unsigned> targets = targetsOf(row);
            bool waits = row.opensBlock || row.directive != kNoDirective;
            for (const std::string_view name : kWaits) waits |= name == row.name;
            if (waits || targets.empty()) continue;
            ++commands;
            const unsigned count = std::max(row.minArgs, std::min(row.maxArgs, 3u));
            for (const unsigned target : targets)
                for (unsigned source = 1; source <= count && target <= count; ++source)
                    if (source != target) add(row, count, target, source);
        }
    EXPECT_LT(100u, commands);
    runAll();
}

// A pointer can see an element of a container, and the command can end it there.
TEST_F(CommandAlias, ATextThatIsAnElementOfTheTarget) {
    constexpr char kVector[] = "vector v\nstrtovector \"y=1;x=2 and more;y=3\" \"|\" v\n";
    constexpr char kMap[] = "map v\nstrtomap \"x=y=1;x=2 and more;y=3\" \"=\" \"|\" v\n";
    const auto add = [this](const char* container, const char* walk, const char* command) {
        script_ += "function f" + std::to_string(functions_++) + "\npointer p\nvar a\n" +
                   container + walk + command + "\necho ( v )\nend\n";
    };
    for (const char* command :
         {"strlower p v", "strtrim p v", "strsub p 1 5 v", "strsplit p \";\" v a", "strfind v p p",
          "strinsert v 0 p", "strtovector p p v", "vecset v 0 p", "vecget v 0 v", "vecappend v p"})
        add(kVector, "vecgetfirst v p\n", command);
    for (const char* command : {"strtomap p \"=\" p v", "strtomap p \"=\" \";\" v",
                                "strtomap \"x=1\" p p v", "mapset v p p", "maperase v p"})
        add(kMap, "mapgetfirst v a p\n", command);
    runAll();
}

}  // namespace
