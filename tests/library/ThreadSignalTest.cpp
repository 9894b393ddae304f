#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <string>

#include "platform/console.h"
#include "platform/messages.h"
#include "platform/program.h"
#include "posix/ChildSignals.h"

// Requests to stop as this system makes them. Each case is a process of its own.

namespace {

constexpr int kStopped = 5;
constexpr uint32_t kHour = 3600 * 1000;

bool lastWords(unsigned) {
    constexpr std::string_view kWords = "last words";
    return osConsoleWrite(OsOutput::Error, kWords.data(), kWords.size(), nullptr) == 0;
}

bool neverEndingWords(unsigned) {
    for (;;) pause();
}

// Waits until it is asked to stop.
int waitForRequest(void*) {
    uint32_t message = 0;
    while (!osTakeMessage(&message)) osWaitForEvent(nullptr, kHour);
    return message == kOsMessageClose ? kStopped : 0;
}

[[noreturn]] void startAndSend(OsLastWords words, std::initializer_list<int> signals) {
    osStopMessagesStart(words);
    for (const int signal : signals) kill(getpid(), signal);
    exit(osRunOnDeepStack(64 * 1024 * 1024, waitForRequest, nullptr));
}

[[noreturn]] void sendTwiceToTheDeaf() {
    osStopMessagesStart(lastWords);
    kill(getpid(), SIGTERM);
    while (osWaitForEvent(nullptr, kHour) != OsWake::Message) continue;
    kill(getpid(), SIGTERM);
    for (;;) pause();
}

TEST(ThreadSignalTest, ARequestToStopIsAMessageAndOthersEndTheProcess) {
    using testing::ExitedWithCode;
    using testing::KilledBySignal;
    signal(SIGINT, SIG_DFL);
    EXPECT_EXIT(startAndSend(lastWords, {SIGTERM}), ExitedWithCode(kStopped), "");
    EXPECT_EXIT(startAndSend(lastWords, {SIGINT}), KilledBySignal(SIGINT), "last words");
    EXPECT_EXIT(startAndSend(lastWords, {SIGHUP}), KilledBySignal(SIGHUP), "last words");
    EXPECT_EXIT(startAndSend(neverEndingWords, {SIGINT}), KilledBySignal(SIGINT), "");
    EXPECT_EXIT(sendTwiceToTheDeaf(), KilledBySignal(SIGTERM), "last words");
    signal(SIGINT, SIG_IGN);
    EXPECT_EXIT(startAndSend(lastWords, {SIGINT, SIGTERM}), ExitedWithCode(kStopped), "");
    signal(SIGINT, SIG_DFL);
    EXPECT_EXIT(osRaiseIntegerDivisionFault(), KilledBySignal(SIGFPE), "");
}

// Writes to a pipe that nobody reads, and a file that has no room, here; and to
// the pipe in a child of ours.
[[noreturn]] void writeToNobody() {
    osStopMessagesStart(nullptr);
    int ends[2];
    if (pipe(ends) != 0 || dup2(ends[1], STDOUT_FILENO) < 0) exit(1);
    close(ends[0]);
    close(ends[1]);
    if (osConsoleWrite(OsOutput::Standard, "x", 1, nullptr) != EPIPE) exit(2);
    const rlimit noFile = {0, 0};
    setrlimit(RLIMIT_FSIZE, &noFile);
    FILE* file = tmpfile();
    if (file == nullptr || write(fileno(file), "x", 1) != -1 || errno != EFBIG) exit(5);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    if (posixChildSignals(&attributes) != 0) exit(3);
    char shell[] = "/bin/sh";
    char option[] = "-c";
    char command[] = "echo x; exit 0";
    char* arguments[] = {shell, option, command, nullptr};
    pid_t child = 0;
    if (posix_spawn(&child, shell, nullptr, &attributes, arguments, environ) != 0) exit(4);
    int status = 0;
    waitpid(child, &status, 0);
    exit(WIFSIGNALED(status) && WTERMSIG(status) == SIGPIPE ? kStopped : 6);
}

TEST(ThreadSignalTest, ABrokenPipeOrAFullFileIsAnErrorHereAndTheUsualInChildren) {
    EXPECT_EXIT(writeToNobody(), testing::ExitedWithCode(kStopped), "");
}

}  // namespace
