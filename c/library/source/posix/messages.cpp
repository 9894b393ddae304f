#include "platform/messages.h"

#include <poll.h>
#include <sched.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <climits>
#include <mutex>
#include <new>

#include "platform/clock.h"
#include "platform/messages.h"
#include "platform/threads.h"
#include "posix/ThreadQueue.h"

struct OsEvent {
    int descriptor = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    std::atomic<bool> raised{false};
};

namespace {

// One lock for all queues: messages are rare, and threads are few.
std::mutex queuesLock;
struct ThreadQueue;
ThreadQueue* firstQueue = nullptr;

void raiseDescriptor(int descriptor) {
    const uint64_t one = 1;
    (void)!write(descriptor, &one, sizeof one);
}

void clearDescriptor(int descriptor) {
    uint64_t count = 0;
    (void)!read(descriptor, &count, sizeof count);
}

// A thread's messages. It lives in the thread and is found by its id.
struct ThreadQueue {
    static constexpr uint32_t kCapacity = 64;

    const uint32_t threadId = osCurrentThreadId();
    const int wake = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    bool isNew = false;  // a message came after the last look; `wake` is readable
    uint32_t count = 0;
    uint32_t messages[kCapacity] = {};
    ThreadQueue* next = nullptr;

    ThreadQueue() {
        const std::lock_guard hold(queuesLock);
        next = firstQueue;
        firstQueue = this;
    }
    ThreadQueue(const ThreadQueue&) = delete;
    ThreadQueue& operator=(const ThreadQueue&) = delete;
    ~ThreadQueue() {
        const std::lock_guard hold(queuesLock);
        ThreadQueue** link = &firstQueue;
        while (*link != this) link = &(*link)->next;
        *link = next;
        if (wake >= 0) close(wake);
    }

    bool push(uint32_t message) {
        if (count == kCapacity) return false;
        messages[count++] = message;
        if (!isNew) raiseDescriptor(wake);
        isNew = true;
        return true;
    }
    void look() {
        if (isNew) clearDescriptor(wake);
        isNew = false;
    }
    uint32_t pop() {
        const uint32_t message = messages[0];
        std::copy(messages + 1, messages + count, messages);
        --count;
        return message;
    }
};

ThreadQueue& ownQueue() {
    thread_local ThreadQueue queue;
    return queue;
}

// The caller holds the lock.
ThreadQueue* findQueue(uint32_t threadId) {
    ThreadQueue* queue = firstQueue;
    while (queue != nullptr && queue->threadId != threadId) queue = queue->next;
    return queue;
}

// Waits for either descriptor; a negative one is left out. False when the time is over.
bool waitForEither(int event, int message, uint32_t milliseconds) {
    OsVirtualClock* clock = osVirtualClock.load(std::memory_order_acquire);
    const uint64_t end = osSystemTicks() + (clock == nullptr ? milliseconds : 0);
    for (;;) {
        const uint64_t now = osSystemTicks();
        const uint64_t rest = now < end ? end - now : 0;
        pollfd entries[] = {{event, POLLIN, 0}, {message, POLLIN, 0}};
        const int ready = poll(entries, 2, static_cast<int>(std::min<uint64_t>(rest, INT_MAX)));
        if (ready > 0) return true;
        if (rest > INT_MAX || (ready < 0 && errno == EINTR && rest > 0)) continue;
        break;
    }
    if (clock != nullptr) {
        clock->advance(milliseconds);
        sched_yield();
    }
    return false;
}

}  // namespace

int osPostMessage(uint32_t threadId, uint32_t message) {
    const std::lock_guard hold(queuesLock);
    ThreadQueue* queue = findQueue(threadId);
    if (queue == nullptr) return ESRCH;
    return queue->push(message) ? 0 : ENOBUFS;
}

bool osTakeMessage(uint32_t* message) {
    ThreadQueue& queue = ownQueue();
    const std::lock_guard hold(queuesLock);
    queue.look();
    if (queue.count == 0) return false;
    *message = queue.pop();
    return true;
}

OsEvent* osEventCreate() {
    OsEvent* event = new (std::nothrow) OsEvent;
    if (event != nullptr && event->descriptor < 0) osEventDestroy(&event);
    return event;
}

void osEventDestroy(OsEvent** event) {
    if (event == nullptr || *event == nullptr) return;
    if ((*event)->descriptor >= 0) close((*event)->descriptor);
    delete *event;
    *event = nullptr;
}

void osEventRaise(OsEvent* event) {
    if (event != nullptr && !event->raised.exchange(true)) raiseDescriptor(event->descriptor);
}

void osEventClear(OsEvent* event) {
    if (event != nullptr && event->raised.exchange(false)) clearDescriptor(event->descriptor);
}

OsWake osWaitForEvent(OsEvent* event, uint32_t milliseconds) {
    if (event != nullptr && event->raised) return OsWake::Event;
    ThreadQueue& queue = ownQueue();
    if (!waitForEither(posixEventDescriptor(event), queue.wake, milliseconds))
        return OsWake::Timeout;
    if (event != nullptr && event->raised) return OsWake::Event;
    const std::lock_guard hold(queuesLock);
    queue.look();
    return OsWake::Message;
}

int posixEventDescriptor(const OsEvent* event) {
    return event == nullptr ? -1 : event->descriptor;
}

int posixMessageDescriptor() {
    return ownQueue().wake;
}

void posixTakeOverQueue(uint32_t fromThread) {
    ThreadQueue& queue = ownQueue();
    const std::lock_guard hold(queuesLock);
    ThreadQueue* from = findQueue(fromThread);
    while (from != nullptr && from != &queue && from->count > 0) queue.push(from->pop());
}

bool posixHasMessage(uint32_t threadId, uint32_t message) {
    const std::lock_guard hold(queuesLock);
    const ThreadQueue* queue = findQueue(threadId);
    return queue != nullptr && std::find(queue->messages, queue->messages + queue->count,
                                         message) != queue->messages + queue->count;
}
