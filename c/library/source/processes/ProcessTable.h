#pragma once

#include <cstdint>

#include "containers/Owned.h"
#include "containers/Vector.h"

// What runs on this machine.

struct String;

struct ProcessInfo {
    uint32_t pid = 0;
    String* exe = nullptr;   // owned: the full path of its program, or null
    String* user = nullptr;  // owned: `\\DOMAIN\name` or "system"; null before it was read
    uint64_t code = 0;       // identity of the program's file, 0 without one
};

// The ids of all processes, each as an element that is a number and no pointer
// (see processListedPid). The caller owns the vector; null after a failure.
Vector* processListPids();
inline uint32_t processListedPid(const Vector* pids, uint32_t index) {
    return static_cast<uint32_t>(reinterpret_cast<uintptr_t>(vectorGet(pids, index)));
}

// ProcessInfo of all processes that can be read. The caller owns them; null
// after a failure.
Vector* processListInfo();
void processListInfoDestroy(Vector** list);

// A record that knows no more than the id; the caller owns it.
ProcessInfo* processInfoInit(uint32_t pid);
void processInfoDestroy(ProcessInfo** info);

template <>
struct OwnedTraits<ProcessInfo> {
    static void destroy(ProcessInfo** info) { processInfoDestroy(info); }
};

// Reads the rest. False when the process cannot be opened; `error` (may be null)
// gets the system's error number then.
bool processInfoRead(ProcessInfo* info, int* error = nullptr);
