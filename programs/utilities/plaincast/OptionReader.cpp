#include "OptionReader.h"

#include "AppCommands.h"
#include "strings/StringNumbers.h"

namespace Quorel {

namespace {

constexpr std::string_view kHelpOptions[] = {"--help", "-h", "-?", "/?"};

bool asksForHelp(std::string_view argument) {
    for (const std::string_view name : kHelpOptions)
        if (argument == name) return true;
    return false;
}

}  // namespace

std::span<const PlainCast::OptionReader::Option> PlainCast::OptionReader::options() {
    using Reader = OptionReader;
    static constexpr Option kOptions[] = {
        {"--info", &Reader::setLevel, false, kLogInfo},
        {"--verbose", &Reader::setLevel, false, kLogVerbose},
        {"--debug", &Reader::setLevel, false, kLogDebug},
        {"--trace", &Reader::setLevel, false, kLogTrace},
        {"--silent", &Reader::setLevel, false, kLogSilent},
        {"--usage", &Reader::setUsage},
        {"--startfunc", &Reader::setStartFunction, true},
        {"--period", &Reader::setPeriod, true},
        {"--var", &Reader::setVariable, true},
        {"--script", &Reader::setScript, true},
        {"--parse", &Reader::setParseOnly},
    };
    return kOptions;
}

const PlainCast::OptionReader::Option* PlainCast::OptionReader::find(std::string_view argument) {
    for (const Option& option : options())
        if (option.name == argument) return &option;
    return nullptr;
}

PlainCast::OptionReader::Result PlainCast::OptionReader::read(int argc, char** argv) {
    constexpr size_t kDashes = 2;
    for (int index = 1; index < argc; ++index) {
        if (asksForHelp(argv[index])) {
            target_->helpShown_ = true;
            target_->printUsage(true);
            return Result::HelpShown;
        }
        const Option* option = find(argv[index]);
        if (option == nullptr) {
            target_->printUsage(false);
            return Result::Failed;
        }
        if (option->takesValue && ++index == argc) {
            logError(target_->logger(), "#::1000", option->name.substr(kDashes));
            return Result::Failed;
        }
        if (!(this->*option->apply)(*option, argv[index])) return Result::Failed;
    }
    return Result::Done;
}

bool PlainCast::OptionReader::setLevel(const Option& option, const char*) {
    logConsoleSetLevel(target_->logSink_, option.level);
    return true;
}

bool PlainCast::OptionReader::setUsage(const Option&, const char*) {
    target_->runUsageFunction_ = true;
    return true;
}

bool PlainCast::OptionReader::setStartFunction(const Option&, const char* value) {
    target_->startFunction_ = value;
    return true;
}

bool PlainCast::OptionReader::setPeriod(const Option&, const char* value) {
    runUntilSet(textToInt32(value));
    return true;
}

bool PlainCast::OptionReader::setVariable(const Option&, const char* value) {
    StringCpp pair(value);
    pair.unquote();
    const std::string_view text = stringView(pair.string());
    const size_t equals = text.find('=');
    const size_t nameLength = equals == text.npos ? text.size() : equals;
    if (nameLength == 0) {
        logError(target_->logger(), "#::1001");
        return false;
    }
    const StringCpp name = pair.substr(0, static_cast<uint32_t>(nameLength));
    (*variables_)[name] = pair.substr(static_cast<uint32_t>(nameLength) + 1);
    return true;
}

bool PlainCast::OptionReader::setScript(const Option&, const char* value) {
    target_->scriptPath_ = value;
    target_->scriptPath_.unquote();
    return true;
}

bool PlainCast::OptionReader::setParseOnly(const Option&, const char*) {
    target_->parseOnly_ = true;
    return true;
}

}  // namespace Quorel
