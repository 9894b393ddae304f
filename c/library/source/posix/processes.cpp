#include "platform/processes.h"

#include <fcntl.h>
#include <poll.h>
#include <sched.h>
#include <signal.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <memory>
#include <new>
#include <utility>

#include "platform/clock.h"
#include "posix/ChildSignals.h"
#include "posix/Children.h"
#include "posix/CommandWords.h"
#include "posix/ProcessDescriptor.h"
#include "posix/ProcessTable.h"
#include "posix/ThreadQueue.h"

struct OsPipe {
    int readEnd = -1;
    int writeEnd = -1;

    OsPipe() = default;
    OsPipe(const OsPipe&) = delete;
    OsPipe& operator=(const OsPipe&) = delete;
    ~OsPipe() {
        if (readEnd >= 0) close(readEnd);
        closeWriteEnd();
    }
    void closeWriteEnd() {
        if (writeEnd >= 0) close(writeEnd);
        writeEnd = -1;
    }
};

struct OsProcess {
    pid_t id = 0;
    int descriptor = -1;               // readable with the end; -1 where there is none
    std::unique_ptr<OsPipe> pipes[2];  // in the order of OsOutput
    Child* child = nullptr;            // null for a stranger
    bool isOwner = false;              // of the child: it was started, not opened by its id

    OsProcess() = default;
    OsProcess(const OsProcess&) = delete;
    OsProcess& operator=(const OsProcess&) = delete;
    ~OsProcess() {
        if (descriptor >= 0) close(descriptor);
        if (isOwner) childLetGo(child);
    }
    int readEnd(int at) const { return pipes[at] == nullptr ? -1 : pipes[at]->readEnd; }
};

namespace {

constexpr uint32_t kTerminateWait = 100;
constexpr int kExitOfTerminated = 1;

// What a program is started with besides its words.
class SpawnSettings {
  public:
    SpawnSettings() {
        error_ = posix_spawn_file_actions_init(&actions_);
        if (error_ == 0) error_ = posix_spawnattr_init(&attributes_);
        if (error_ == 0) error_ = posixChildSignals(&attributes_);
    }
    SpawnSettings(const SpawnSettings&) = delete;
    SpawnSettings& operator=(const SpawnSettings&) = delete;
    ~SpawnSettings() {
        posix_spawn_file_actions_destroy(&actions_);
        posix_spawnattr_destroy(&attributes_);
    }

    void replace(int stream, int descriptor) {
        if (error_ == 0) error_ = posix_spawn_file_actions_adddup2(&actions_, descriptor, stream);
    }
    // What others left open in us is not for the program either.
    void closeTheRest() {
        if (error_ == 0)
            error_ = posix_spawn_file_actions_addclosefrom_np(&actions_, STDERR_FILENO + 1);
    }
    int spawn(const char* program, char* const* words, pid_t* id) {
        return error_ != 0 ? error_
                           : posix_spawn(id, program, &actions_, &attributes_, words, environ);
    }

  private:
    posix_spawn_file_actions_t actions_;
    posix_spawnattr_t attributes_;
    int error_;
};

// Whoever started us may have had the system reap in our place.
void keepChildren() {
    struct sigaction present {};
    if (sigaction(SIGCHLD, nullptr, &present) == 0 && present.sa_handler == SIG_IGN)
        signal(SIGCHLD, SIG_DFL);
}

int spawnWords(CommandWords* words, SpawnSettings* settings, pid_t* id) {
    if (words->empty()) return ENOENT;
    std::string program;
    const int error = posixFindProgram((*words)[0], &program);
    if (error != 0) return error;
    keepChildren();
    return settings->spawn(program.c_str(), words->pointers(), id);
}

int fail(OsStartStep* step, OsStartStep where, int error) {
    *step = where;
    return error;
}

// For a stranger: whether the system still lists it as running.
bool strangerHasEnded(const OsProcess* process) {
    if (process->descriptor < 0) return !posixProcessRuns(process->id);
    pollfd entry{process->descriptor, POLLIN, 0};
    return poll(&entry, 1, 0) > 0;
}

bool hasEnded(OsProcess* process, uint32_t* exitCode) {
    *exitCode = 0;
    return process->child != nullptr ? childHasEnded(process->child, exitCode)
                                     : strangerHasEnded(process);
}

int sendSignal(OsProcess* process, int number) {
    if (process->child != nullptr) return childSignal(process->child, number);
    if (process->descriptor < 0) return kill(process->id, number) == 0 ? 0 : errno;
    const long sent = syscall(SYS_pidfd_send_signal, process->descriptor, number, nullptr, 0);
    return sent == 0 ? 0 : errno;
}

// Polls until something is ready or `end` of the real clock has come.
bool pollUntil(pollfd* entries, nfds_t count, uint64_t end) {
    for (;;) {
        const uint64_t now = osSystemTicks();
        const uint64_t rest = now < end ? end - now : 0;
        const int ready = poll(entries, count, static_cast<int>(std::min<uint64_t>(rest, INT_MAX)));
        if (ready > 0) return true;
        if (rest > INT_MAX || (ready < 0 && errno == EINTR && rest > 0)) continue;
        return false;
    }
}

}  // namespace

int osPipeCreate(OsPipe** pipe) {
    *pipe = nullptr;
    std::unique_ptr<OsPipe> made(new (std::nothrow) OsPipe);
    int ends[2];
    if (made == nullptr) return ENOMEM;
    if (pipe2(ends, O_CLOEXEC) != 0) return errno;
    fcntl(ends[0], F_SETFL, O_NONBLOCK);
    made->readEnd = ends[0];
    made->writeEnd = ends[1];
    *pipe = made.release();
    return 0;
}

void osPipeClose(OsPipe** pipe) {
    if (pipe == nullptr) return;
    delete *pipe;
    *pipe = nullptr;
}

int osProcessStart(const OsProcessStart& start, OsProcess** process, OsStartStep* step) {
    *process = nullptr;
    std::unique_ptr<OsPipe> pipes[] = {std::unique_ptr<OsPipe>(start.pipes[0]),
                                       std::unique_ptr<OsPipe>(start.pipes[1])};
    std::unique_ptr<OsProcess> made(new (std::nothrow) OsProcess);
    if (made != nullptr) made->child = childCreate();
    if (made == nullptr || made->child == nullptr) return fail(step, OsStartStep::Memory, ENOMEM);
    made->isOwner = true;
    CommandWords words(start.commandLine);
    SpawnSettings settings;
    for (int at = 0; at < 2; ++at) {
        if (pipes[at] == nullptr) continue;
        settings.replace(STDOUT_FILENO + at, pipes[at]->writeEnd);
        made->pipes[at] = std::move(pipes[at]);
    }
    settings.closeTheRest();
    const int error = spawnWords(&words, &settings, &made->id);
    if (error != 0) return fail(step, OsStartStep::Start, error);
    childStarted(made->child, made->id);
    for (const std::unique_ptr<OsPipe>& pipe : made->pipes)
        if (pipe != nullptr) pipe->closeWriteEnd();
    made->descriptor = posixProcessDescriptor(made->id);
    *process = made.release();
    return 0;
}

int osSystemCommand(std::string_view line, int* exitCode) {
    OsProcess process;
    std::string text(line.substr(0, line.find('\0')));
    char shell[] = "sh";
    char option[] = "-c";
    char* const words[] = {shell, option, text.data(), nullptr};
    SpawnSettings settings;
    keepChildren();
    const int error = settings.spawn("/bin/sh", words, &process.id);
    if (error != 0) return error;
    int status = 0;
    while (waitpid(process.id, &status, 0) < 0)
        if (errno != EINTR) return errno;
    *exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return 0;
}

int osProcessOpen(uint32_t id, OsProcess** process) {
    *process = nullptr;
    if (id == 0 || id > INT_MAX) return ESRCH;
    std::unique_ptr<OsProcess> opened(new (std::nothrow) OsProcess);
    if (opened == nullptr) return ENOMEM;
    opened->id = static_cast<pid_t>(id);
    opened->child = childFind(opened->id);
    if (opened->child != nullptr) {
        opened->descriptor = childDescriptor(opened->child);
    } else {
        opened->descriptor = posixProcessDescriptor(opened->id);
        // Without a descriptor only where the system has none to give: a thread's
        // id, which is in the table too, is no process.
        const bool isRefused = errno == ENOSYS || errno == EPERM || errno == EMFILE;
        if (opened->descriptor < 0 && !(isRefused && posixProcessRuns(opened->id))) return ESRCH;
    }
    *process = opened.release();
    return 0;
}

void osProcessClose(OsProcess** process) {
    if (process == nullptr) return;
    delete *process;
    *process = nullptr;
}

uint32_t osProcessId(const OsProcess* process) {
    return process == nullptr ? 0 : static_cast<uint32_t>(process->id);
}

uint32_t osProcessThreadId(const OsProcess* process) {
    return osProcessId(process);  // the first thread has the number of its process
}

int osProcessExitCode(OsProcess* process, bool* ended, uint32_t* exitCode) {
    if (process == nullptr) return ESRCH;
    *ended = hasEnded(process, exitCode);
    return 0;
}

unsigned osProcessWait(OsProcess* process, unsigned wanted, OsEvent* event, uint32_t milliseconds) {
    const unsigned meanings[] = {kOsWakeEnd, kOsWakeOutput, kOsWakeError, kOsWakeEvent};
    const int descriptors[] = {process->descriptor, process->readEnd(0), process->readEnd(1),
                               posixEventDescriptor(event)};
    pollfd entries[4];
    for (int at = 0; at < 4; ++at) {
        const bool counts = meanings[at] == kOsWakeEvent || (wanted & meanings[at]) != 0;
        entries[at] = {counts ? descriptors[at] : -1, POLLIN, 0};
    }
    OsVirtualClock* clock = osVirtualClock.load(std::memory_order_acquire);
    unsigned woken = 0;
    if (pollUntil(entries, 4, osSystemTicks() + (clock == nullptr ? milliseconds : 0))) {
        for (int at = 0; at < 4; ++at)
            if (entries[at].revents != 0) woken |= meanings[at];
    } else if (clock != nullptr) {
        clock->advance(milliseconds);
        sched_yield();
    }
    return woken;
}

int osProcessRead(OsProcess* process, OsOutput output, void* buffer, size_t size, size_t* got,
                  bool* atEnd) {
    *got = 0;
    *atEnd = false;
    ssize_t count;
    do count = read(process->readEnd(static_cast<int>(output)), buffer, size);
    while (count < 0 && errno == EINTR);
    if (count < 0) return errno == EAGAIN ? 0 : errno;
    *got = static_cast<size_t>(count);
    *atEnd = count == 0;
    return 0;
}

int osProcessTerminate(OsProcess* process) {
    if (process == nullptr) return ESRCH;
    if (process->id == getpid()) _exit(kExitOfTerminated);
    const int error = sendSignal(process, SIGKILL);
    if (error != 0) return error;
    uint32_t exitCode = 0;
    pollfd entry{process->descriptor, POLLIN, 0};
    if (process->descriptor >= 0) pollUntil(&entry, 1, osSystemTicks() + kTerminateWait);
    hasEnded(process, &exitCode);
    return 0;
}

int osProcessAskToStop(OsProcess* process, uint32_t) {
    return process == nullptr ? ESRCH : sendSignal(process, SIGTERM);
}

int posixProcessDescriptor(pid_t id) {
    return static_cast<int>(syscall(SYS_pidfd_open, id, 0));
}
