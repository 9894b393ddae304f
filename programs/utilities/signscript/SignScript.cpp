#include "SignScript.h"

#include <algorithm>

#include "ScriptToSign.h"
#include "SignatureFault.h"
#include "files/ReplaceFile.h"
#include "logger/StandardOutput.h"
#include "platform/console.h"
#include "platform/files.h"

namespace Quorel {

namespace {

constexpr int kDone = 0;
constexpr int kDoesNotHold = 1;
constexpr int kTrouble = 2;

constexpr std::string_view kUsage =
    "Quorel Tools SignScript\n"
    "Usage: quorel_signscript [options] SCRIPT ...\n"
    "\n"
    "Signs scripts in place: puts a signature into the line \"signature\" of each, or\n"
    "puts such a line at the top. With --verify, tells whether the signatures hold.\n"
    "\n"
    "Options:\n"
    "  --verify         : Change nothing, tell for each script whether its signature\n"
    "                     holds, and if not, why\n"
    "  --variant <name> : AES (default), DES, or NON, which vouches for nothing. With\n"
    "                     --verify, the only variant that counts (default: all)\n"
    "  --include        : The scripts are for inclusion by others: a function main in\n"
    "                     them is passed over, and belongs to no signature\n"
    "  --stdout         : Write the signed script, one only, to standard output\n"
    "  --help           : Show this text\n"
    "\n"
    "Exit codes: 0 done, or all signatures hold; 1 a signature does not hold;\n"
    "2 wrong options, or a script that cannot be read, signed or written.\n";

void complain(const std::string& text) {
    outputFlush();
    osConsoleWrite(OsOutput::Error, text.data(), text.size(), nullptr);
}

bool wrongOptions(const std::string& what) {
    complain("quorel_signscript: " + what + "; --help tells what there is\n");
    return false;
}

int trouble(const std::string& path, const std::string& what) {
    complain(path + ": " + what + "\n");
    return kTrouble;
}

void tell(const std::string& path, const std::string& what) {
    outputWrite(path + ": " + what + "\n");
}

int variantOf(const std::string& signature) {
    const Owned<String> text(stringFromView(signature));
    return scriptHashVariantOf(text.get());
}

std::string variantWord(int variant) {
    return variant == kVariantNone ? "signed, NON, which vouches for nothing"
                                   : std::string("signed, ") + scriptHashVariantName(variant);
}

}  // namespace

struct SignScript::Option {
    std::string_view name;
    bool SignScript::*flag;  // null for the one that takes a value
};

const SignScript::Option* SignScript::findOption(std::string_view argument) {
    static constexpr Option kOptions[] = {
        {"--help", &SignScript::helpWanted_},
        {"--verify", &SignScript::verifies_},
        {"--include", &SignScript::isIncluded_},
        {"--stdout", &SignScript::toStandardOutput_},
        {"--variant", nullptr},
    };
    for (const Option& option : kOptions)
        if (option.name == argument) return &option;
    return nullptr;
}

bool SignScript::readVariant(const char* word) {
    if (word == nullptr) return wrongOptions("--variant lacks its name");
    for (const int variant : {kVariantNone, kVariantDes, kVariantAes})
        if (std::string_view(word) == scriptHashVariantName(variant)) variant_ = variant;
    return variant_ != 0 ||
           wrongOptions("\"" + std::string(word) + "\" is none of NON, DES and AES");
}

bool SignScript::readArguments(int argc, char** argv) {
    bool optionsOver = false;
    for (int at = 1; at < argc; ++at) {
        const std::string_view argument = argv[at];
        const bool isName = optionsOver || argument.empty() || argument.front() != '-';
        const Option* option = isName ? nullptr : findOption(argument);
        if (isName)
            scripts_.emplace_back(argument);
        else if (argument == "--")
            optionsOver = true;
        else if (option == nullptr)
            return wrongOptions("there is no option " + std::string(argument));
        else if (option->flag != nullptr)
            this->*option->flag = true;
        else if (!readVariant(++at < argc ? argv[at] : nullptr))
            return false;
    }
    if (helpWanted_) return true;
    if (scripts_.empty()) return wrongOptions("no script is named");
    if (toStandardOutput_ && (verifies_ || scripts_.size() > 1))
        return wrongOptions("--stdout is for one script that is signed");
    return true;
}

int SignScript::run(int argc, char** argv) {
    if (!readArguments(argc, argv)) return kTrouble;
    int code = kDone;
    if (helpWanted_)
        outputWrite(kUsage);
    else
        for (const std::string& path : scripts_)
            code = std::max(code, verifies_ ? verify(path) : sign(path));
    if (!outputFlush()) code = trouble("standard output", "not all could be written");
    return code;
}

int SignScript::sign(const std::string& path) const {
    ScriptToSign script;
    if (!script.read(path, isIncluded_)) return trouble(path, script.fault());
    const int variant = variant_ == 0 ? kVariantAes : variant_;
    const std::string signature = script.fitting(variant);
    if (signature.empty()) return trouble(path, "there is not enough memory");
    const std::string bytes = script.signedWith(signature);
    if (bytes.empty()) return trouble(path, "has changed meanwhile");
    if (toStandardOutput_) {
        outputWrite(bytes);
        return kDone;
    }
    if (signature != script.signature()) {
        const int error = fileReplace(path, bytes);
        if (error != 0) return trouble(path, "cannot be written: " + osErrorText(error));
    }
    tell(path, variantWord(variant));
    return kDone;
}

int SignScript::verify(const std::string& path) const {
    ScriptToSign script;
    if (!script.read(path, isIncluded_)) return trouble(path, script.fault());
    const std::string why = refusal(script, path);
    tell(path, why.empty() ? variantWord(variantOf(script.signature())) : "NOT SIGNED: " + why);
    return why.empty() ? kDone : kDoesNotHold;
}

std::string SignScript::refusal(const ScriptToSign& script, const std::string& path) const {
    if (!script.hasSignature()) return "there is no signature line";
    const std::string line = "line " + std::to_string(script.directiveLine()) + ": ";
    const std::string fault = signatureFault(script.signature());
    if (!fault.empty()) return line + fault;
    const int variant = variantOf(script.signature());
    if (variant_ != 0 && variant_ != variant)
        return line + "its variant is " + scriptHashVariantName(variant) + ", and " +
               scriptHashVariantName(variant_) + " is asked for";
    if (script.signature() == script.fitting(variant)) return "";
    ScriptToSign other;
    if (other.read(path, !isIncluded_) && other.signature() == other.fitting(variant))
        return line + (isIncluded_ ? "it holds only when the script is not included (no --include)"
                                   : "it holds only when the script is included (--include)");
    return line +
           "the lines below are not the ones that were signed, or they were signed with other "
           "keys; which line differs cannot be told from a signature";
}

}  // namespace Quorel
