#include "platform/program.h"

#include <malloc.h>
#include <pthread.h>
#include <signal.h>
#include <sys/mman.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <mutex>

#include "platform/messages.h"
#include "platform/threads.h"
#include "posix/ChildSignals.h"
#include "posix/ThreadQueue.h"

namespace {

constexpr size_t kGuardBytes = 64 * 1024;
constexpr size_t kLeastDeepStack = 16 * 1024 * 1024;
constexpr size_t kSignalStack = 256 * 1024;
constexpr unsigned kLastWordsMilliseconds = 200;
constexpr long kLastWordsLimitNanoseconds = 400 * 1000 * 1000;
constexpr int kExitOfSignal = 128;

// SIGTERM asks; the others end the process, after what was printed has gone out.
constexpr int kEndingSignals[] = {SIGINT, SIGHUP, SIGQUIT};
// They end who writes where nobody reads, or beyond the limit of a file's size.
constexpr int kWriterSignals[] = {SIGPIPE, SIGXFSZ};

constinit thread_local uintptr_t stackLimit = 0;
// Whose queue a request to stop goes to; the lock keeps one from being posted
// while the queue changes hands.
std::mutex programLock;
uint32_t programThread = 0;
OsLastWords sayLastWords = nullptr;
sigset_t originalMask;
sigset_t caughtSignals;
bool arranged = false;
sigset_t writerSignals;  // those that we ignore and our children need not

void setAction(int signal, void (*action)(int)) {
    struct sigaction change {};
    change.sa_handler = action;
    sigemptyset(&change.sa_mask);
    sigaction(signal, &change, nullptr);
}

bool isIgnored(int signal) {
    struct sigaction present {};
    return sigaction(signal, nullptr, &present) == 0 && present.sa_handler == SIG_IGN;
}

void unblock(int signal) {
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, signal);
    pthread_sigmask(SIG_UNBLOCK, &set, nullptr);
}

// The parent must see which signal it was. The first process of a container is
// not ended by a signal of its own, so there is an exit code behind it.
[[noreturn]] void dieBySignal(int signal) {
    setAction(signal, SIG_DFL);
    unblock(signal);
    raise(signal);
    _exit(kExitOfSignal + signal);
}

// The same signal comes again by a timer, in case an output that nobody reads
// holds up the last words.
[[noreturn]] void endBySignal(int signal) {
    setAction(signal, SIG_DFL);
    unblock(signal);
    sigevent event{};
    event.sigev_notify = SIGEV_SIGNAL;
    event.sigev_signo = signal;
    timer_t timer;
    if (timer_create(CLOCK_MONOTONIC, &event, &timer) == 0) {
        itimerspec limit{};
        limit.it_value.tv_nsec = kLastWordsLimitNanoseconds;
        timer_settime(timer, 0, &limit, nullptr);
    }
    if (sayLastWords != nullptr) sayLastWords(kLastWordsMilliseconds);
    dieBySignal(signal);
}

// False when the request before this one was not taken yet.
bool passOnRequest() {
    const std::lock_guard hold(programLock);
    return !posixHasMessage(programThread, kOsMessageClose) &&
           osPostMessage(programThread, kOsMessageClose) == 0;
}

void* waitForSignals(void*) {
    for (;;) {
        int signal = 0;
        if (sigwait(&caughtSignals, &signal) != 0) continue;
        if (signal != SIGTERM || !passOnRequest()) endBySignal(signal);
    }
}

int startSignalThread() {
    pthread_attr_t attributes;
    int error = pthread_attr_init(&attributes);
    if (error != 0) return error;
    pthread_attr_setstacksize(&attributes, kSignalStack);
    pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED);
    pthread_t thread;
    error = pthread_create(&thread, &attributes, waitForSignals, nullptr);
    pthread_attr_destroy(&attributes);
    return error;
}

void findStackLimit() {
    pthread_attr_t attributes;
    if (pthread_getattr_np(pthread_self(), &attributes) != 0) return;
    void* base = nullptr;
    size_t size = 0;
    if (pthread_attr_getstack(&attributes, &base, &size) == 0)
        stackLimit = reinterpret_cast<uintptr_t>(base) + kGuardBytes;
    pthread_attr_destroy(&attributes);
}

struct DeepCall {
    int (*function)(void*);
    void* argument;
    uint32_t caller;
    int result;
};

void* runDeepCall(void* argument) {
    DeepCall* call = static_cast<DeepCall*>(argument);
    {
        const std::lock_guard hold(programLock);
        posixTakeOverQueue(call->caller);
        if (programThread == call->caller) programThread = osCurrentThreadId();
    }
    call->result = call->function(call->argument);
    return nullptr;
}

// Maps the stack lazily: only what is touched is there, in small pages.
void* mapStack(size_t bytes) {
    void* base = mmap(nullptr, bytes, PROT_READ | PROT_WRITE,
                      MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE | MAP_STACK, -1, 0);
    if (base == MAP_FAILED) return nullptr;
    mprotect(base, kGuardBytes, PROT_NONE);
    madvise(base, bytes, MADV_NOHUGEPAGE);
    return base;
}

bool runOnStack(void* base, size_t bytes, DeepCall* call) {
    pthread_attr_t attributes;
    if (pthread_attr_init(&attributes) != 0) return false;
    pthread_t thread;
    const bool started = pthread_attr_setstack(&attributes, base, bytes) == 0 &&
                         pthread_create(&thread, &attributes, runDeepCall, call) == 0;
    pthread_attr_destroy(&attributes);
    if (started) pthread_join(thread, nullptr);
    return started;
}

}  // namespace

int osRunOnDeepStack(size_t bytes, int (*function)(void*), void* argument) {
    // One heap for all threads: a heap of its own would make the thread that does
    // the work ask the system for each page.
    mallopt(M_ARENA_MAX, 1);
    DeepCall call{function, argument, osCurrentThreadId(), 0};
    for (; bytes >= kLeastDeepStack; bytes /= 2) {
        void* base = mapStack(bytes);
        if (base == nullptr) continue;
        const bool ran = runOnStack(base, bytes, &call);
        munmap(base, bytes);
        if (ran) return call.result;
    }
    return function(argument);
}

size_t osStackLeft() {
    if (stackLimit == 0) findStackLimit();
    const auto here = reinterpret_cast<uintptr_t>(__builtin_frame_address(0));
    return here > stackLimit ? here - stackLimit : 0;
}

int osStopMessagesStart(OsLastWords lastWords) {
    sayLastWords = lastWords;
    posixMessageDescriptor();  // makes the queue
    {
        const std::lock_guard hold(programLock);
        programThread = osCurrentThreadId();
    }
    if (arranged) return 0;
    sigemptyset(&caughtSignals);
    sigaddset(&caughtSignals, SIGTERM);
    setAction(SIGTERM, SIG_DFL);
    for (const int signal : kEndingSignals)
        if (!isIgnored(signal)) sigaddset(&caughtSignals, signal);
    sigemptyset(&writerSignals);
    for (const int signal : kWriterSignals) {
        if (!isIgnored(signal)) sigaddset(&writerSignals, signal);
        setAction(signal, SIG_IGN);
    }
    pthread_sigmask(SIG_BLOCK, &caughtSignals, &originalMask);
    arranged = true;
    const int error = startSignalThread();
    if (error != 0) pthread_sigmask(SIG_SETMASK, &originalMask, nullptr);
    return error;
}

void osRaiseIntegerDivisionFault() {
    dieBySignal(SIGFPE);
}

int posixChildSignals(posix_spawnattr_t* attributes) {
    if (!arranged) return 0;
    short flags = 0;
    int error = posix_spawnattr_getflags(attributes, &flags);
    if (error == 0) error = posix_spawnattr_setsigdefault(attributes, &writerSignals);
    if (error == 0) error = posix_spawnattr_setsigmask(attributes, &originalMask);
    flags |= POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK;
    return error == 0 ? posix_spawnattr_setflags(attributes, flags) : error;
}
