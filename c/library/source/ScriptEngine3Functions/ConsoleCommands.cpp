#include "ScriptEngine3Functions/ConsoleCommands.h"

#include "ScriptEngine3Defs/Arguments.h"
#include "ScriptEngine3Functions/ConsoleInput.h"
#include "logger/StandardOutput.h"
#include "platform/messages.h"
#include "threads/QuitFlag.h"

namespace {

constexpr uint32_t kQueryLimit = 999;
constexpr uint32_t kWaitKeyLimit = 8;
// Between two looks at an input that has come to its end.
constexpr uint32_t kClosedInputWait = 500;

// The text of the argument of a printing command. False after a message.
bool printedText(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, const char* name,
                 String* scratch, std::string_view* text) {
    if (scriptEngineGetVarText(engine, block, &args->items[0], scratch, text)) return true;
    logError(engine->logger, "%s: Failed to get string value", name);
    return false;
}

// Writes a text as the formatted output of old did: it ends at a zero byte,
// and two percent signs are one.
void writeFormatted(std::string_view text) {
    text = text.substr(0, text.find('\0'));
    for (;;) {
        const size_t pair = text.find("%%");
        if (pair == std::string_view::npos) break;
        outputWrite(text.substr(0, pair + 1));
        text.remove_prefix(pair + 2);
    }
    outputWrite(text);
}

int scriptEngineEcho(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    if (engine == nullptr || block == nullptr || args == nullptr) return kInvalidCall;
    Owned<String> line(stringNew(0));
    std::string_view text;
    if (!printedText(engine, block, args, "scriptEngineEcho", line.get(), &text))
        return kInvalidArguments;
    outputWrite(text);
    outputWrite("\n");
    return kDone;
}

int scriptEnginePrint(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    if (engine == nullptr || block == nullptr || args == nullptr) return kInvalidCall;
    Owned<String> scratch(stringNew(0));
    std::string_view text;
    if (!printedText(engine, block, args, "scriptEnginePrint", scratch.get(), &text))
        return kInvalidArguments;
    writeFormatted(text);
    return kDone;
}

int scriptEngineError(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    if (engine == nullptr || block == nullptr || args == nullptr) return kInvalidCall;
    Owned<String> scratch(stringNew(0));
    std::string_view text;
    if (!printedText(engine, block, args, "scriptEngineError", scratch.get(), &text))
        return kInvalidArguments;
    outputWrite("ERROR: ");
    writeFormatted(text);
    outputWrite("\n");
    return kDone;
}

void writePrompt(std::string_view prompt, std::string_view defaultText) {
    outputWrite(prompt);
    if (!defaultText.empty()) {
        if (!prompt.empty() && prompt.back() != '\n') outputWrite(" ");
        outputWrite("(");
        outputWrite(defaultText.substr(0, defaultText.find('\0')));
        outputWrite(")");
    }
    outputWrite(" > ");
    outputFlush();
}

// Reads the answer; a closed input keeps the question waiting.
void readAnswer(String* answer) {
    while (!inputReadLine(answer, kQueryLimit)) sleepInterruptible(kClosedInputWait);
}

int scriptEngineQuery(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    Arguments in(engine, block, args);
    const String* prompt = in.string(0);
    const ScriptObject* preset = in.any(1);
    if (!in.ok()) return in.status();
    if (preset->type != kTypeString && preset->type != kTypeNumber) {
        logError(engine->logger, "Second parameter must be a string or a number");
        logLocation(engine->logger, kLogError);
        return kError;
    }
    Owned<String> value(scriptObjectGetString(engine, preset));
    Owned<String> answer(stringNew(kQueryLimit));
    ScriptObject* target = in.target(2);
    if (!in.ok()) return in.status();
    if (!value || !answer) {
        logError(engine->logger, "scriptEngineQuery: #::100");
        logLocation(engine->logger, kLogError);
        return kOutOfMemory;
    }
    writePrompt(stringView(prompt), stringView(value.get()));
    readAnswer(answer.get());
    const std::string_view line = stringView(answer.get());
    std::string_view chosen = line.substr(0, line.size() - 1);
    if (line.front() == '\n') chosen = stringIsEmpty(value.get()) ? line : stringView(value.get());
    if (scriptObjectSetStringValue(engine, target, chosen)) return kDone;
    logError(engine->logger, "scriptEngineQuery: Failed to set target variable");
    logLocation(engine->logger, kLogError);
    return kInvalidCall;
}

int scriptEngineWaitKey(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    if (engine == nullptr || block == nullptr || args == nullptr) return kInvalidCall;
    Owned<String> line(stringNew(kWaitKeyLimit));
    outputFlush();
    inputReadLine(line.get(), kWaitKeyLimit);
    return kDone;
}

constexpr CommandRow kConsoleCommands[] = {
    {"echo", scriptEngineEcho, 1, 1, nullptr},       {"print", scriptEnginePrint, 1, 1, nullptr},
    {"error", scriptEngineError, 1, 1, nullptr},     {"query", scriptEngineQuery, 3, 3, "3"},
    {"waitkey", scriptEngineWaitKey, 0, 0, nullptr},
};

}  // namespace

int scriptEngineCheckSignals(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    Arguments in(engine, block, args);
    ScriptObject* target = in.retyped(0, kTypeNumber);
    if (!in.ok()) return in.status();
    uint32_t message = 0;
    const bool taken = osTakeMessage(&message);
    target->number = taken && (message == kOsMessageClose || message == kOsMessageQuit ||
                               message == kOsMessageDestroy);
    return kDone;
}

std::span<const CommandRow> consoleCommands() {
    return kConsoleCommands;
}
