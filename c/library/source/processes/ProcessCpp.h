#pragma once

#include "processes/Process.h"

namespace Quorel {

// Holds a process that runs already.
class ProcessCpp {
  public:
    ProcessCpp(uint32_t pid, uint32_t tid) : process_(processInitPid(pid, tid)) {}
    ProcessCpp(const ProcessCpp&) = delete;
    ProcessCpp& operator=(const ProcessCpp&) = delete;
    virtual ~ProcessCpp() { processDestroy(&process_); }

    bool terminate() { return processTerm(process_); }

  private:
    Process* process_;
};

}  // namespace Quorel
