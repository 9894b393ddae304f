#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

#include "ScriptEngine3/ScriptEngine.h"
#include "logger/LogMessages.h"
#include "logger/MessageExpand.h"
#include "platform/machine.h"

// What the engine says of a script that it refuses, and of one that fails.

namespace {

constexpr char kFile[] = "ScriptMessagesTest.qcs";
constexpr int kLevel = kLogError;

constexpr char kVariables[] =
    "var u\nlist l\nvector w\nset t\nmap m\npointer p\nstring s\nnumber n\ntree r\nparser a\n";

struct Case {
    std::string script;
    std::string messages;
};

std::string heard;

// Puts `#` for the number behind each `word`.
void maskNumbers(std::string* line, const std::string& word) {
    for (size_t at = 0; (at = line->find(word, at)) != line->npos;) {
        at += word.size();
        const size_t end = line->find_first_not_of("0123456789", at);
        line->replace(at, end == line->npos ? end : end - at, "#");
    }
}

// Keeps each message on a line of its own, without the path of the script, and
// without the records that name a place in our own sources.
bool hear(void*, int level, LogForm form, const char* format, const LogArg* args, uint32_t count) {
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

class ScriptMessages : public testing::Test {
  protected:
    static void SetUpTestSuite() {
        osSetEnvironment("QUOREL_REGISTRY", "ScriptMessagesTest.db");
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

    // Runs each case as a function of its own, between `head` and `tail`.
    void check(const std::vector<Case>& cases, const std::string& head, const std::string& tail) {
        std::string script = "function same a a\nend\n";
        for (size_t at = 0; at < cases.size(); ++at)
            script += "function f" + std::to_string(at) + "\n" + kVariables + head +
                      cases[at].script + tail + "\nend\n";
        ASSERT_TRUE(parse(script)) << heard;
        for (size_t at = 0; at < cases.size(); ++at) {
            EXPECT_EQ(cases[at].messages, run("f" + std::to_string(at))) << cases[at].script;
            EXPECT_NE("", heard) << cases[at].script;
        }
    }

    ScriptEngine* engine_ = nullptr;
};

// Cases of a table, a line each: STATEMENT; STATEMENT -> MESSAGE | MESSAGE, where
// @ stands for what the messages of handlers begin with.
std::vector<Case> casesOf(std::string table) {
    std::vector<Case> cases;
    const auto each = [](std::string text, const std::string& from, const std::string& to) {
        for (size_t at = 0; (at = text.find(from, at)) != text.npos; at += to.size())
            text.replace(at, from.size(), to);
        return text;
    };
    table = each(table, "@", "scriptEngine");
    for (size_t at = 1, end; (end = table.find('\n', at)) != table.npos; at = end + 1) {
        const size_t sign = table.find(" ->", at);
        const std::string messages = table.substr(sign + 3, end - sign - 3);
        cases.push_back({each(table.substr(at, sign - at), "; ", "\n"),
                         messages.empty() ? "" : each(messages.substr(1), " | ", "\n") + "\n"});
    }
    return cases;
}

std::string inLine(const char* text, int line) {
    return text + std::string(" in line ") + std::to_string(line) + " in file \"*\"";
}

TEST_F(ScriptMessages, OfAScriptThatDoesNotParse) {
    const std::string count = "scriptEngineValidateArgs: Wrong number of arguments of command ";
    const std::string wrong = "\nscriptEngineParse: INTERNAL ERROR! - Wrong arguments of command ";
    const std::string name = "scriptEngineValidateArgs: Invalid argument ";
    const std::string unknown = "scriptEngineProcessLine: Unknown function ";
    const std::string inBody = "\n" + inLine("scriptEngineParseBlock: Error occured", 2);
    const std::string body =
        "\nscriptEngineParse: Failed to read the body of function \"f\" in file \"*\"";
    const std::string noIf = "scriptEngineParseBlock: \"else\" without its \"if\", line ";
    const std::string args =
        "\n" +
        inLine("scriptEngineParseBlock: Failed to process arguments to function \"eval\"", 1);
    const std::string invalid = "scriptEngineProcessArgs: Invalid argument: ";
    const std::string element = "scriptEngineParseExpression: Unknown element ";
    const std::string failed = "\nscriptEngineProcessArgs: Failed to parse expression ";
    const Case cases[] = {
        {"nonsense 1", unknown + "\"nonsense\"\n" + inLine("scriptEngineParse: Error occured", 1)},
        {"\n  # comment\r\nend",
         unknown + "\"end\"\n" + inLine("scriptEngineParse: Error occured", 3)},
        {"\neval\t1", unknown + "\"eval\t1\"\n" + inLine("scriptEngineParse: Error occured", 2)},
        {"echo 1",
         inLine("scriptEngineParse: Function \"echo\" can not be in the global scope", 1)},
        {"number", count + "\"number\"" + wrong + "\"number\""},
        {"eval ( 1 ) )", count + "\"eval\"" + wrong + "\"eval\""},
        {"eval ( 1  + 2 )", "   scriptEngineParseArgs: More than one blank between arguments\n" +
                                inLine("scriptEngineParse: Error occured", 1)},
        {"eval ( )", invalid + "\"\x1F\"" + args},
        {"eval foo(1)", invalid + "\"foo\x1F\x31\"" + args},
        {"eval a~b", invalid + "\"a~b\"" + args},
        {"eval \"open # text", invalid + "\"\"open # text\"" + args},
        {"eval )", "scriptEngineProcessArgs: ')' missing matching '('" + args},
        {"eval \x1F)",
         "scriptEngineParseExpression: Malformed expression \")\"" + failed + "\")\"" + args},
        {"eval ( a ~ b )", element + "\"~\" in expression \"a ~ b\"" + failed + "\"a ~ b\"" + args},
        {"eval (a+1)", element + "\"a+1\" in expression \"a+1\"" + failed + "\"a+1\"" + args},
        {"eval ( file:x )",
         element + "\"file:x\" in expression \"file:x\"" + failed + "\"file:x\"" + args},
        {"eval ( \"a\"b c )",
         element + "\"\"a\"b c\" in expression \"\"a\"b c\"" + failed + "\"\"a\"b c\"" + args},
        {"function f\nend\nfunction f\nend",
         "scriptEngineParse: User function \"f\" in line 3 in file \"*\" is already defined"},
        {"function \"f\"\nend", name +
                                    "\"\"f\"\" to function \"function\" - expected variable "
                                    "name" +
                                    wrong + "\"function\""},
        {"function f a 1\nend",
         name + "\"1\" to function \"function\" - expected variable name" + wrong + "\"function\""},
        {"function f\nvecget v 0 5",
         name + "\"5\" to function \"vecget\" - expected variable name" + inBody + body},
        {"function f\nis ( 1 + 1 ) \"number\"",
         name + "\"\x1F\x31 + 1\" to function \"is\" - expected variable name" + inBody + body},
        {"function f\nfor 1 2", count + "\"for\"" + inBody + body},
        {"function f\nif", count + "\"if\"" + inBody + body},
        {"function f\nif 1\nend\nelse 1",
         count + "\"else\"\n" + inLine("scriptEngineParseBlock: Error occured", 4) + body},
        {"function f\nbreak 1", count + "\"break\"" + inBody + body},
        {"function f\ninclude \"x\"",
         inLine("scriptEngineParseBlock: Function \"include\" must be in the global scope", 2) +
             body},
        {"function f\nelse", noIf + "2 in file \"*\"" + body},
        {"function f\nif 1\nend\nelse\nend\n\nelse", noIf + "7 in file \"*\"" + body},
        {"function f\nif 1\nend\necho 1\nelse", noIf + "5 in file \"*\"" + body},
        {"function f\nif 1\nwhile 1\nnothing",
         unknown + "\"nothing\"\n" + inLine("scriptEngineParseBlock: Error occured", 4) +
             "\nscriptEngineParse: Failed to parse \"while\" block at line 3 in file \"*\"" +
             "\nscriptEngineParse: Failed to parse \"if\" block at line 2 in file \"*\"" + body},
        {"include \"none/ScriptMessagesTest.qcs\"",
         "scriptEngineParse: Cannot find script file \"*\"\nscriptEngineParse: Failed to include "
         "\"*\", line 1 in file \"*\""},
    };
    for (const auto& [script, messages] : cases) {
        EXPECT_FALSE(parse(script)) << script;
        EXPECT_EQ(messages + "\n", heard) << script;
    }
    // After a failure another attempt is possible, after a success none.
    const Owned<String> path(stringFromView(kFile));
    EXPECT_TRUE(parse("include \"" + std::string(kFile) + "\"\nnumber n\n"));
    EXPECT_FALSE(scriptEnginePrepareRun(engine_, path.get()));
    EXPECT_EQ("scriptEnginePrepareRun: This script engine has already been prepared!\n", heard);
}

TEST_F(ScriptMessages, OfAStatementThatFails) {
    check(casesOf(R"(
echo none -> @Echo: Failed to get string value
echo ( u ) -> @Evaluate: Invalid expression | @Echo: Failed to get string value
echo ( 1 2 ) -> @Evaluate: Invalid expression | @Echo: Failed to get string value
echo ( ! ! n ) -> @Evaluate: Invalid expression | @Echo: Failed to get string value
echo ( &sqrt &sqrt n ) -> @Evaluate: Invalid expression | @Echo: Failed to get string value
echo ( - n ) -> @Evaluate: Invalid expression | @Echo: Failed to get string value
echo ( ( 1 + 2 -> @Evaluate: Failed to evaluate expression | @Echo: Failed to get string value
print r -> @Print: Failed to get string value
error u -> @Error: Failed to get string value
exit none -> Parameter 1 is not (properly) defined
return ( none ) -> @Evaluate: Undefined variable in expression | Parameter 1 is not (properly) defined
call "same" 1 2 3 -> @Call: INTERNAL ERROR!
call "same" 1 none -> @Call: Invalid argument no. 2
call "same" ( 1 2 ) -> @Evaluate: Invalid expression | @Call: Invalid argument no. 1
call "same" 1 u -> scriptObjectDefaultAssign: INTERNAL ERROR! | @Call: Failed to set parameter
call "none" -> @RunBlock:  Could not find block (function?) - while executing script line # in "*"
if none; end -> Parameter 1 is not (properly) defined
if u; end -> @If: Unable to determine boolean result of condition
if 0; end; elseif u; end -> @Elseif: Unable to determine boolean result of condition
while none; end -> Invalid first parameter
while u; end -> @While: Unable to determine boolean result of condition
for none 1 1; end -> Parameter 1 is not (properly) defined
for 1 none 1; end -> Invalid first parameter
for 1 1 none; end -> Invalid first parameter
for 1 u 1; end -> @For: Unable to determine boolean result of condition
query 5 1 s -> Parameter 1 must be a "string"
query "?" l s -> Second parameter must be a string or a number
query "?" 1 none -> Parameter 3 is not (properly) defined
new 5 p -> Parameter 1 must be a "string"
new "list" none -> @New: Failed to get pointer
new "list" n -> @New: First argument must be a pointer
is none "file" -> Parameter 1 is not (properly) defined
is n 5 -> Parameter 2 must be a "string"
retype n 5 -> Parameter 2 must be a "string"
default l 1 -> Command 'default' only applies to strings and numbers
default n "5" -> @Default: Default value is of different type
eval none -> Parameter 1 is not (properly) defined
size none n -> Parameter 1 is not (properly) defined
setptr n s -> @Ptr: First argument must be a pointer
loginfo 5 -> Parameter 1 must be a "string"
logtrace none -> Parameter 1 is not (properly) defined
logerror "100% of %s, #::99999%s, #::14" -> 100% of %s, #::99999%s, (Error: %i)
)"),
          "", "");
    const std::string undefined = "Parameter 1 is not (properly) defined\n";
    const std::string noIncrement =
        "evaluateIncr: Can only increment numbers\nscriptEngineEvaluate: Failed to evaluate "
        "expression\n";
    check({{"call none",
            "scriptEngineRunBlock: Failed to locate call function in line # in file \"*\" (Did you "
            "forget to quote the function name?)\n"},
           {"if ( ++ s )\nend", noIncrement + undefined},
           {"while ( ++ s )\nend",
            noIncrement + "scriptEngineWhile: Unable to determine boolean result of condition\n"},
           {"eval ( p += 1 )",
            "evaluatePlus: Invalid left operand pointer\nevaluateAddassign: Failed to assign\n"
            "scriptEngineEvaluate: Failed to evaluate expression\n" +
                undefined},
           {"setptr p none",
            "Parameter 2 is not (properly) defined\nParameter 2 is not (properly) defined\n"
            "scriptEnginePtr: Second parameter is invalid\n"}},
          "", "");
    // A failure goes up through all that runs, each level adding its record.
    ASSERT_TRUE(
        parse("function f\nif 1\nwhile 1\nfor 1 1 1\nexit none\nend\nend\nend\nend\n"
              "function main\ncall \"f\"\nend\n"));
    run("");
    const std::string error = "scriptEngineRunBlock: Error occurred in line # in file \"*\"\n";
    EXPECT_EQ(undefined + error + "scriptEngineFor: Failed to execute script block 3\n" + error +
                  "scriptEngineWhile: Failed to execute script block 2\n" + error +
                  "scriptEngineIf: Failed to execute script block 1\n" + error +
                  "scriptEngineCall: Failed to execute script block 0\n" + error +
                  "scriptEngineExecuteFunction: Failed to execute script block 4\n"
                  "scriptEngineRunArgs: Failed to execute \"\"\n",
              heard);
}

TEST_F(ScriptMessages, OfOperators) {
    std::vector<Case> cases = casesOf(R"(
++ p -> evaluateIncr: Invalid pointer
-- p -> evaluateDecr: Invalid pointer
++ s -> evaluateIncr: Can only increment numbers
-- l -> evaluateDecr: Can only decrement numbers
! u -> evaluateNot: Failed to get boolean value
&bool p -> evaluateBool: Failed to get boolean value
&num p -> evaluateNum: Invalid right operand pointer
n + l ->
p + 1 -> evaluatePlus: Invalid left operand pointer
1 + p -> evaluatePlus: Invalid right operand pointer
p . 1 -> evaluateConcat: Invalid left operand pointer
1 . p -> evaluateConcat: Invalid right operand pointer
r . 1 -> evaluateConcat: Failed to get left operand. Make sure it is defined!
1 . u -> evaluateConcat: Failed to get right operand. Possible reason: Out of memory
s &remove a -> evaluateRemove: Possible error: Out of memory
p &match s -> evaluateStrMatch: Invalid left operand pointer
s &match p -> evaluateStrMatch: Invalid right operand pointer
1 &match s -> evaluateStrMatch: Both operands must be strings
0 &of p -> evaluateOf: Invalid right operand pointer
p &of w -> evaluateOf: Invalid left hand operand pointer
s &of s -> evaluateOf: Left hand operand must be number
-1 &of w -> evaluateOf: Invalid left hand operand (index out of bounds - 4294967295 >= 0)
p &of l -> evaluateOf: Right operand must be a map or a vector (and not a ref)
u ? 1 ->
1 ? u ->
u : 1 ->
n { 1 ->
s = u -> scriptObjectDefaultAssign: INTERNAL ERROR! | evaluateAssign: Failed to assign
n = p -> evaluateAssign: Failed to assign
u = u ->
r = r ->
l += n -> evaluateAddassign: Failed to assign
)");
    cases.push_back({"1 &of m",
                     "evaluateOf: Invalid left hand operator (left hand operator's value is not a "
                     "member of the right hand map)\n"});
    cases.push_back({"u .= 1",
                     "evaluateConcat: Failed to get left operand. Make sure it is defined!\n"
                     "evaluateConcatassign: Failed to assign\n"});
    const char* orders[][2] = {{"<", "evaluateLt"},  {">", "evaluateGt"},  {"<=", "evaluateLe"},
                               {">=", "evaluateGe"}, {"==", "evaluateEq"}, {"!=", "evaluateNe"}};
    for (const auto& [token, name] : orders)
        for (const char* operands : {"r < r", "a < s", "n < p"})
            cases.push_back({std::string(operands).replace(2, 1, token),
                             name + std::string(": Failed to compare\n")});
    for (const char* row :
         {"&max Max", "&min Min", "&avg Avg", "^ Pow", "* Mult", "/ Div", "% Mod", "- Minus"}) {
        const std::string token(row, strchr(row, ' '));
        const std::string name = "evaluate" + std::string(row + token.size() + 1);
        cases.push_back({"p " + token + " s", name + ": Invalid left operand pointer\n"});
        cases.push_back({"s " + token + " p", name + ": Invalid right operand pointer\n"});
        cases.push_back({"s " + token + " 1", name + ": Both operands must be numbers\n"});
        if (token[0] == '&') continue;
        const std::string assigning = token == "-" ? "evaluateSub" : name;
        cases.push_back({"n " + token + "= s", name + ": Both operands must be numbers\n" +
                                                   assigning + "assign: Failed to assign\n"});
    }
    const char* onTexts[][2] = {{"&fexists", "evaluateFExists: "},
                                {"&fsize", "evaluateFSize: "},
                                {"&esc", "evaluateEsc: "},
                                {"&base", "evaluateBase: "},
                                {"&sqrt", "evaluateSqrt: "}};
    for (const auto& [token, name] : onTexts) {
        const bool root = token == std::string("&sqrt");
        cases.push_back(
            {token + std::string(" p"), name + std::string("Invalid right operand pointer\n")});
        cases.push_back(
            {token + std::string(root ? " s" : " n"),
             name + std::string("Operand must be ") + (root ? "number\n" : "string\n")});
    }
    for (Case& one : cases)
        one.messages +=
            "scriptEngineEvaluate: Failed to evaluate expression\n"
            "scriptEngineEcho: Failed to get string value\n";
    check(cases, "echo ( ", " )");
}

TEST_F(ScriptMessages, OfCommandsOnTextsAndTimes) {
    check(casesOf(R"(
strsplit n "," s -> Parameter 1 must be a "string"
strsplit "a,b," "," s none s -> Parameter 4 is not (properly) defined
strtovector s s l -> Parameter 3 must be a "vector"
strtovector s s w u -> @StrToVector: Failed to get boolean value of third parameter
strtolist s s l u -> @StrErase: Failed to get boolean value of third parameter
strtoset s s t u -> @StrToSet: Failed to get boolean value of third parameter
strtoset s s t ->
strtomap s s s m u -> @StrToMap: Failed to get boolean value of fourth parameter
strtomap s s s r -> Parameter 4 must be a "map"
strfind s s s -> Parameter 2 must be a "string"
strsub s s 1 s -> Parameter 2 must be a "number"
strpatternmatch s s u -> @StrErase: Failed to get boolean value of third parameter
strlower s none -> Parameter 2 is not (properly) defined
stralign s "" 0 9 -> @StrAlign: Second parameter has no value
stralign s "-" "l" 9 -> Parameter 3 must be a "number"
strtotime "2009-02-29" n -> @StrToTime: Failed to parse string time
maketime m n -> @MakeTime: Out of memory
maketime m m -> @MakeTime: Out of memory
gettick s -> Parameter 1 must be a "number"
strdiff s s s w -> The command "strdiff" is missing from this build
)"),
          "", "");
}

TEST_F(ScriptMessages, OfContainers) {
    check(casesOf(R"(
vecappend l 1 -> Parameter 1 must be a "vector"
listpush w 1 -> Parameter 1 must be a "list"
setclear w -> Parameter 1 must be a "set"
mapclear none -> Parameter 1 is not (properly) defined
treeclear m -> Parameter 1 must be a "illegal type"
vecappend w 1 u -> @VecAppend: Failed to append parameter 3
vecappend w 1 none -> Parameter 3 is not (properly) defined
vecappend w 1 ( w = 2 ) -> Parameter 1 must be a "vector"
vecappend w r -> @VecAppend: Failed to append parameter 2
vecinsert w s 1 -> Parameter 2 must be a "number"
vecinsert w 0 none -> @VecInsert: Failed to insert value
vecset w 0 u -> @VecSet: Failed to set value
vecset w 0 1 -> @VecSet: Out of memory
vecerase w 0 -> @VecErase: Index out of bounds
vecappend w 1; vecerase w 0 -> @VecErase: Index out of bounds
vecappend w 1 2; vecerase w -1 -> @VecErase: Index out of bounds
vecappend w 1 2; vecerase w 0 s -> @VecErase: Second parameter must be a number
vecget w 0 n -> @VecGet: Index out of bounds
vecappend w 1; vecget w ( 0 / 0 - 1 ) n -> @VecGet: Index out of bounds
vecappend w 1; vecget w 0 none -> Parameter 3 is not (properly) defined
vecgetnext w n -> @VecGetNext: Iteration has not been initialized
vecappend w 1; vecgetfirst w none -> Parameter 2 is not (properly) defined
vecappend w 1 2 3; vecgetlast w n; vecerase w 0 2; vecgetnext w n; vecgetnext w n -> @VecGetNext: NULL-object found at index 0 in vector
vecappend w 1; vecgetfirst w n; vecclear w; vecgetnext w n -> @VecGetNext: NULL-object found at index 4294967295 in vector
vecappend w p; vecgetfirst w n -> @VecGetFirst: Failed to assign vector value to target variable
vecappend w p; vecgetlast w n -> @VecGetLast: Failed to assign vector value to target variable
vecappend w 1 p; vecgetfirst w n; vecgetnext w n -> @VecGetNext: Failed to assign vector value to target variable
vecappend w p; vecget w 0 n -> @VecGet: Failed to assign vector value to target variable
vecsetcur w 1 -> @VecSetCur: Iteration has not been initialized
vecappend w 1; vecgetfirst w n; vecclear w; vecsetcur w 1 -> @VecSetCur: Iteration has not been initialized
vecappend w 1; vecgetfirst w n; vecsetcur w u -> @VecSetCur: Failed to set value
listappend l 1 u -> @ListAppend: Failed to append parameter 3
listpush l u 1 -> @ListPush: Failed to append parameter 2
listinsert l 1 -> @ListInsert: Iteration has not been initialized
listappend l 1; listgetfirst l n; listclear l; listinsert l 1 -> @ListInsert: Iteration has not been initialized
listappend l 1; listgetfirst l n; listinsert l u -> @ListInsert: Failed to erase
listerase l -> @ListErase: Iteration has not been initialized
listappend l 1 2; listgetlast l n; listerase l; listerase l -> @ListErase: Iteration has not been initialized
listappend l 1; listgetnext l n -> @ListGetNext: Iteration has not been initialized (1)
listappend l 1; listgetfirst l n; listgetnext l n; listgetnext l n -> @ListGetNext: Iteration has not been initialized (2)
listappend l p; listgetfirst l n -> @ListGetFirst: Failed to assign list value to target variable
listappend l p; listgetlast l n -> @ListGetLast: Failed to assign list value to target variable
listappend l 1 p; listgetfirst l n; listgetnext l n -> @ListGetNext: Failed to assign list value to target variable
listsetcur l 1 -> @ListSetCur: Iteration has not been initialized
listappend l 1; listgetfirst l n; listsetcur l u -> @ListSetCur: Failed to set value
setinsert t u 1 -> @SetInsert: Failed to append parameter 2
setinsert t 1; setgetnext t n -> @SetGetNext: Iteration has not been initialized
setinsert t 1; setgetfirst t n; seterase t 1; setinsert t 1; setgetnext t n; setgetnext t n -> @SetGetNext: Iteration has not been initialized
setinsert t p; setgetfirst t n -> @SetGetFirst: Failed to assign set value to target variable
setinsert t p; setgetlast t n -> @SetGetLast: Failed to assign set value to target variable
setinsert t p 1; setgetlast t n; setgetnext t n -> @SetGetNext: Failed to assign set value to target variable
mapinsert m u 1 -> @MapInsert: Failed to access parameter 2
mapset m 1 u -> @MapInsert: Failed to access parameter 3
mapset m 1 p; mapget m 1 n -> @MapGet: Failed to get map value
mapset m 1 1; mapgetnext m n n -> @MapGetNext: Iteration has not been initialized
mapset m p 1; mapgetfirst m n s -> @MapGetFirst: Failed to get map key
mapset m 1 p; mapgetfirst m n s -> @MapGetFirst: Failed to get map value
mapset m p 1; mapgetlast m n s -> @MapGetLast: Failed to get map key
mapset m 1 p; mapgetlast m n s -> @MapGetLast: Failed to get map value
mapset m 1 1; mapset m 0 p; mapgetlast m n s; mapgetnext m n s -> @MapGetNext: Failed to get map value
mapset m 1 1; mapset m p 1; mapgetlast m n s; mapgetnext m n s -> @MapGetNext: Failed to get map key
mapset m 1 1; mapgetfirst m n s; maperase m 1; mapsetcur m 1 -> @MapSetCur: Iteration has not been initialized
mapset m 1 1; mapgetfirst m n s; mapsetcur m u -> @MapSetCur: Failed to set value
treeaddnode r "" 5 -> Parameter 3 must be a "string"
treeset r 5 5 -> Parameter 2 must be a "string"
treeset r "" u -> @TreeSet: Failed to access parameter 3
treeset r "" p; treeget r "" n -> @TreeGet: Failed to get tree value
treegetsub r "" m -> @TreeGetSub: Third parameter must be a vector, a list or a set
treecopynode r m "" "" -> Parameter 2 must be a "illegal type"
treecopynode r r "" "" -> @TreeCopyNode: Out of memory
)"),
          "", "");
}

TEST_F(ScriptMessages, OfFiles) {
    const std::filesystem::path folder = "ScriptMessagesTest.tmp";
    std::filesystem::create_directories(folder);
    std::ofstream(folder / "long") << std::string(4095, 'x') << "\n" << std::string(4096, 'y');
    std::ofstream(folder / "huge").close();
    std::filesystem::resize_file(folder / "huge", 5368709120);
    const std::string noFile = "bfileOpen: Cannot open file \"ScriptMessagesTest.tmp/n/o\"\n";
    const std::string open = "fileopen f \"ScriptMessagesTest.tmp/long\" \"read\"\n";
    const Case cases[] = {
        {"fileopen n \"x\" \"read\"", "Parameter 1 must be a \"file\""},
        {"fileopen f \"x\" \"Read\"", "scriptEngineFileOpen: Invalid file mode"},
        {"fileopen f @n/o\" \"read\"", noFile + "scriptEngineFileOpen: Failed to open file"},
        {"fileopen f @long/x/y\" \"append\"",
         "scriptEngineFileOpen: Could not access directory of \"ScriptMessagesTest.tmp/long/x/y\""},
        {"fileread f 1 s", "scriptEngineFileRead: File not opened for reading"},
        {"filereadline f s", "scriptEngineFileReadLine: File not opened for reading"},
        {"filereaduntil f \";\" s", "scriptEngineFileReadUntil: File not opened for reading"},
        {open + "fileread f 1 f", "Parameter 1 must be a \"file\""},
        {open + "fileread f \"1\" s", "Parameter 2 must be a \"number\""},
        {open + "filewrite f s", "scriptEngineFileWrite: File not opened for writing"},
        {open + "filewriteline f s", "scriptEngineFileWriteLine: File not opened for writing"},
        {"filewrite f 1", "Parameter 2 must be a \"string\""},
        {open + "filereadline f s\nlogerror ( \"\" . &sizeof s )\nfilereadline f s",
         "4095\nscriptEngineFileReadLine: Failed to read"},
        {open + "filereaduntil f \"y\" s\nfilereaduntil f \";\" s",
         "scriptEngineFileReadUntil: Failed to read"},
        {"filetostr @huge\" s", "scriptEngineFileToStr: Failed to read from file"},
        {"fileopen f @huge\" \"read\"\nsize f n\nlogerror ( n . \" \" . &fsize @huge\" )",
         "1073741824 5368709120"},
        {"vecappend w 1\nfiletovector @long\" w",
         "scriptEngineFileToVector: Failed to read from file"},
        {"filetolines @n/o\" s", noFile + "scriptEngineFileToLines: Failed to open file"},
        {"filetolines @long\" s s s s", "scriptEngineFileToLines: Failed to read from file"},
        {"filetolist @n/o\" l\nstrtofile s @n/o\"",
         noFile + "scriptEngineStrToFile: Failed to open file"},
        {"vectortofile l @x\"", "Parameter 1 must be a \"vector\""},
        {"listappend l \"1\" 2\nlisttofile l @x\"",
         "scriptEngineListToFile: Failed to write to file"},
        {"mapset m 1 a\nmaptofile m \"=\" @x\"", "scriptEngineMapToFile: Failed to write to file"},
        {"linestofile @x\" 1 l u", "scriptEngineLinesToFile: Parameter 3 has no value"},
    };
    std::string script;
    for (size_t number = 0; const Case& one : cases) {
        script += "function f" + std::to_string(number++) + "\nfile f\n" + kVariables + one.script;
        for (size_t at; (at = script.find('@')) != script.npos;)
            script.replace(at, 1, "\"ScriptMessagesTest.tmp/");
        script += "\nend\n";
    }
    ASSERT_TRUE(parse(script)) << heard;
    for (size_t number = 0; const auto& [text, messages] : cases)
        EXPECT_EQ(messages + "\n", run("f" + std::to_string(number++))) << text;
    std::filesystem::remove_all(folder);
}

}  // namespace
