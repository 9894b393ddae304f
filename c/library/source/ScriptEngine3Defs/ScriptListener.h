#pragma once

#include <atomic>
#include <cstdint>

#include "ScriptEngine3Defs/ScriptEngineRecord.h"
#include "sockets/Sockets.h"
#include "threads/Thread.h"

// Listening is the one place where a script has a second thread: it takes the
// connections of a port and lets them wait in a queue of the engine. The queues
// are touched with the engine's `connectionLock` held; all else that stands here
// is for the script's thread, the thread function apart.

struct ScriptListener {
    uint32_t port;
    ScriptEngine* engine;
    Socket socket;  // -1 until the thread has made it
    ThreadFunction threadFunction;
    Thread* thread;                   // belongs to the list of threads; null without one
    std::atomic<uint8_t> threadGone;  // set when that list has destroyed it
    std::atomic<uint8_t> stopRequested;
};

// A connection that waits for the script.
struct ScriptConnection {
    Socket socket;  // -1 once handed to the script
    uint32_t peerPort;
    String* peerHost;  // owned
    Time acceptTime;
};

// How many connections wait for the script at most; one more and the oldest is closed.
constexpr uint32_t kMaxWaitingConnections = 20;

// A new listener of the engine, not started; null when memory runs out. It ends
// with `scriptListenerDestroy`, once it was stopped.
ScriptListener* scriptListenerCreate(ScriptEngine* engine, uint32_t port);

// Ends the record and closes its socket. What a thread goes on using in spite of
// a stop is lost instead.
void scriptListenerDestroy(ScriptListener** listener);

// Starts the thread, which makes the listening socket: a port that cannot be had
// shows in the log only.
bool scriptListenerStart(ScriptListener* listener);

// Ends the thread and closes the socket; false when the thread goes on.
bool scriptListenerStop(ScriptListener* listener);

// What the thread does: takes connections until it is asked to stop.
unsigned scriptListenerThread(Thread* thread);

// The oldest connection that waits at the port, which the caller owns; null when
// there is none.
ScriptConnection* scriptConnectionTake(ScriptEngine* engine, uint32_t port);

// Closes the connection, unless it was handed on, and clears the pointer.
void scriptConnectionDestroy(ScriptConnection** connection);

// Closes what waits at the port and forgets its queue.
void scriptConnectionsDrop(ScriptEngine* engine, uint32_t port);

// For the end of an engine: stops all listeners and closes all that waits.
void scriptListenersEnd(ScriptEngine* engine);

template <>
struct OwnedTraits<ScriptListener> {
    static void destroy(ScriptListener** listener) { scriptListenerDestroy(listener); }
};
template <>
struct OwnedTraits<ScriptConnection> {
    static void destroy(ScriptConnection** connection) { scriptConnectionDestroy(connection); }
};
