#include "PlainCast.h"
#include "logger/StandardOutput.h"
#include "platform/console.h"
#include "platform/program.h"

namespace {

constexpr int kConfigurationError = 3;
constexpr int kRunError = 20;

// Deep enough for every nesting that a script of sane size can have; only what is
// used takes memory.
constexpr size_t kStackBytes = 512 * 1024 * 1024;

struct CommandLine {
    int argc;
    char** argv;
};

void reportConfigurationError(const CommandLine& line) {
    outputWrite("CONFIGURATION ERROR\nCommand Line: ");
    for (int index = 0; index < line.argc; ++index) {
        if (index > 0) outputWrite(" ");
        outputWrite(line.argv[index]);
    }
    outputWrite("\n");
}

int runPlainCast(const CommandLine& line) {
    Quorel::PlainCast program;
    if (!program.configure(line.argc, line.argv)) {
        reportConfigurationError(line);
        return kConfigurationError;
    }
    if (!program.run()) {
        outputWrite("RUN ERROR\n");
        return kRunError;
    }
    return program.exitCode();
}

int runOnStack(void* argument) {
    const int code = runPlainCast(*static_cast<CommandLine*>(argument));
    outputFlush();
    return code;
}

}  // namespace

int main(int argc, char** argv) {
    CommandLine line{argc, argv};
    osConsolePrepare();
    osStopMessagesStart(outputTryFlush);
    return osRunOnDeepStack(kStackBytes, runOnStack, &line);
}
