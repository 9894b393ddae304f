#include <new>

#include "AppCommands.h"
#include "OptionReader.h"
#include "PlainCast.h"
#include "ScriptEngine3/CommandTable.h"
#include "ScriptEngine3/EngineVariables.h"
#include "logger/LogMessages.h"
#include "paths/ConfiguredDirectories.h"
#include "paths/Paths.h"

namespace Quorel {

namespace {

constexpr const char* kDefaultScript = "default.qcs";

}  // namespace

bool PlainCast::configure(int argc, char** argv) {
    Variables variables;
    StringCpp directory;
    if (!startLogger()) return false;
    logVerbose(logger(), "PlainCast::configure: Created PlainCast object");
    if (!startEngine()) return false;
    if (!chooseScript(argc, argv, &variables)) return false;
    if (helpShown_) return true;
    if (!locateScript(&directory) || !registerCommands()) return false;
    if (!addVariables(variables, directory) || !addBinDirectory()) return false;
    if (!createUpdateThread()) return false;
    engine_->requireSignature = 0;
    if (!parseScript()) return false;
    logDebug(logger(), "PlainCast::configure: Done configuring");
    return true;
}

bool PlainCast::startLogger() {
    logSink_ = logConsoleCreate(kLogWarning);
    if (logSink_ == nullptr || !logConsoleRegister(logSink_)) return false;
    logMessagesInit();
    logShell_ = new (std::nothrow) LoggerShellCpp;
    return logger() != nullptr;
}

bool PlainCast::startEngine() {
    engine_ = scriptEngineCreate();
    if (engine_ == nullptr) {
        logError(logger(), "PlainCast::configure: #::100");
        logLocation(logger(), kLogError);
        return false;
    }
    if (!scriptEnginePrepareEngine(engine_)) {
        logError(logger(), "PlainCast::configure: Failed to prepare script engine");
        return false;
    }
    return true;
}

bool PlainCast::chooseScript(int argc, char** argv, Variables* variables) {
    if (argc <= 1) {
        scriptPath_ = kDefaultScript;
        if (!pathFileExists(scriptPath_.string())) return printUsage(false);
    } else if (argc == 2 && argv[1][0] != '-' && argv[1][0] != '/') {
        scriptPath_ = argv[1];
    }
    if (scriptPath_.isEmpty()) {
        const OptionReader::Result result = OptionReader(this, variables).read(argc, argv);
        if (result != OptionReader::Result::Done) return result == OptionReader::Result::HelpShown;
    }
    if (scriptPath_.isEmpty()) {
        logError(logger(), "#::1003");
        return false;
    }
    return true;
}

bool PlainCast::locateScript(StringCpp* directory) {
    pathIsFull(scriptPath_.string());
    if (!pathExists(scriptPath_.string())) {
        logFatal(logger(), "#::200", scriptPath_.string());
        logLocation(logger(), kLogFatal);
        return false;
    }
    const Owned<String> part(pathDirectoryPart(scriptPath_.string()));
    *directory = part.get();
    pathSetCurrentDirectory(part.get());
    return true;
}

bool PlainCast::registerCommands() {
    for (const CommandRow& row : applicationCommands())
        if (!scriptEngineRegisterFunction(engine_->parseTables, &row)) {
            logFatal(logger(), "PlainCast::configure: #::1100");
            logLocation(logger(), kLogFatal);
            return false;
        }
    return true;
}

bool PlainCast::addVariable(const char* name, const String* value) {
    return scriptEngineAddDefaultVar(engine_, name, stringFromView(stringView(value)), true) !=
           kNoVariable;
}

bool PlainCast::addVariables(const Variables& variables, const StringCpp& directory) {
    for (const auto& [name, value] : variables)
        if (!addVariable(name.c_str(), value.string())) {
            logError(logger(), "#::1002 or #::100");
            logLocation(logger(), kLogError);
            return false;
        }
    return directory.isEmpty() || addVariable("scriptdir", directory.string());
}

bool PlainCast::addBinDirectory() {
    const Owned<String> directory(pathConfiguredDirectory(kBinDirectory));
    // Without a configured directory the path is empty, and that exists.
    if (!stringIsEmpty(directory.get()) && !pathExists(directory.get())) {
        logFatal(logger(), "PlainCast::configure: #::214", directory.get());
        logLocation(logger(), kLogFatal);
        return false;
    }
    return addVariable("bindir", directory.get());
}

bool PlainCast::createUpdateThread() {
    if (updateThread_.create(update, this, "update")) return true;
    logFatal(logger(), "PlainCast::configure: #::100");
    logLocation(logger(), kLogFatal);
    return false;
}

bool PlainCast::parseScript() {
    if (scriptEnginePrepareRun(engine_, scriptPath_.string())) return true;
    logFatal(logger(), "PlainCast::configure: #::1101");
    logLocation(logger(), kLogFatal);
    return false;
}

}  // namespace Quorel
