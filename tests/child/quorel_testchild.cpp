// A program that does what the tests of processes need of one. Its arguments are
// steps, done in their order:
//
//   out TEXT, err TEXT         prints a line
//   flood out|err BYTES        prints so many
//   sleep MILLISECONDS
//   close                      closes both outputs
//   leave MILLISECONDS         starts a child that sleeps and keeps the outputs
//   message                    ends with 5 when a request to stop came within 10 s
//   deaf                       from here on a request to stop is not heeded
//   args ...                   prints all that follows, an argument a line
//   exit CODE                  ends

#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <string>

#include "platform/clock.h"
#include "platform/messages.h"
#include "platform/processes.h"
#include "platform/program.h"

namespace {

constexpr int kExitOfMessage = 5;
constexpr int kBadStep = 99;

OsOutput stream(const std::string& name) {
    return name == "err" ? OsOutput::Error : OsOutput::Standard;
}

void print(const std::string& name, const std::string& text) {
    osConsoleWrite(stream(name), text.data(), text.size(), nullptr);
}

void flood(const std::string& name, uint64_t bytes) {
    const std::string block(4096, name == "err" ? 'e' : 'o');
    for (; bytes >= block.size(); bytes -= block.size()) print(name, block);
    print(name, block.substr(0, bytes));
}

void leave(const char* self, const std::string& milliseconds) {
    const std::string line = std::string("\"") + self + "\" sleep " + milliseconds;
    OsProcessStart start;
    start.commandLine = line;
    OsProcess* process = nullptr;
    OsStartStep step;
    osProcessStart(start, &process, &step);
    osProcessClose(&process);
}

void closeOutputs() {
    for (const int output : {1, 2}) close(output);
}

int awaitMessage() {
    uint32_t message = 0;
    while (!osTakeMessage(&message))
        if (osWaitForEvent(nullptr, 10000) == OsWake::Timeout) return kBadStep;
    return message == kOsMessageClose ? kExitOfMessage : kBadStep;
}

int fail(const std::string& step) {
    print("err", "no such step: " + step + "\n");
    return kBadStep;
}

}  // namespace

int main(int argc, char** argv) {
    osConsolePrepare();
    uint32_t message = 0;
    osTakeMessage(&message);  // makes the queue
    for (int at = 1; at < argc; at += 2) {
        const std::string step = argv[at];
        if (step == "args") {
            while (++at < argc) print("out", std::string(argv[at]) + "\n");
            return 0;
        }
        if (step == "message") return osStopMessagesStart(nullptr) == 0 ? awaitMessage() : kBadStep;
        if (step == "close" || step == "deaf") {
            if (step == "deaf")
                osStopMessagesStart(nullptr);
            else
                closeOutputs();
            --at;
            continue;
        }
        const std::string value = at + 1 < argc ? argv[at + 1] : "";
        if (step == "out" || step == "err")
            print(step, value + "\n");
        else if (step == "flood" && at + 2 < argc)
            flood(value, std::strtoull(argv[++at + 1], nullptr, 10));
        else if (step == "sleep")
            osSleep(static_cast<uint32_t>(std::atoi(value.c_str())));
        else if (step == "leave")
            leave(argv[0], value);
        else if (step == "exit")
            return std::atoi(value.c_str());
        else
            return fail(step);
    }
    return 0;
}
