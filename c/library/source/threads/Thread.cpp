#include "threads/Thread.h"

#include <algorithm>

#include "containers/Lock.h"
#include "containers/Memory.h"
#include "platform/messages.h"

namespace {

Thread* firstStarted = nullptr;
Lock* listLock = nullptr;
std::atomic<Time> mainTouch{0};

// Logs one of the two texts, by whether the thread has a name.
void traceThread(const Thread* thread, const char* withName, const char* withoutName) {
    if (thread->name != nullptr)
        logTrace(thread->logger, withName, thread->threadId, thread->name);
    else
        logTrace(thread->logger, withoutName, thread->threadId);
}

unsigned threadBody(void* argument) {
    Thread* thread = static_cast<Thread*>(argument);
    // Whoever started the thread holds the lock until all is noted and logged.
    { const LockScope wait(listLock); }
    return thread->function(thread);
}

bool mayRun(const Thread* thread) {
    const int state = thread->state;
    return thread->handle != nullptr && (state == kThreadRunning || state > kThreadEnded);
}

// The caller holds the lock.
void reapEnded() {
    for (Thread** link = &firstStarted; *link != nullptr;) {
        Thread* thread = *link;
        if (threadIsRunning(thread)) {
            link = &thread->next;
        } else {
            *link = thread->next;
            threadKill(&thread);
        }
    }
}

// The caller holds the lock.
bool startListed(Thread* thread) {
    if (threadIsRunning(thread)) {
        if (thread->name != nullptr)
            logDebug(thread->logger, "threadStart: ERR Thread %u (%S) is already running",
                     thread->threadId, thread->name);
        else
            logDebug(thread->logger, "threadStart: ERR Thread %u is already running",
                     thread->threadId);
        return false;
    }
    const int error = osThreadStart(&thread->handle, threadBody, thread);
    if (error != 0) {
        logDebug(thread->logger, "threadStart: ERR CreateThread failure. GetLastError=%i", error);
        return false;
    }
    thread->threadId = osThreadId(thread->handle);
    thread->state = kThreadRunning;
    thread->next = firstStarted;
    firstStarted = thread;
    traceThread(thread, "threadStart: Thread %u (%S) started", "threadStart: Thread %u started");
    return true;
}

}  // namespace

bool threadModuleInit() {
    if (listLock == nullptr) listLock = lockCreate();
    return listLock != nullptr;
}

void threadModuleDone() {
    // Without the lock: a thread that is only just starting waits for it.
    while (firstStarted != nullptr) {
        Thread* thread = firstStarted;
        firstStarted = thread->next;
        threadKill(&thread);
    }
    lockDestroy(&listLock);
}

Thread* threadInit() {
    Thread* thread = memNew<Thread>();
    if (thread == nullptr) return nullptr;
    thread->logger = logCreate();
    if (thread->logger == nullptr) {
        memDelete(&thread);
        return nullptr;
    }
    logTrace(thread->logger, "threadInit: Created thread object");
    return thread;
}

Thread* threadInitFunc(ThreadFunction function, void* data) {
    Thread* thread = threadInit();
    if (thread == nullptr) return nullptr;
    thread->function = function;
    thread->data = data;
    return thread;
}

Thread* threadInitName(ThreadFunction function, void* data, const String* name) {
    Owned<Thread> thread(threadInitFunc(function, data));
    if (!thread || name == nullptr) return thread.release();
    thread->name = stringClone(name);
    if (thread->name == nullptr) return nullptr;
    std::replace(stringBytes(thread->name), stringBytes(thread->name) + thread->name->length, ':',
                 '_');
    return thread.release();
}

void threadTouch(Thread* thread) {
    if (thread == nullptr) {
        mainTouch = timeNow();
        return;
    }
    thread->lastTouch = timeNow();
    thread->state = kThreadRunning;
}

Time threadMainTouch() {
    return mainTouch;
}

bool threadQuitRequested() {
    uint32_t message = 0;
    return osTakeMessage(&message) && (message == kOsMessageClose || message == kOsMessageDestroy);
}

bool threadStart(Thread* thread) {
    if (thread == nullptr || thread->function == nullptr || listLock == nullptr) {
        logError(nullptr, "threadStart: ERR NULL thread");
        return false;
    }
    if (thread->name != nullptr)
        logTrace(thread->logger, "threadStart: Starting thread \"%S\"", thread->name);
    else
        logTrace(thread->logger, "threadStart: Starting thread");
    const LockScope hold(listLock);
    reapEnded();
    return startListed(thread);
}

bool threadIsRunning(Thread* thread) {
    if (thread == nullptr || !mayRun(thread)) return false;
    bool ended = false;
    const int error = osThreadHasEnded(thread->handle, &ended);
    if (error != 0) {
        logError(thread->logger,
                 "threadIsRunning: ERR GetExitCodeThread for thread %u failed. GetLastError=%i",
                 thread->threadId, error);
        return false;
    }
    thread->state = ended ? kThreadEnded : kThreadRunning;
    return !ended;
}

bool threadTerm(Thread* thread) {
    if (!threadIsRunning(thread)) return false;
    traceThread(thread, "threadTerm: Killing thread %u (%S)", "threadTerm: Killing thread %u");
    const int error = osThreadTerminate(thread->handle);
    if (error != 0) {
        logError(thread->logger,
                 "threadTerm: ERR TerminateThread of thread %u failure. GetLastError=%i",
                 thread->threadId, error);
        return false;
    }
    thread->state = kThreadTerminated;
    return true;
}

bool threadSignalStop(Thread* thread) {
    if (thread == nullptr) return true;
    traceThread(thread, "threadSignalStop: Stopping thread %u (%S)",
                "threadSignalStop: Stopping thread %u");
    if (!threadIsRunning(thread)) {
        logError(thread->logger, "threadSignalStop: ERR Thread %u is not running",
                 thread->threadId);
        return false;
    }
    const int error = osPostMessage(thread->threadId, kOsMessageDestroy);
    if (error != 0) {
        logError(thread->logger,
                 "threadSignalStop: ERR PostThreadMessage to thread %u failed. GetLastError=%i",
                 thread->threadId, error);
        return false;
    }
    logTrace(thread->logger, "threadSignalStop: Stop signal sent to thread %u", thread->threadId);
    return true;
}

void threadKill(Thread** reference) {
    if (reference == nullptr || *reference == nullptr) return;
    Thread* thread = *reference;
    *reference = nullptr;
    const bool goesOn = threadIsRunning(thread) && !threadTerm(thread);
    traceThread(thread, "threadKill: Destroying thread %u (\"%S\")",
                "threadKill: Destroying thread %u");
    if (thread->handle != nullptr) {
        logTrace(thread->logger, "threadKill: Closing handle of:%i",
                 static_cast<int32_t>(thread->threadId));
        osThreadClose(&thread->handle);
    }
    if (thread->ownerFlag != nullptr) *thread->ownerFlag = 1;
    if (goesOn) return;
    stringDestroy(&thread->name);
    logDestroy(&thread->logger);
    memDelete(&thread);
}

bool threadWait(Thread* thread, uint32_t milliseconds) {
    return thread == nullptr || thread->handle == nullptr ||
           osThreadWait(thread->handle, milliseconds);
}
