#include "platform/threads.h"

#include <pthread.h>
#include <sched.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <new>

#include "platform/messages.h"
#include "posix/ThreadQueue.h"

// Shared by the handle and the thread itself; the last of them ends it.
struct OsThread {
    pthread_t thread{};
    OsThreadFunction function = nullptr;
    void* argument = nullptr;
    std::mutex lock;
    std::condition_variable changed;
    uint32_t id = 0;  // 0 until the thread runs
    bool hasEnded = false;
    std::atomic<int> users{2};
};

namespace {

void release(OsThread* thread) {
    if (--thread->users == 0) delete thread;
}

void* threadMain(void* argument) {
    OsThread* self = static_cast<OsThread*>(argument);
    posixMessageDescriptor();  // makes the queue
    {
        const std::lock_guard hold(self->lock);
        self->id = osCurrentThreadId();
        self->changed.notify_all();
    }
    self->function(self->argument);
    {
        const std::lock_guard hold(self->lock);
        self->hasEnded = true;
        self->changed.notify_all();
    }
    release(self);
    return nullptr;
}

}  // namespace

int osThreadStart(OsThread** thread, OsThreadFunction function, void* argument) {
    *thread = nullptr;
    OsThread* made = new (std::nothrow) OsThread;
    if (made == nullptr) return ENOMEM;
    made->function = function;
    made->argument = argument;
    const int error = pthread_create(&made->thread, nullptr, threadMain, made);
    if (error != 0) {
        delete made;
        return error;
    }
    std::unique_lock hold(made->lock);
    made->changed.wait(hold, [made] { return made->id != 0; });
    *thread = made;
    return 0;
}

uint32_t osThreadId(const OsThread* thread) {
    return thread == nullptr ? 0 : thread->id;
}

uint32_t osCurrentThreadId() {
    return static_cast<uint32_t>(syscall(SYS_gettid));
}

void osThreadYield() {
    sched_yield();
}

int osThreadHasEnded(OsThread* thread, bool* ended) {
    if (thread == nullptr) return ESRCH;
    const std::lock_guard hold(thread->lock);
    *ended = thread->hasEnded;
    return 0;
}

bool osThreadWait(OsThread* thread, uint32_t milliseconds) {
    if (thread == nullptr) return true;
    std::unique_lock hold(thread->lock);
    return thread->changed.wait_for(hold, std::chrono::milliseconds(milliseconds),
                                    [thread] { return thread->hasEnded; });
}

int osThreadTerminate(OsThread* thread) {
    if (thread == nullptr) return ESRCH;
    const int error = osPostMessage(thread->id, kOsMessageDestroy);
    if (osThreadWait(thread, kOsTerminateWait)) return 0;
    return error != 0 ? error : ETIMEDOUT;
}

void osThreadClose(OsThread** thread) {
    if (thread == nullptr || *thread == nullptr) return;
    // One that has left its function is gone in a moment, and wholly so afterwards.
    if (osThreadWait(*thread, 0))
        pthread_join((*thread)->thread, nullptr);
    else
        pthread_detach((*thread)->thread);
    release(*thread);
    *thread = nullptr;
}
