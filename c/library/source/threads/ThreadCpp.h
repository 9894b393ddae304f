#pragma once

#include <atomic>

#include "strings/StringCpp.h"
#include "threads/Thread.h"

namespace Quorel {

// A thread as a member of a class. A started thread belongs to the list of
// threads, and is only forgotten here.
class ThreadCpp {
  public:
    ThreadCpp() = default;
    ThreadCpp(const ThreadCpp&) = delete;
    ThreadCpp& operator=(const ThreadCpp&) = delete;
    virtual ~ThreadCpp();

    // The record; null without one, or when the list has destroyed it.
    Thread* thread();

    // Makes the record. False when there is one already or memory runs out.
    bool create(ThreadFunction function, void* data, const StringCpp& name);

    // Starts it, once it was created.
    bool start();

  private:
    Thread* thread_ = nullptr;
    bool started_ = false;
    std::atomic<uint8_t> recordGone_{0};
};

}  // namespace Quorel
