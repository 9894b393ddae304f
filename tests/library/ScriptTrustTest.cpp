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
    ~ScriptTrust() override { remove(kLibrary); }
};

// By what the bytes of a part of a script may be replaced, and by what not.
constexpr const char* kPartKinds[][3] = {
    {"S", "", "x#\r\n \t\""},  // what makes a statement
    {"I", "\r\n \t", "x#\""},  // blanks before one
    {"B", "#\r\n \t", "x\""},  // blanks behind one
    {"C", "x#\r \t\"", "\n"},  // comment but for its last byte, which is
    {"A", "x#\r\n \t\"", ""},  // any byte
    {"N", "x", "#\n\""},       // a name, and the start of a statement, which
    {"G", "#", "x\r\n \t\""},  // are not covered
    {"E", "\r", "x# \n\t\""},  // the one thing not seen: a line end between statements
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
    ASSERT_TRUE(parse(script) && isSigned()) << heard;
    size_t at = 0;
    const auto replace = [&](const char* others, bool accepted) {
        for (const char other : std::string(others)) {
            if (other == script[at]) continue;
            std::string changed = script;
            changed[at] = other;
            EXPECT_EQ(accepted, parse(changed) && isSigned()) << at << "\n" << changed;
        }
    };
    for (const std::string& part : parts) {
        const auto* kind = std::begin(kPartKinds);
        while ((*kind)[0][0] != part[0]) ++kind;
        for (const size_t end = at + part.size() - 1; at < end; ++at) {
            replace((*kind)[1], true);
            replace((*kind)[2], false);
        }
    }
}

TEST_F(ScriptTrust, OnlyTheSignatureItselfIsOne) {
    const Lines lines = {"function main", "end"};
    const std::string aes = signatureOf(lines);
    const std::string des = signatureOf(lines, kVariantDes);
    const std::string digits = aes.substr(5, 32);
    std::string lower = aes;
    for (char& c : lower) c = static_cast<char>(tolower(c));
    EXPECT_EQ(aes, signatureOf(lines, kVariantDefault));
    const auto verdict = [&](const std::string& text) {
        return parse("signature" + text + "\nfunction main\nend\n") && isSigned();
    };
    for (const std::string& good : {aes, des, "  " + aes + "\t # note", std::string("[NON:]")})
        EXPECT_TRUE(verdict(" " + good)) << good << heard;
    // Wrong in each way, and in each length.
    Lines wrong = split("\"" + aes + "\"|" + lower + "|[AES:" + des.substr(5) + "|[DES:" + digits +
                        "]|[aes:" + digits + "]|[XYZ:" + digits + "]|[AES: " + digits +
                        "]|[NON:" + digits + "]|" + aes + "]|" + aes + "0|( " + aes + " )|" + aes +
                        " " + aes + "|[NON: ]|[non:]|\"[NON:]\"|NON|NONE:|[:]|[<NULL>:]|[XYZ:]|[]");
    for (size_t length = 0; length < aes.size(); ++length) wrong.push_back(aes.substr(0, length));
    for (const std::string& text : wrong) EXPECT_FALSE(verdict(" " + text)) << text;
    EXPECT_FALSE(verdict("\t" + aes)) << "a tab makes it another word";
    EXPECT_FALSE(verdict(" " + lower));
    EXPECT_EQ("scriptEngineParse: The signature does not fit the script file \"*\"\n", heard);
    // Behind a failure the table of commands is still there.
    size_t needing = 0;
    for (const CommandDef& def : engine_->parseTables->commandDefs)
        needing += def.row->needsSignature;
    EXPECT_EQ(39u, needing);
}

TEST_F(ScriptTrust, EachFileHasASignatureOfItsOwn) {
    const auto textOf = [](const std::string& signature, const Lines& lines) {
        std::string text = signature.empty() ? "" : "signature " + signature + "\n";
        for (const std::string& line : lines) text += line + "\n";
        return text;
    };
    const Lines helper = split("function helper|deldir \"ScriptTrust.dir\"|end");
    const auto library = [&](const std::string& signature, const std::string& ownMain) {
        std::ofstream(kLibrary, std::ios::binary) << textOf(signature, helper) << ownMain;
    };
    const Lines lines = split("include \"" + std::string(kLibrary) +
                              "\"|function main|makedir \"ScriptTrust.dir\"|call \"helper\"|end");
    const std::string main = textOf(signatureOf(lines), lines);
    const auto strictStatus = [&](bool librarySigned) {
        EXPECT_TRUE(parse(main)) << heard;
        EXPECT_TRUE(isSigned(0) && isSigned(1) == librarySigned);
        engine_->requireSignature = 1;
        run("main");
        return engine_->statusCode;
    };
    // Of a main that is passed over, the first line counts and nothing else.
    library(signatureOf(split("function helper|deldir \"ScriptTrust.dir\"|end|function main")),
            "function main\nif\nx y\nend\nanything\nend\n");
    EXPECT_EQ(0, strictStatus(true)) << heard;
    library("", "");
    EXPECT_EQ(1000, strictStatus(false)) << "the first statement of the other file";
    EXPECT_NE(heard.npos, heard.find("cannot be executed as long as the script is not signed."));
    EXPECT_EQ(0, rmdir("ScriptTrust.dir")) << "it came so far";
    library("[NON:]", "");
    EXPECT_EQ(0, strictStatus(true)) << "NON does for the check, too";
    library(signatureOf(lines), "");
    EXPECT_FALSE(parse(main));

    const Lines two = split("signature [NON:]|function main|end");
    EXPECT_TRUE(parse(textOf(signatureOf(two), two)) && isSigned()) << "of two the first counts";
    EXPECT_FALSE(parse(textOf(signatureOf(split("function main|end")), two)));
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
    names[0] = "Staff";
    EXPECT_FALSE(scriptGroupIsNamed(ann, names)) << "case counts here";
}

TEST_F(ScriptTrust, RealAccountsOpenAndCloseScripts) {
    std::string user;
    ASSERT_TRUE(osUserName(&user));
    std::string other = user;
    for (char& c : other) c = static_cast<char>(islower(c) ? toupper(c) : tolower(c));
    const std::string refusal = "scriptEngineParse: User \"" + user + "\" is not ";
    const std::string place = " this script! See line 1 in file \"*\"\n";
    const std::string applies =
        "scriptEngineParse: Limitations apply, preventing the execution of" + place;
    std::vector<Case> cases = {
        {"user nobody-here " + user, ""},
        {"limit +u:" + other, ""},
        {"user " + other, refusal + "allowed to execute" + place},
        {"limit -u:" + other, applies},
        {"limit +t:noon", "scriptEngineParse: Out of memory\n"},
        {"group no-such-group", refusal + "part of a group that is allowed to execute" + place}};
    if (std::string("linux") == osPlatformName()) {
        // What the system's own program says of the account, the primary group included.
        ASSERT_EQ(0, system(("id -Gnz " + user + " >ScriptTrust.groups").c_str()));
        std::ifstream groups("ScriptTrust.groups");
        for (std::string group; std::getline(groups, group, '\0');) {
            if (group.find(' ') != group.npos) continue;
            cases.push_back({"group no-such-group " + group, ""});
            cases.push_back({"limit +g:" + group + " +G:x;" + group, ""});
        }
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
        EXPECT_EQ(LimitCheck::Failed, scriptEngineCheckLimits(args)) << "no name, or no groups";
        memFailAfter(-1, false);
    }
}

TEST(ScriptKeys, StandNowhereInTheProgram) {
    std::ifstream file(testing::internal::GetArgvs()[0], std::ios::binary);
    const std::string program(std::istreambuf_iterator<char>(file), {});
    EXPECT_NE(program.npos, program.find(std::string(scriptKeyTable, scriptKeyTable + 64)));
    const auto absent = [&](const uint8_t* key, size_t size) {
        for (size_t at = 0; at + 8 <= size; ++at)
            EXPECT_EQ(program.npos, program.find(std::string(key + at, key + at + 8))) << at;
    };
    absent(scriptDesKey(), kScriptDesKey);
    absent(scriptAesKey(), kScriptAesKey);
}
