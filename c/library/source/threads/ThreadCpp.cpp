#include "threads/ThreadCpp.h"

namespace Quorel {

ThreadCpp::~ThreadCpp() {
    Thread* record = thread();
    if (record == nullptr) return;
    record->ownerFlag = nullptr;
    if (!started_) threadKill(&record);
}

Thread* ThreadCpp::thread() {
    if (recordGone_ != 0) thread_ = nullptr;
    return thread_;
}

bool ThreadCpp::create(ThreadFunction function, void* data, const StringCpp& name) {
    if (thread() != nullptr) return false;
    thread_ = threadInitName(function, data, name.string());
    if (thread_ == nullptr) return false;
    recordGone_ = 0;
    started_ = false;
    thread_->ownerFlag = &recordGone_;
    return true;
}

bool ThreadCpp::start() {
    if (!threadStart(thread())) return false;
    started_ = true;
    return true;
}

}  // namespace Quorel
