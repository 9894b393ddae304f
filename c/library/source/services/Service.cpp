#include "services/Service.h"

#include "platform/services.h"
#include "strings/StringFormat.h"

template <>
struct OwnedTraits<OsServiceManager> {
    static void destroy(OsServiceManager** manager) { osServiceManagerClose(manager); }
};
template <>
struct OwnedTraits<OsService> {
    static void destroy(OsService** service) { osServiceClose(service); }
};

namespace {

// As an error number: any that the step has no row for.
constexpr uint32_t kAnyOther = 0;

struct ErrorText {
    ServiceStep step;
    uint32_t error;
    const char* format;
};
// The last row of a step ends it. A failed look at the state is called a failed stop on purpose.
constexpr ErrorText kErrorTexts[] = {
    {ServiceStep::Manager, kOsServiceNoAccess, "Access to service manager was denied"},
    {ServiceStep::Manager, kOsServiceNoDatabase, "Service data base does not exist"},
    {ServiceStep::Manager, kAnyOther, "Unable to open service manager. (Error code=%u)"},

    {ServiceStep::Open, kOsServiceNoAccess, "Access to service manager was denied"},
    {ServiceStep::Open, kOsServiceBadName, "Invalid service name \"%S\""},
    {ServiceStep::Open, kOsServiceUnknown, "Service \"%S\" does not exist"},
    {ServiceStep::Open, kAnyOther, "Unable to open service \"%S\". (Error code=%u)"},

    {ServiceStep::GetState, kOsServiceNoAccess,
     "Access denied when attempting to access service \"%S\""},
    {ServiceStep::GetState, kOsServiceShuttingDown, "The system is shutting down"},
    {ServiceStep::GetState, kAnyOther, "Failed to stop service \"%S\". (Error code=%u)"},

    {ServiceStep::Stop, kOsServiceNoAccess, "Access denied when attempting to stop service \"%S\""},
    {ServiceStep::Stop, kOsServiceDependentsRun, "A service depending on \"%S\" is still running"},
    {ServiceStep::Stop, kOsServiceNoResponse,
     "The service \"%S\" process was previously started, but it did not report successful start "
     "or is blocking control"},
    {ServiceStep::Stop, kOsServiceNotNow,
     "The service \"%S\" is in a state where it cannot be stopped"},
    {ServiceStep::Stop, kOsServiceNotStarted, "The service \"%S\" has not been started"},
    {ServiceStep::Stop, kOsServiceShuttingDown, "The system is shutting down"},
    {ServiceStep::Stop, kAnyOther, "Failed to stop service \"%S\". (Error code=%u)"},

    {ServiceStep::Start, kOsServiceNoBinary, "Binary for service \"%S\" could not be found"},
    {ServiceStep::Start, kOsServiceNoAccess,
     "Access denied when attempting to start service \"%S\""},
    {ServiceStep::Start, kOsServiceNoResponse,
     "The service \"%S\" process was started, but it did not report successful start"},
    {ServiceStep::Start, kOsServiceNoThread,
     "A thread could not be created for the service \"%S\""},
    {ServiceStep::Start, kOsServiceRunsAlready, "Service \"%S\" is already running"},
    {ServiceStep::Start, kOsServiceDisabled, "The service \"%S\" has been disabled"},
    {ServiceStep::Start, kOsServiceDependencyFailed,
     "The service \"%S\" depends on another service that has failed to start"},
    {ServiceStep::Start, kOsServiceNoLogon,
     "The service \"%S\" did not start due to a logon failure"},
    {ServiceStep::Start, kOsServiceDeleted, "The service \"%S\" is marked for deletion"},
    {ServiceStep::Start, kOsServiceNoDependency,
     "A service \"%S\" is depending on does not exist (or has been marked for deletion)"},
    {ServiceStep::Start, kAnyOther, "Failed to start service \"%S\". (Error code=%u)"},
};

constexpr const char* kStateWords[] = {
    "error",   "stopped",          "start pending", "stop pending",
    "running", "continue pending", "pause pending", "paused",
};

bool fail(ServiceStep step, uint32_t error, const String* name, String* text) {
    const char* format = serviceErrorFormat(step, error);
    if (step == ServiceStep::Manager)
        stringFormat(text, format, error);
    else
        stringFormat(text, format, name, error);
    return false;
}

uint32_t openService(OsServiceManager* manager, const String* name, OsService** service) {
    const std::string_view view = stringView(name);
    // The system would look for what stands before the zero byte.
    if (view.find('\0') != view.npos) return kOsServiceBadName;
    return osServiceOpen(manager, view, service);
}

bool getState(OsService* service, const String* name, String* text) {
    uint32_t state = 0;
    const uint32_t error = osServiceQuery(service, &state);
    if (error != 0) return fail(ServiceStep::GetState, error, name, text);
    return stringSetText(text, serviceStateWord(state));
}

bool stop(OsService* service, const String* name, String* text) {
    uint32_t state = 0;
    const uint32_t error = osServiceStop(service, &state);
    if (error != 0) return fail(ServiceStep::Stop, error, name, text);
    if (state == kOsServiceStopped || state == kOsServiceStopPending) return true;
    stringFormat(text, "Failed to signal stop for service \"%S\"", name);
    return false;
}

bool start(OsService* service, const String* name, String* text) {
    const uint32_t error = osServiceStart(service);
    return error == 0 || fail(ServiceStep::Start, error, name, text);
}

}  // namespace

const char* serviceErrorFormat(ServiceStep step, uint32_t error) {
    const ErrorText* row = kErrorTexts;
    while (row->step != step || (row->error != error && row->error != kAnyOther)) ++row;
    return row->format;
}

const char* serviceStateWord(uint32_t state) {
    return state < std::size(kStateWords) ? kStateWords[state] : kStateWords[0];
}

bool serviceControl(const String* name, ServiceAction action, String* text) {
    if (name == nullptr || text == nullptr) return false;
    Owned<OsServiceManager> manager;
    uint32_t error = osServiceManagerOpen(manager.receive());
    if (error != 0) return fail(ServiceStep::Manager, error, name, text);
    Owned<OsService> service;
    error = openService(manager.get(), name, service.receive());
    if (error != 0) return fail(ServiceStep::Open, error, name, text);
    manager.reset();
    switch (action) {
        case ServiceAction::GetState:
            return getState(service.get(), name, text);
        case ServiceAction::Stop:
            return stop(service.get(), name, text);
        case ServiceAction::Start:
            return start(service.get(), name, text);
        default:
            return true;
    }
}
