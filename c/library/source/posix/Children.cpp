#include "posix/Children.h"

#include <pthread.h>
#include <signal.h>
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <mutex>
#include <new>

#include "posix/ProcessDescriptor.h"

struct Child {
    pid_t id = 0;
    int descriptor = -1;    // of one that was let go and runs
    bool isLetGo = false;   // the reaper looks after it
    bool hasEnded = false;  // and has been reaped
    bool isKilled = false;  // by us
    uint32_t exitCode = 0;
    Child* next = nullptr;
};

namespace {

constexpr uint32_t kExitOfKilled = 1;
constexpr uint32_t kExitOfSignal = 128;
constexpr size_t kReaperStack = 64 * 1024;
// Between two looks at children that cannot be waited for.
constexpr int kReaperStep = 100;

std::mutex childrenLock;
Child* firstChild = nullptr;
int reaperQueue = -1;  // an epoll descriptor; it exists once the reaper does
bool reaperMustLook = false;

// The caller of these holds the lock.

void takeStatus(Child* child, const siginfo_t& info) {
    child->hasEnded = true;
    const auto status = static_cast<uint32_t>(info.si_status);
    if (info.si_code == CLD_EXITED)
        child->exitCode = status;
    else
        child->exitCode =
            child->isKilled && status == SIGKILL ? kExitOfKilled : kExitOfSignal + status;
}

void reap(Child* child) {
    if (child->hasEnded) return;
    siginfo_t info{};
    const int result = waitid(P_PID, static_cast<id_t>(child->id), &info, WEXITED | WNOHANG);
    // ECHILD: somebody made the system reap for us.
    if (result == 0 ? info.si_pid == child->id : errno == ECHILD) takeStatus(child, info);
}

void reapAll() {
    for (Child* child = firstChild; child != nullptr; child = child->next) {
        if (!child->isLetGo || (child->hasEnded && child->descriptor < 0)) continue;
        reap(child);
        if (!child->hasEnded || child->descriptor < 0) continue;
        close(child->descriptor);
        child->descriptor = -1;
    }
}

// Lives as long as the process.
void* runReaper(void*) {
    int step = -1;
    for (;;) {
        epoll_event event{};
        epoll_wait(reaperQueue, &event, 1, step);
        const std::lock_guard hold(childrenLock);
        reapAll();
        if (reaperMustLook) step = kReaperStep;
    }
}

bool startReaper() {
    if (reaperQueue >= 0) return true;
    const int queue = epoll_create1(EPOLL_CLOEXEC);
    pthread_attr_t attributes;
    if (queue < 0 || pthread_attr_init(&attributes) != 0) return false;
    pthread_attr_setstacksize(&attributes, kReaperStack);
    pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED);
    // It is none of those that signals are meant for.
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    pthread_t thread;
    reaperQueue = queue;
    const bool started = pthread_create(&thread, &attributes, runReaper, nullptr) == 0;
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    pthread_attr_destroy(&attributes);
    if (started) return true;
    close(queue);
    reaperQueue = -1;
    return false;
}

bool wakeReaperBy(int descriptor, uint32_t events) {
    epoll_event event{};
    event.events = events;
    return epoll_ctl(reaperQueue, EPOLL_CTL_ADD, descriptor, &event) == 0;
}

void giveToReaper(Child* child) {
    child->isLetGo = true;
    if (!startReaper()) return;
    child->descriptor = posixProcessDescriptor(child->id);
    if (child->descriptor >= 0 && wakeReaperBy(child->descriptor, EPOLLIN)) return;
    if (reaperMustLook) return;
    reaperMustLook = true;
    const int wake = eventfd(1, EFD_CLOEXEC);  // stays: this happens once
    if (wake >= 0) wakeReaperBy(wake, EPOLLIN | EPOLLONESHOT);
}

void unlinkChild(Child* child) {
    Child** link = &firstChild;
    while (*link != nullptr && *link != child) link = &(*link)->next;
    if (*link != nullptr) *link = child->next;
}

}  // namespace

Child* childCreate() {
    return new (std::nothrow) Child;
}

void childStarted(Child* child, pid_t id) {
    const std::lock_guard hold(childrenLock);
    child->id = id;
    child->next = firstChild;
    firstChild = child;
}

Child* childFind(pid_t id) {
    const std::lock_guard hold(childrenLock);
    Child* child = firstChild;
    while (child != nullptr && !(child->isLetGo && child->id == id)) child = child->next;
    return child;
}

int childDescriptor(Child* child) {
    const std::lock_guard hold(childrenLock);
    return child->hasEnded ? -1 : posixProcessDescriptor(child->id);
}

bool childHasEnded(Child* child, uint32_t* exitCode) {
    const std::lock_guard hold(childrenLock);
    reap(child);
    *exitCode = child->exitCode;
    return child->hasEnded;
}

int childSignal(Child* child, int signal) {
    const std::lock_guard hold(childrenLock);
    reap(child);
    if (child->hasEnded) return ESRCH;
    if (kill(child->id, signal) != 0) return errno;
    if (signal == SIGKILL) child->isKilled = true;
    return 0;
}

void childLetGo(Child* child) {
    const std::lock_guard hold(childrenLock);
    if (child->id != 0) reap(child);
    if (child->id != 0 && !child->hasEnded) return giveToReaper(child);
    unlinkChild(child);
    delete child;
}
