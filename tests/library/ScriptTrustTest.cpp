#include <iterator>
#include <sstream>

#include "ScriptCases.h"
#include "ScriptEngine3/ScriptLimits.h"
#include "ScriptEngine3Defs/ScriptHash.h"
#include "ScriptEngine3Defs/ScriptKeys.h"
#include "containers/Memory.h"
#include "system/SystemInfo.h"

namespace {

using Lines = std::vector<std::string>;

constexpr char kLibrary[] = "ScriptTrust.lib.qcs";
constexpr char kMismatch[] =
    "scriptEngineParse: The signature does not fit the script file \"*\"\n";
constexpr char kUnsigned[] =
    "contains one or more commands that cannot be executed as long as the script is not signed.";

Lines split(const std::string& text) {
    std::istringstream stream(text);
    Lines items;
    for (std::string item; std::getline(stream, item, '|');) items.push_back(item);
    return items;
}

// What signs these lines, as they are when blanks and comments have gone.
std::string signatureOf(const Lines& lines, int variant = kVariantAes) {
    Owned<HashState> state(scriptHashCreate(kHashMd5));
    for (const std::string& line : lines) {
        const Owned<String> text(stringFromView(line));
        EXPECT_TRUE(scriptHashAdd(state.get(), text.get()));
    }
    LocalString result;
    EXPECT_TRUE(scriptHashFinish(state.get(), variant, &result));
    return std::string(stringView(&result));
}

class ScriptTrust : public ScriptCases {
  protected:
    bool isSigned(size_t source = 0) const { return engine_->sources[source].isSigned == 1; }
    // Runs main as a program would that asks for signatures.
    int32_t statusOfStrictRun() {
        engine_->requireSignature = 1;
        run("main");
        return engine_->statusCode;
    }
    ~ScriptTrust() override { remove(kLibrary); }
};

// By what the bytes of a part of a script may be replaced, and by what not.
struct PartKind {
    char letter;
    const char *accepted, *refused;
};
constexpr PartKind kPartKinds[] = {
    {'S', "", "x#\r\n \t\""},  // what makes a statement
    {'I', "\r\n \t", "x#\""},  // blanks before one
    {'B', "#\r\n \t", "x\""},  // blanks behind one
    {'C', "x#\r \t\"", "\n"},  // comment but for its last byte, which is
    {'A', "x#\r\n \t\"", ""},  // any byte
    {'N', "x", "#\n\""},       // a name, and the start of a statement, which
    {'G', "#", "x\r\n \t\""},  // are not covered
    {'E', "\r", "x# \n\t\""},  // the one thing not seen: a line end between statements
};

}  // namespace

TEST_F(ScriptTrust, EveryByteThatChangesAStatementBreaksTheSignature) {
    const std::string line =
        "signature " + signatureOf({"function main", "echo \"a # b\"", "echo a", "end"});
    // Each with the letter of its kind.
    const Lines parts =
        split("S#|C earl|Ay\n|Gg|Slobal |Ng|S\n" + line +
              "|B\n|I\n|Sfunction main|B  |S#|Cthe star|At|S\n|I\t |Secho \"a # b\"|B \n  \r|I\n |"
              "Secho a|E\n|Send|B\n|S#|C tai|Al");
    std::string script;
    for (const std::string& part : parts) script += part.substr(1);
    ASSERT_TRUE(parse(script)) << heard;
    ASSERT_TRUE(isSigned());
    size_t at = 0;
    size_t tried = 0;
    const auto replace = [&](const char* others, bool accepted) {
        for (const char other : std::string(others)) {
            if (other == script[at]) continue;
            std::string changed = script;
            changed[at] = other;
            EXPECT_EQ(accepted, parse(changed) && isSigned())
                << "byte " << at << " as " << int{other} << " in\n"
                << changed;
            ++tried;
        }
    };
    for (const std::string& part : parts) {
        const PartKind* kind = std::begin(kPartKinds);
        while (kind->letter != part[0]) ++kind;
        for (const size_t end = at + part.size() - 1; at < end; ++at) {
            replace(kind->accepted, true);
            replace(kind->refused, false);
        }
    }
    EXPECT_EQ(script.size(), at);
    EXPECT_LT(700u, tried);
}

TEST_F(ScriptTrust, OnlyTheSignatureItselfIsOne) {
    const Lines lines = {"function main", "end"};
    const std::string aes = signatureOf(lines);
    const std::string des = signatureOf(lines, kVariantDes);
    const std::string digits = aes.substr(5, 32);
    std::string lower = aes;
    for (char& c : lower) c = static_cast<char>(tolower(c));
    EXPECT_EQ(aes, signatureOf(lines, kVariantDefault));
    EXPECT_EQ("[NON:]", signatureOf(lines, kVariantNone));
    ASSERT_EQ(38u, aes.size());
    const auto verdict = [&](const std::string& text) {
        return parse("signature" + text + "\nfunction main\nend\n") && isSigned();
    };
    for (const std::string& good : {aes, des, "  " + aes + "\t # note", std::string("[NON:]")})
        EXPECT_TRUE(verdict(" " + good)) << good << heard;
    Lines wrong = split("\"" + aes + "\"|" + lower + "|[AES:" + des.substr(5) + "|[DES:" + digits +
                        "]|[aes:" + digits + "]|[XYZ:" + digits + "]|[AES: " + digits +
                        "]|[NON:" + digits + "]|" + aes + "]|" + aes + "0|( " + aes + " )|" + aes +
                        " " + aes + "|[NON: ]|[non:]|\"[NON:]\"|NON|NONE:|[:]|[<NULL>:]|[XYZ:]|[]");
    for (size_t length = 0; length < aes.size(); ++length) wrong.push_back(aes.substr(0, length));
    for (const std::string& text : wrong) EXPECT_FALSE(verdict(" " + text)) << text;
    EXPECT_FALSE(verdict("\t" + aes)) << "a tab makes it another word";
    parse("signature " + lower + "\nfunction main\nend\n");
    EXPECT_EQ(kMismatch, heard);
}

TEST_F(ScriptTrust, EachFileHasASignatureOfItsOwn) {
    const std::string include = std::string("include \"") + kLibrary + "\"";
    const Lines tail = {"function main", "makedir \"ScriptTrust.dir\"", "call \"helper\"", "end"};
    Lines mine = {include};
    mine.insert(mine.end(), tail.begin(), tail.end());
    const auto textOf = [](const std::string& signature, const Lines& lines) {
        std::string text = signature.empty() ? "" : "signature " + signature + "\n";
        for (const std::string& line : lines) text += line + "\n";
        return text;
    };
    const Lines helper = {"function helper", "deldir \"ScriptTrust.dir\"", "end"};
    const auto library = [&](const std::string& signature, const std::string& ownMain) {
        std::ofstream(kLibrary, std::ios::binary) << textOf(signature, helper) << ownMain;
    };
    const std::string main = textOf(signatureOf(mine), mine);
    Lines withMain = helper;
    withMain.push_back("function main");
    library(signatureOf(withMain), "function main\nif\nx y\nend\nanything\nend\n");
    ASSERT_TRUE(parse(main)) << "only the first line of a main that is passed over counts: "
                             << heard;
    EXPECT_TRUE(isSigned(0) && isSigned(1));
    EXPECT_EQ(0, statusOfStrictRun()) << heard;
    library("", "");
    ASSERT_TRUE(parse(main)) << heard;
    EXPECT_TRUE(isSigned(0) && !isSigned(1));
    EXPECT_EQ(1000, statusOfStrictRun()) << "the first statement of the other file";
    EXPECT_NE(heard.npos, heard.find(kUnsigned));
    EXPECT_EQ(0, rmdir("ScriptTrust.dir")) << "it came so far";
    library("[NON:]", "");
    ASSERT_TRUE(parse(main)) << heard;
    EXPECT_EQ(0, statusOfStrictRun()) << "NON does for the check, too";
    library(signatureOf(tail), "");
    EXPECT_FALSE(parse(main));
    EXPECT_NE(heard.npos, heard.find("does not fit the script file")) << heard;

    Lines two = {"signature [NON:]"};
    two.insert(two.end(), helper.begin(), helper.end());
    EXPECT_TRUE(parse(textOf(signatureOf(two), two)) && isSigned()) << "of two the first counts";
    EXPECT_FALSE(parse(textOf(signatureOf(helper), two)));
    EXPECT_TRUE(parse(textOf("", helper)) && !isSigned());
}

TEST_F(ScriptTrust, LimitsAreJudgedForTheUserTheGroupsAndTheTime) {
    ScriptUser ann;
    ann.name.reset(stringFromView("Ann"));
    ann.groups = vectorCreate();
    for (const char* group : {"staff", "Users"}) vectorAppend(ann.groups, stringFromText(group));
    Time now;
    ASSERT_TRUE(timeFromFields(&now, 2009, 3, 12, 12, 0, 0, 0));
    const std::pair<LimitCheck, const char*> cases[] = {
        {LimitCheck::None,
         "+u:ann|-u:bob|*u:ann|+u:$qrx|+U:bob;ann|+U:;$qrx|+g:STAFF|+G:wheel;users|+g:$qrx|+t:;|"
         "+t:2009-03-12T12:00:00Z|+t:;2009-03-12T12:00:00Z|+t:2009-03-01;2009-04-01|"
         "+t:20090301;20090401T1200|abc +u +u: +t: u:bob +x:bob +u;bob u:|"
         "+u:ann +G:staff -t:2010-01-01"},
        {LimitCheck::Applies,
         "+u:Bob|-u:ANN|*u:bob|+u:bob;ann|-u:$qrx|+u:$QRX|+U:bob;|-U:bob;ann|+g:wheel|-g:users|"
         "+G:wheel;root|+g:staff;users|+t:2009-03-12T12:00:01Z|+t:;2009-03-12T11:59:59.9Z|"
         "-t:2009-03-01;2009-04-01|+t:2009-04-01;2009-03-01|+u:bob +t:noon|+u:ann -g:staff"},
        {LimitCheck::Failed, "+t:noon|+t:;2009-02-30|+t:noon +u:bob"}};
    for (const auto& [wanted, lines] : cases) {
        for (const std::string& line : split(lines)) {
            std::istringstream words(line);
            const Lines tokens{std::istream_iterator<std::string>(words), {}};
            GrowArray<std::string_view> args;
            for (const std::string& token : tokens) args.push(token);
            EXPECT_EQ(wanted, scriptCheckLimitsFor(ann, now, args)) << line;
        }
    }
    GrowArray<std::string_view> names;
    names.push("staff");
    EXPECT_TRUE(scriptGroupIsNamed(ann, names)) << "wherever the system has no groups to show";
    EXPECT_FALSE(scriptUserIsNamed(ann, names));
    names[0] = "Staff";
    EXPECT_FALSE(scriptGroupIsNamed(ann, names)) << "case counts here";
}

TEST_F(ScriptTrust, RealAccountsOpenAndCloseScripts) {
    std::string user;
    ASSERT_TRUE(osUserName(&user));
    std::string other = user;
    for (char& c : other) c = static_cast<char>(islower(c) ? toupper(c) : tolower(c));
    const std::string refusal = "scriptEngineParse: User \"" + user + "\" is not ";
    const std::string place = " execute this script! See line 1 in file \"*\"\n";
    const std::string applies =
        "scriptEngineParse: Limitations apply, preventing the execution of this script! See line "
        "1 in file \"*\"\n";
    std::vector<Case> cases = {
        {"user " + user, ""},
        {"user nobody-here " + user, ""},
        {"limit +u:" + other, ""},
        {"user " + other, refusal + "allowed to" + place},
        {"limit -u:" + other, applies},
        {"limit +t:;2001-01-01", applies},
        {"limit +t:noon", "scriptEngineParse: Out of memory\n"},
        {"group no-such-group", refusal + "part of a group that is allowed to" + place}};
    if (std::string("linux") == osPlatformName()) {
        // What the system's own program says of the account, the primary group included.
        ASSERT_EQ(0, system(("id -Gn " + user + " >ScriptTrust.groups").c_str()));
        std::ifstream groups("ScriptTrust.groups");
        for (std::string group; groups >> group;) {
            cases.push_back({"group no-such-group " + group, ""});
            cases.push_back({"limit +g:" + group + " +G:x;" + group, ""});
            cases.push_back({"limit -g:" + group, applies});
        }
        EXPECT_LT(8u, cases.size());
        remove("ScriptTrust.groups");
    }
    for (const auto& [line, messages] : cases) {
        EXPECT_EQ(messages.empty(), parse(line + "\n")) << line;
        EXPECT_EQ(messages, heard) << line;
    }
    GrowArray<std::string_view> args;
    args.push("+u:$qrx");
    for (const long long served : {0, 1}) {
        memFailAfter(served, true);
        const LimitCheck check = scriptEngineCheckLimits(args);
        memFailAfter(-1, false);
        EXPECT_EQ(LimitCheck::Failed, check) << "without a name or without groups";
    }
}

TEST(ScriptKeys, StandNowhereInTheProgram) {
    std::ifstream file(PLAINCAST_PROGRAM, std::ios::binary);
    const std::string program(std::istreambuf_iterator<char>(file), {});
    EXPECT_NE(program.npos, program.find(std::string(scriptKeyTable, scriptKeyTable + 64)));
    const auto absent = [&](const uint8_t* key, size_t size) {
        for (size_t at = 0; at + 8 <= size; ++at)
            EXPECT_EQ(program.npos, program.find(std::string(key + at, key + at + 8))) << at;
    };
    absent(scriptDesKey(), kScriptDesKey);
    absent(scriptAesKey(), kScriptAesKey);
    for (size_t at = 0; at < kScriptAesKey; ++at)
        EXPECT_EQ(scriptKeyTable[scriptAesKeyList[at] * scriptKeyStep % 1024], scriptAesKey()[at]);
    EXPECT_EQ(1u, scriptKeyStep % 2);
}
