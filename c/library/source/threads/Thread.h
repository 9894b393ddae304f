#pragma once

#include <atomic>
#include <cstdint>

#include "containers/Owned.h"
#include "logger/Logger.h"
#include "platform/threads.h"
#include "strings/String.h"
#include "time/Time.h"

struct Thread;

using ThreadFunction = unsigned (*)(Thread* thread);

// `Thread::state`; 2 to 5 read as not running.
enum ThreadState : int {
    kThreadNotStarted = 0,
    kThreadRunning = 1,
    kThreadTerminated = 4,
    kThreadEnded = 5,
};

// A thread and what is known about it. State and touch are written by the thread
// itself and read by others, hence their type. The list of started threads is
// chained through the records, so that starting a thread cannot fail there.
struct Thread {
    String* name;  // owned, may be null; any ":" is replaced by "_"
    OsThread* handle;
    ThreadFunction function;
    void* data;  // for the function, which receives the record
    uint32_t threadId;
    std::atomic<int> state;
    Logger* logger;  // owned
    std::atomic<Time> lastTouch;
    std::atomic<uint8_t>* ownerFlag;  // set to 1 when the record is destroyed; may be null
    Thread* next;
};

// Makes the list of started threads and its lock; to be called before the first
// start. False when memory runs out.
bool threadModuleInit();

// Destroys the list and every record in it by `threadKill`: what still runs is
// terminated. Null-safe, like all below.
void threadModuleDone();

// New records, ended by `threadKill`, or by the list once started; null when
// memory runs out. The name is copied and may be null.
Thread* threadInit();
Thread* threadInitFunc(ThreadFunction function, void* data);
Thread* threadInitName(ThreadFunction function, void* data, const String* name);

// Stamps the present time on the record and marks it running; with null stamps
// the main thread's. A thread's function calls this at each round.
void threadTouch(Thread* thread);

// The time of the last touch of the main thread, 0 before the first.
Time threadMainTouch();

// Takes one message from the calling thread's queue; true when it asks to stop.
// Any other message is dropped.
bool threadQuitRequested();

// Starts the thread, which belongs to the list from then on. Threads of the list
// that have ended are destroyed first. False, after a log line, for a thread
// that is running already or cannot be started.
bool threadStart(Thread* thread);

bool threadIsRunning(Thread* thread);

// Kills a running thread; false when it is not running or goes on.
bool threadTerm(Thread* thread);

// Asks a running thread to stop. True for null.
bool threadSignalStop(Thread* thread);

// Terminates the thread if it runs, ends the record and clears the pointer. A
// thread that goes on all the same keeps its record, which is then lost.
void threadKill(Thread** reference);

// Waits until the thread has ended, at most `milliseconds`; true if it has, or
// was never started.
bool threadWait(Thread* thread, uint32_t milliseconds);

template <>
struct OwnedTraits<Thread> {
    static void destroy(Thread** thread) { threadKill(thread); }
};
