#include "platform/processes.h"

#include <windows.h>

#include <cstdlib>
#include <memory>
#include <new>
#include <utility>

#include "platform/clock.h"
#include "windows/ReadPipe.h"
#include "windows/WaitEvent.h"

namespace {

struct Handle {
    HANDLE value = nullptr;
    Handle() = default;
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    ~Handle() { close(); }
    void close() {
        if (value != nullptr) CloseHandle(value);
        value = nullptr;
    }
};

}  // namespace

struct OsPipe {
    ReadPipe reader;
    Handle writeEnd;  // can be inherited
};

struct OsProcess {
    HANDLE handle = nullptr;
    DWORD id = 0;
    DWORD threadId = 0;
    bool isStarted = false;            // here, and not opened by its id
    std::unique_ptr<OsPipe> pipes[2];  // in the order of OsOutput

    OsProcess() = default;
    OsProcess(const OsProcess&) = delete;
    OsProcess& operator=(const OsProcess&) = delete;
    ~OsProcess() {
        if (handle != nullptr && !keepsId()) CloseHandle(handle);
    }

  private:
    // While a handle is open nobody else gets the id. One of a process that goes on
    // stays open for good: the id means that process for as long as we live.
    bool keepsId() const { return isStarted && WaitForSingleObject(handle, 0) == WAIT_TIMEOUT; }
};

namespace {

constexpr DWORD kTerminateWait = 100;
// Later systems added rights to the name for all of them.
constexpr DWORD kAllAccess = 0x1F0FFF;
constexpr UINT kExitOfTerminated = 1;
constexpr DWORD kDescriptorRevision = 1;
constexpr int kStreams = 3;
constexpr DWORD kStreamIds[kStreams] = {STD_INPUT_HANDLE, STD_OUTPUT_HANDLE, STD_ERROR_HANDLE};

int lastError() {
    return static_cast<int>(GetLastError());
}

// Opens the new process and its thread to everyone.
class OpenDescriptor {
  public:
    OpenDescriptor() = default;
    OpenDescriptor(const OpenDescriptor&) = delete;
    OpenDescriptor& operator=(const OpenDescriptor&) = delete;
    ~OpenDescriptor() {
        if (descriptor_ != nullptr) LocalFree(descriptor_);
    }
    int make(OsStartStep* step) {
        *step = OsStartStep::Memory;
        descriptor_ = LocalAlloc(LPTR, sizeof(SECURITY_DESCRIPTOR));
        if (descriptor_ == nullptr) return lastError();
        *step = OsStartStep::Descriptor;
        if (!InitializeSecurityDescriptor(descriptor_, kDescriptorRevision)) return lastError();
        *step = OsStartStep::DescriptorList;
        if (!SetSecurityDescriptorDacl(descriptor_, TRUE, nullptr, FALSE)) return lastError();
        attributes_ = {sizeof attributes_, descriptor_, TRUE};
        return 0;
    }
    SECURITY_ATTRIBUTES* attributes() { return &attributes_; }

  private:
    void* descriptor_ = nullptr;
    SECURITY_ATTRIBUTES attributes_{};
};

// The streams of a child: copies of ours, or pipes, that it can inherit.
class ChildStreams {
  public:
    explicit ChildStreams(OsProcess* process) {
        for (int stream = 0; stream < kStreams; ++stream) {
            OsPipe* pipe = stream == 0 ? nullptr : process->pipes[stream - 1].get();
            if (pipe != nullptr)
                ends_[stream] = pipe->writeEnd.value;
            else
                copyOwn(stream);
        }
    }
    HANDLE end(int stream) const { return ends_[stream]; }
    // Gives the handles that there are, and their number.
    DWORD list(HANDLE* handles) const {
        DWORD count = 0;
        for (const HANDLE end : ends_)
            if (end != nullptr) handles[count++] = end;
        return count;
    }

  private:
    void copyOwn(int stream) {
        const HANDLE own = GetStdHandle(kStreamIds[stream]);
        if (own == nullptr || own == INVALID_HANDLE_VALUE) return;
        if (DuplicateHandle(GetCurrentProcess(), own, GetCurrentProcess(), &copies_[stream].value,
                            0, TRUE, DUPLICATE_SAME_ACCESS))
            ends_[stream] = copies_[stream].value;
    }

    HANDLE ends_[kStreams] = {};
    Handle copies_[kStreams];
};

// The list of what a child inherits: nothing else that happens to be open.
class InheritList {
  public:
    InheritList() = default;
    InheritList(const InheritList&) = delete;
    InheritList& operator=(const InheritList&) = delete;
    ~InheritList() {
        if (isMade_) DeleteProcThreadAttributeList(list());
    }
    int make(const ChildStreams& streams) {
        count_ = streams.list(handles_);
        SIZE_T size = sizeof memory_;
        isMade_ = InitializeProcThreadAttributeList(list(), 1, 0, &size);
        if (!isMade_) return lastError();
        if (count_ == 0) return 0;
        return UpdateProcThreadAttribute(list(), 0, PROC_THREAD_ATTRIBUTE_HANDLE_LIST, handles_,
                                         count_ * sizeof *handles_, nullptr, nullptr)
                   ? 0
                   : lastError();
    }
    LPPROC_THREAD_ATTRIBUTE_LIST list() {
        return reinterpret_cast<LPPROC_THREAD_ATTRIBUTE_LIST>(memory_);
    }
    bool isEmpty() const { return count_ == 0; }

  private:
    HANDLE handles_[kStreams];
    DWORD count_ = 0;
    bool isMade_ = false;
    alignas(16) char memory_[256];
};

int createProcess(const OsProcessStart& start, OsProcess* process, OpenDescriptor* descriptor) {
    const ChildStreams streams(process);
    InheritList inherited;
    const int error = inherited.make(streams);
    if (error != 0) return error;
    STARTUPINFOEXA startup{};
    startup.StartupInfo.cb = sizeof startup;
    startup.StartupInfo.dwFlags = STARTF_USESTDHANDLES;
    if (start.hidden) startup.StartupInfo.dwFlags |= STARTF_USESHOWWINDOW;
    startup.StartupInfo.wShowWindow = SW_HIDE;  // counts with its flag
    startup.StartupInfo.hStdInput = streams.end(0);
    startup.StartupInfo.hStdOutput = streams.end(1);
    startup.StartupInfo.hStdError = streams.end(2);
    startup.lpAttributeList = inherited.list();
    std::string line(start.commandLine.substr(0, start.commandLine.find('\0')));
    PROCESS_INFORMATION made{};
    if (!CreateProcessA(nullptr, line.data(), descriptor->attributes(), descriptor->attributes(),
                        !inherited.isEmpty(), EXTENDED_STARTUPINFO_PRESENT, nullptr, nullptr,
                        &startup.StartupInfo, &made))
        return lastError();
    CloseHandle(made.hThread);
    process->handle = made.hProcess;
    process->id = made.dwProcessId;
    process->threadId = made.dwThreadId;
    process->isStarted = true;
    return 0;
}

bool hasEnded(OsProcess* process, DWORD* exitCode) {
    return GetExitCodeProcess(process->handle, exitCode) && *exitCode != STILL_ACTIVE;
}

}  // namespace

int osPipeCreate(OsPipe** pipe) {
    *pipe = nullptr;
    std::unique_ptr<OsPipe> made(new (std::nothrow) OsPipe);
    if (made == nullptr) return ERROR_NOT_ENOUGH_MEMORY;
    const int error = made->reader.create(&made->writeEnd.value);
    if (error == 0) *pipe = made.release();
    return error;
}

void osPipeClose(OsPipe** pipe) {
    if (pipe == nullptr) return;
    delete *pipe;
    *pipe = nullptr;
}

int osProcessStart(const OsProcessStart& start, OsProcess** process, OsStartStep* step) {
    *process = nullptr;
    *step = OsStartStep::Memory;
    std::unique_ptr<OsPipe> pipes[] = {std::unique_ptr<OsPipe>(start.pipes[0]),
                                       std::unique_ptr<OsPipe>(start.pipes[1])};
    std::unique_ptr<OsProcess> made(new (std::nothrow) OsProcess);
    if (made == nullptr) return ERROR_NOT_ENOUGH_MEMORY;
    for (int at = 0; at < 2; ++at) made->pipes[at] = std::move(pipes[at]);
    OpenDescriptor descriptor;
    int error = descriptor.make(step);
    if (error != 0) return error;
    *step = OsStartStep::Start;
    error = createProcess(start, made.get(), &descriptor);
    if (error != 0) return error;
    for (const std::unique_ptr<OsPipe>& pipe : made->pipes) {
        if (pipe == nullptr) continue;
        pipe->writeEnd.close();
        pipe->reader.start();
    }
    *process = made.release();
    return 0;
}

int osSystemCommand(std::string_view line, int* exitCode) {
    const std::string text(line.substr(0, line.find('\0')));
    *exitCode = std::system(text.c_str());
    return *exitCode == -1 ? ERROR_FILE_NOT_FOUND : 0;
}

int osProcessOpen(uint32_t id, OsProcess** process) {
    *process = nullptr;
    std::unique_ptr<OsProcess> opened(new (std::nothrow) OsProcess);
    if (opened == nullptr) return ERROR_NOT_ENOUGH_MEMORY;
    // The system takes any number for the multiple of four below it.
    if (id == 0 || id % 4 != 0) return ERROR_INVALID_PARAMETER;
    opened->handle = OpenProcess(kAllAccess, TRUE, id);
    if (opened->handle == nullptr) return lastError();
    opened->id = id;
    *process = opened.release();
    return 0;
}

void osProcessClose(OsProcess** process) {
    if (process == nullptr) return;
    delete *process;
    *process = nullptr;
}

uint32_t osProcessId(const OsProcess* process) {
    return process == nullptr ? 0 : process->id;
}

uint32_t osProcessThreadId(const OsProcess* process) {
    return process == nullptr ? 0 : process->threadId;
}

int osProcessExitCode(OsProcess* process, bool* ended, uint32_t* exitCode) {
    if (process == nullptr) return ERROR_INVALID_HANDLE;
    DWORD code = 0;
    if (!GetExitCodeProcess(process->handle, &code)) return lastError();
    *ended = code != STILL_ACTIVE;
    *exitCode = code;
    return 0;
}

unsigned osProcessWait(OsProcess* process, unsigned wanted, OsEvent* event, uint32_t milliseconds) {
    HANDLE handles[4];
    unsigned meanings[4];
    DWORD count = 0;
    const auto add = [&](HANDLE handle, unsigned meaning) {
        handles[count] = handle;
        meanings[count++] = meaning;
    };
    if ((wanted & kOsWakeOutput) != 0) add(process->pipes[0]->reader.event(), kOsWakeOutput);
    if ((wanted & kOsWakeError) != 0) add(process->pipes[1]->reader.event(), kOsWakeError);
    if (event != nullptr) add(windowsEventHandle(event), kOsWakeEvent);
    // One that has ended with the code of a running process would end each wait at once.
    DWORD code = 0;
    const bool isGone = WaitForSingleObject(process->handle, 0) == WAIT_OBJECT_0;
    if ((wanted & kOsWakeEnd) != 0 && (!isGone || hasEnded(process, &code)))
        add(process->handle, kOsWakeEnd);
    OsVirtualClock* clock = osVirtualClock.load(std::memory_order_acquire);
    const DWORD limit = clock == nullptr ? milliseconds : 0;
    if (count == 0) {
        osSleep(milliseconds);
        return 0;
    }
    const DWORD woken = WaitForMultipleObjects(count, handles, FALSE, limit);
    if (woken < WAIT_OBJECT_0 + count) return meanings[woken - WAIT_OBJECT_0];
    if (clock != nullptr) {
        clock->advance(milliseconds);
        SwitchToThread();
    }
    return 0;
}

int osProcessRead(OsProcess* process, OsOutput output, void* buffer, size_t size, size_t* got,
                  bool* atEnd) {
    return process->pipes[static_cast<int>(output)]->reader.take(buffer, size, got, atEnd);
}

int osProcessTerminate(OsProcess* process) {
    if (process == nullptr) return ERROR_INVALID_HANDLE;
    if (!TerminateProcess(process->handle, kExitOfTerminated)) return lastError();
    WaitForSingleObject(process->handle, kTerminateWait);
    return 0;
}

int osProcessAskToStop(OsProcess* process, uint32_t threadId) {
    if (process == nullptr) return ERROR_INVALID_HANDLE;
    return PostThreadMessageA(threadId, WM_CLOSE, 0, 0) ? 0 : lastError();
}
