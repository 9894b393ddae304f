#include "ScriptCases.h"

#include <cstring>

// What the engine says of a script that it refuses, and of one that fails.

namespace {

using ScriptMessages = ScriptCases;

constexpr char kVariables[] =
    "var u\nlist l\nvector w\nset t\nmap m\npointer p\nstring s\nnumber n\ntree r\nparser a\n";

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
        {"include \"none/ScriptCases.qcs\"",
         "scriptEngineParse: Cannot find script file \"*\"\nscriptEngineParse: Failed to include "
         "\"*\", line 1 in file \"*\""}};
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
return ( none ) -> @Evaluate: Undefined variable in expression |
  Parameter 1 is not (properly) defined
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
          kVariables);
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
          kVariables);
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
        const std::string token(row, static_cast<size_t>(strchr(row, ' ') - row));
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
    check(cases, std::string(kVariables) + "echo ( ", " )");
}

}  // namespace
