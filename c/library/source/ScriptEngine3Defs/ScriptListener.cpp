#include "ScriptEngine3Defs/ScriptListener.h"

#include "containers/Compare.h"
#include "containers/List.h"
#include "containers/Memory.h"
#include "platform/threads.h"
#include "threads/QuitFlag.h"

namespace {

constexpr uint32_t kHostSize = 260;
constexpr uint32_t kMessageWait = 100;  // milliseconds
constexpr uint32_t kStopWait = 25 * 10;
// After a failed accept: one that fails for good must not take a processor.
constexpr uint32_t kFailurePause = 100;

// The records that there are. A look for a connection where there is none shall
// not hold the lock against the listener that brings one.
std::atomic<uint32_t> connections{0};

// The listener's thread; null once the list of threads has destroyed it.
Thread* threadOf(ScriptListener* listener) {
    if (listener->threadGone != 0) listener->thread = nullptr;
    return listener->thread;
}

void destroyConnectionElement(void** element) {
    auto* connection = static_cast<ScriptConnection*>(*element);
    scriptConnectionDestroy(&connection);
    *element = nullptr;
}

void destroyQueueElement(void** element) {
    auto* queue = static_cast<List*>(*element);
    listDestroyWith(&queue, destroyConnectionElement);
    *element = nullptr;
}

// Takes over the socket; when memory runs out it is closed.
ScriptConnection* connectionCreate(Socket socket, const char* host, uint32_t port) {
    Owned<ScriptConnection> connection(memNew<ScriptConnection>());
    if (!connection) {
        sockClose(socket);
        return nullptr;
    }
    *connection = {socket, port, stringFromText(host), timeNow()};
    ++connections;
    return connection->peerHost == nullptr ? nullptr : connection.release();
}

// The queue of a port, made when there is none; null when memory runs out. The
// caller holds the lock.
List* queueOf(ScriptEngine* engine, uint32_t port) {
    if (auto* known = static_cast<List*>(mapGet(engine->connectionQueues, &port))) return known;
    Owned<List> queue(listCreate());
    void* key = keyFromUnsigned(port);
    if (queue && mapInsert(engine->connectionQueues, key, queue.get())) return queue.release();
    keyDestroy(&key);
    return nullptr;
}

// False when memory runs out, and then the connection stays the caller's.
bool enqueue(ScriptEngine* engine, uint32_t port, ScriptConnection* connection) {
    const LockScope scope(engine->connectionLock);
    List* queue = queueOf(engine, port);
    if (listCount(queue) == kMaxWaitingConnections) {
        Owned<ScriptConnection> oldest(static_cast<ScriptConnection*>(listPopFront(queue)));
    }
    return listPushBack(queue, connection);
}

// Waits for one connection and lets it wait in the queue; false when the thread has to end.
bool takeConnection(ScriptListener* listener, unsigned* exitCode, Logger* logger) {
    char host[kHostSize];
    uint32_t port = 0;
    const Socket socket = sockListen(listener->socket, host, sizeof host, &port);
    if (socket == kNoSocket) {
        if (listener->stopRequested == 0) sleepInterruptible(kFailurePause);
        return true;
    }
    if (listener->stopRequested != 0) {
        sockClose(socket);
        return false;
    }
    Owned<ScriptConnection> connection(connectionCreate(socket, host, port));
    if (connection && enqueue(listener->engine, listener->port, connection.get())) {
        connection.release();
        return true;
    }
    logError(logger, "scriptListenerThread: #::100");
    logLocation(logger, kLogError);
    *exitCode = 1;
    return false;
}

bool mustEnd(Thread* thread, const ScriptListener* listener) {
    threadTouch(thread);
    return threadQuitRequested() || listener->stopRequested != 0;
}

}  // namespace

ScriptListener* scriptListenerCreate(ScriptEngine* engine, uint32_t port) {
    ScriptListener* listener = memNew<ScriptListener>();
    if (listener == nullptr) return nullptr;
    listener->port = port;
    listener->engine = engine;
    listener->socket = kNoSocket;
    listener->threadFunction = scriptListenerThread;
    return listener;
}

void scriptListenerDestroy(ScriptListener** reference) {
    if (reference == nullptr || *reference == nullptr) return;
    ScriptListener* listener = *reference;
    *reference = nullptr;
    Thread* thread = threadOf(listener);
    if (thread != nullptr) thread->ownerFlag = nullptr;
    if (threadIsRunning(thread)) return;
    if (listener->socket != kNoSocket) sockClose(listener->socket);
    memDelete(&listener);
}

bool scriptListenerStart(ScriptListener* listener) {
    if (threadOf(listener) == nullptr) {
        Thread* made = threadInitFunc(listener->threadFunction, listener);
        if (made == nullptr) return false;
        made->ownerFlag = &listener->threadGone;
        listener->threadGone = 0;
        listener->thread = made;
    }
    if (threadStart(listener->thread)) return true;
    threadKill(&listener->thread);
    return false;
}

bool scriptListenerStop(ScriptListener* listener) {
    Thread* thread = threadOf(listener);
    if (threadIsRunning(thread)) {
        listener->stopRequested = 1;
        threadSignalStop(thread);
        // Mostly the message is enough. A connection that nobody takes would be logged.
        if (!threadWait(thread, kMessageWait)) sockBreak(listener->port);
        const bool goesOn = !threadWait(thread, kStopWait) && !threadTerm(thread);
        if (goesOn && threadIsRunning(thread)) return false;
    }
    if (listener->socket != kNoSocket) sockClose(listener->socket);
    listener->socket = kNoSocket;
    return true;
}

unsigned scriptListenerThread(Thread* thread) {
    auto* listener = static_cast<ScriptListener*>(thread->data);
    if (listener->socket == kNoSocket) listener->socket = sockCreateListener(listener->port);
    if (listener->socket == kNoSocket) return 1;
    unsigned exitCode = 0;
    while (!mustEnd(thread, listener) && takeConnection(listener, &exitCode, thread->logger)) {
    }
    return exitCode;
}

ScriptConnection* scriptConnectionTake(ScriptEngine* engine, uint32_t port) {
    if (connections > 0) {
        const LockScope scope(engine->connectionLock);
        auto* queue = static_cast<List*>(mapGet(engine->connectionQueues, &port));
        if (void* oldest = listPopFront(queue)) return static_cast<ScriptConnection*>(oldest);
    }
    // A script that looks again and again must not keep the listener off the processor.
    osThreadYield();
    return nullptr;
}

void scriptConnectionDestroy(ScriptConnection** reference) {
    if (reference == nullptr || *reference == nullptr) return;
    ScriptConnection* connection = *reference;
    *reference = nullptr;
    if (connection->socket != kNoSocket) sockClose(connection->socket);
    stringDestroy(&connection->peerHost);
    --connections;
    memDelete(&connection);
}

void scriptConnectionsDrop(ScriptEngine* engine, uint32_t port) {
    const LockScope scope(engine->connectionLock);
    mapEraseKey(engine->connectionQueues, &port, keyDestroy, destroyQueueElement);
}

void scriptListenersEnd(ScriptEngine* engine) {
    for (MapNode* node = mapFirstNode(engine->listeners); node != nullptr;
         node = mapFirstNode(engine->listeners)) {
        Owned<ScriptListener> listener(static_cast<ScriptListener*>(node->value));
        mapEraseNode(engine->listeners, node, nullptr, nullptr);
        scriptListenerStop(listener.get());
    }
    mapDestroy(&engine->listeners);
    const LockScope scope(engine->connectionLock);
    mapDestroyWith(&engine->connectionQueues, keyDestroy, destroyQueueElement);
}
