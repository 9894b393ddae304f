#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

#include "ScriptEngine3/ScriptEngine.h"
#include "logger/LogMessages.h"
#include "logger/MessageExpand.h"
#include "platform/machine.h"

// Scripts of a few statements, and what the engine says of them.

constexpr char kFile[] = "ScriptCases.qcs";
constexpr int kLevel = kLogError;
struct Case {
    std::string script;
    std::string messages;
};

inline std::string heard;

// Puts `#` for the number behind each `word`.
inline void maskNumbers(std::string* line, const std::string& word) {
    for (size_t at = 0; (at = line->find(word, at)) != line->npos;) {
        at += word.size();
        const size_t end = line->find_first_not_of("0123456789", at);
        line->replace(at, end == line->npos ? end : end - at, "#");
    }
}

// Keeps each message on a line of its own, without the path of the script, and
// without the records that name a place in our own sources.
inline bool hear(void*, int level, LogForm form, const char* format, const LogArg* args,
                 uint32_t count) {
    if (level > kLevel) return true;
    const Owned<String> text(messageExpand(format, form, args, count));
    std::string line(stringView(text.get()));
    if (line.starts_with("   Error occured in file")) return true;
    for (size_t at; (at = line.find(kFile)) != line.npos;) {
        const size_t quote = line.rfind('"', at);
        line.replace(quote + 1, at + sizeof kFile - 2 - quote, "*");
    }
    heard += line + "\n";
    return true;
}

class ScriptCases : public testing::Test {
  protected:
    static void SetUpTestSuite() {
        osSetEnvironment("QUOREL_REGISTRY", "ScriptCases.db");
        osSetEnvironment("QUOREL_LOCKS", "ScriptCases.locks");
        logMessagesInit();
        logAddGlobalListener(&heard, hear, &kLevel);
    }
    static void TearDownTestSuite() {
        logShutdown();
        logMessagesDone();
        remove(kFile);
    }
    void TearDown() override { scriptEngineDestroy(&engine_); }

    bool parse(const std::string& script) {
        heard.clear();
        std::ofstream(kFile, std::ios::binary) << script;
        scriptEngineDestroy(&engine_);
        engine_ = scriptEngineCreate();
        if (!scriptEnginePrepareEngine(engine_)) return false;
        engine_->requireSignature = 0;
        const Owned<String> path(stringFromView(kFile));
        return scriptEnginePrepareRun(engine_, path.get());
    }

    // The messages of a function's run until the failed line itself is named.
    std::string run(const std::string& function) {
        heard.clear();
        const Owned<String> name(stringFromView(function));
        scriptEngineRun(engine_, name.get());
        maskNumbers(&heard, "line ");
        const size_t end = std::min(heard.find("scriptEngineRunBlock: Error occurred in line #"),
                                    heard.find("scriptEngineExecuteFunction: Failed"));
        return heard.substr(0, end);
    }

    // Runs each case as a function of its own, between `head` and `tail`, and once more:
    // what ran before runs another way.
    void check(const std::vector<Case>& cases, const std::string& head,
               const std::string& tail = "") {
        std::string script = functions_;
        for (size_t at = 0; at < cases.size(); ++at)
            script += "function f" + std::to_string(at) + "\n" + head + cases[at].script + tail +
                      "\nend\n";
        ASSERT_TRUE(parse(script)) << heard;
        for (size_t at = 0; at < cases.size(); ++at)
            for (int time = 0; time < times_; ++time) {
                EXPECT_EQ(cases[at].messages, run("f" + std::to_string(at))) << cases[at].script;
                EXPECT_NE("", heard) << cases[at].script;
            }
    }

    ScriptEngine* engine_ = nullptr;
    int times_ = 2;
    std::string functions_ = "function same a a\nend\n";  // that cases can call
};

// Cases of a table, a line each: STATEMENT; STATEMENT -> MESSAGE | MESSAGE. A line
// that begins with blanks goes on with the one before. In statements `show` gives a
// text as a message, and OK puts what `success` is behind the text `ok`, which
// most statements would clear before they look; in messages @ stands for what those of
// handlers begin with.
inline std::vector<Case> casesOf(std::string table) {
    std::vector<Case> cases;
    const auto each = [](std::string text, const std::string& from, const std::string& to) {
        for (size_t at = 0; (at = text.find(from, at)) != text.npos; at += to.size())
            text.replace(at, from.size(), to);
        return text;
    };
    table = each(each(each(table, "@", "scriptEngine"), "\n  ", " "), "show (", "logerror (");
    table = each(table, "; OK", "; for ( ok = ok . success ) 0 0; end");
    for (size_t at = 1, end; (end = table.find('\n', at)) != table.npos; at = end + 1) {
        const size_t sign = table.find(" ->", at);
        const std::string messages = table.substr(sign + 3, end - sign - 3);
        cases.push_back({each(table.substr(at, sign - at), "; ", "\n"),
                         messages.empty() ? "" : each(messages.substr(1), " | ", "\n") + "\n"});
    }
    return cases;
}
