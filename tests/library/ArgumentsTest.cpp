#include "ScriptEngine3Defs/Arguments.h"

#include <gtest/gtest.h>

#include <string>

#include "ScriptEngine3/ScriptEngine.h"
#include "ScriptEngine3Expressions/Evaluator.h"
#include "ScriptEngine3Expressions/ExpressionParser.h"
#include "containers/Memory.h"
#include "logger/Logger.h"

// What handlers and operators read, while what they read from changes.

namespace {

constexpr char kText[] = "a text that is long enough to lie in memory of its own";

int logLevel = kLogError;
int messages = 0;

bool count(void*, int, LogForm, const char*, const LogArg*, uint32_t) {
    ++messages;
    return true;
}

class ArgumentsTest : public testing::Test {
  protected:
    static void SetUpTestSuite() { logAddGlobalListener(&messages, count, &logLevel); }
    static void TearDownTestSuite() { logShutdown(); }
    void SetUp() override {
        engine_ = scriptEngineCreate();
        block_ = engine_->globalBlock;
        for (uint32_t at = 0; at < 3; ++at) args_[at].id = scriptVarNameToId(tables(), kNames[at]);
        setAll();
    }
    void TearDown() override { scriptEngineDestroy(&engine_); }

    ParseTables* tables() { return engine_->parseTables; }
    ScriptObject* variable(uint32_t at) {
        return scriptBlockDeclareVar(block_, args_[at].id, kTypeUndef);
    }
    // `s` a text, `p` a pointer to it, `n` a number.
    void setAll() {
        scriptObjectRetype(variable(0), kTypeString);
        scriptObjectSetStringValue(engine_, variable(0), kText);
        scriptObjectRetype(variable(1), kTypePointer);
        scriptPointerAim(variable(1), variable(0), block_);
        scriptObjectRetype(variable(2), kTypeNumber);
        variable(2)->number = 7;
    }
    std::string textOf(const ScriptObject* object) {
        Owned<String> text(scriptObjectGetString(engine_, object, block_));
        return text ? std::string(stringView(text.get())) : "<none>";
    }

    static constexpr const char* kNames[] = {"s", "p", "n"};
    ScriptEngine* engine_ = nullptr;
    ScriptBlock* block_ = nullptr;
    ScriptArg args_[3];
    ScriptArgs list_{args_, 3, nullptr};
};

}  // namespace

TEST_F(ArgumentsTest, WhatWasReadStaysReadable) {
    using Change = void (*)(Arguments&, uint32_t);
    constexpr Change kChanges[] = {
        [](Arguments& in, uint32_t at) { in.retyped(at, kTypeVector); },
        [](Arguments& in, uint32_t at) { stringClear(&in.target(at)->string); },
        [](Arguments& in, uint32_t at) {
            stringSetView(&in.target(at, kTypeString)->string, "another text, of some length");
        },
        [](Arguments& in, uint32_t at) { scriptObjectRetype(in.target(at), kTypeNumber); }};
    for (const Change change : kChanges)
        for (const uint32_t source : {0u, 1u})
            for (const uint32_t target : {0u, 1u})
                for (const int reads : {1, 12})  // more than it lends without copies
                    for (const bool early : {false, true}) {
                        setAll();
                        Arguments in(engine_, block_, &list_);
                        ScriptObject* object = early ? in.target(target) : nullptr;
                        const String* text = nullptr;
                        for (int read = 0; read < reads; ++read) text = in.string(source);
                        if (early)
                            scriptObjectRetype(object, kTypeList);
                        else
                            change(in, target);
                        ASSERT_TRUE(in.ok());
                        EXPECT_EQ(kText, stringView(text));
                        scriptTemporariesFlush();
                    }
}

TEST_F(ArgumentsTest, NothingIsDoneAfterTheFirstFailure) {
    messages = 0;
    Arguments in(engine_, block_, &list_);
    EXPECT_EQ(0, in.number(0));
    EXPECT_EQ(kError, in.status());
    EXPECT_EQ(1, messages);
    EXPECT_EQ(nullptr, in.retyped(2, kTypeString));
    EXPECT_EQ(nullptr, in.string(0));
    EXPECT_EQ(nullptr, in.target(9));
    EXPECT_EQ(kTypeNumber, variable(2)->type);
    EXPECT_EQ(1, messages);
    EXPECT_EQ(kInvalidCall, Arguments(engine_, nullptr, &list_).status());
}

// Operands that an operator on their right, or memory that runs out, changes
// while they wait. Each program runs more than once.
TEST_F(ArgumentsTest, AnExpressionReadsWhatItsOperandsAreNow) {
    const std::string text = kText;
    const struct {
        const char* expression;
        std::string first;
        std::string second;  // of the same program, run again
    } cases[] = {{"s .= s", text + text, text + text + text + text},
                 {"p .= p", text + text, text + text + text + text},
                 {"s += n", text + "7", text + "77"},
                 {"( s . n ) . s", text + "7" + text, text + "7" + text},
                 {"s . ( s = 1 )", "11", "11"},
                 {"( s . n ) . ( s = 1 )", text + "71", "171"},
                 {"n + ( n = 1 )", "2", "2"},
                 {"n = n = 3", "3", "3"},
                 {"++ 5 + ( n += 1 )", "14", "16"},
                 {"s = p", text, text},
                 {"p = s", text, text},
                 {"n ? s : p", text, text},
                 {"n &of s", std::string(1, text[7]), std::string(1, text[7])},
                 {"s * 2", "<none>", "<none>"},
                 {"s +", "<none>", "<none>"},
                 {"( s", "<none>", "<none>"},
                 {"+ n 1", "8", "8"}};
    for (const auto& [expression, first, second] : cases) {
        Owned<ScriptBlock> body(scriptBlockCreate());
        ScriptExpression* program = scriptEngineParseExpression(engine_, body.get(), expression);
        ASSERT_NE(nullptr, program) << expression;
        ScriptBlock* instance = scriptBlockInstantiate(body.get(), block_);
        setAll();
        for (const std::string& expected : {first, second}) {
            const Owned<ScriptObject> value(scriptEngineEvaluate(engine_, instance, program));
            EXPECT_EQ(expected, textOf(value.get())) << expression;
        }
        for (long long at = 0; at < 12; ++at) {
            setAll();
            scriptBlockRenew(instance);
            memFailAfter(at, false);
            const Owned<ScriptObject> value(scriptEngineEvaluate(engine_, instance, program));
            memFailAfter(-1, false);
            const std::string now = textOf(variable(0));
            EXPECT_TRUE(now == text || now == first || now == "1")
                << expression << " was done in part or twice: " << now;
        }
        scriptBlockRetire(instance);
        scriptExpressionDestroy(&program);
        scriptTemporariesFlush();
    }
}
