#include "platform/services.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <new>
#include <string>

#include "posix/SystemBus.h"

// Services are the units of systemd, which is asked over the system's bus.

struct OsServiceManager {
    sd_bus* bus;
};
struct OsService {
    sd_bus* bus;
    std::string unit;  // its full name
    std::string path;  // where the bus has it
};

namespace {

constexpr char kSystemd[] = "org.freedesktop.systemd1";
constexpr char kManagerPath[] = "/org/freedesktop/systemd1";
constexpr char kManager[] = "org.freedesktop.systemd1.Manager";
constexpr char kUnit[] = "org.freedesktop.systemd1.Unit";
constexpr char kPeer[] = "org.freedesktop.DBus.Peer";

// A longer name is no unit's, and need not be sent.
constexpr size_t kMaxUnitName = 255;

// The kinds of units; a name that ends with none of them is a service's without its ending.
constexpr std::string_view kUnitEndings[] = {
    ".service", ".socket", ".target", ".device", ".mount", ".automount",
    ".swap",    ".timer",  ".path",   ".slice",  ".scope",
};

struct StateWord {
    std::string_view word;
    uint32_t state;
};
constexpr StateWord kStates[] = {
    {"active", kOsServiceRunning},           {"reloading", kOsServiceRunning},
    {"refreshing", kOsServiceRunning},       {"inactive", kOsServiceStopped},
    {"failed", kOsServiceStopped},           {"activating", kOsServiceStartPending},
    {"deactivating", kOsServiceStopPending},
};

struct ErrorName {
    std::string_view name;
    uint32_t error;
};
constexpr ErrorName kErrors[] = {
    {"org.freedesktop.systemd1.NoSuchUnit", kOsServiceUnknown},
    {"org.freedesktop.systemd1.UnitMasked", kOsServiceDisabled},
    {"org.freedesktop.systemd1.OnlyByDependency", kOsServiceNotNow},
    {"org.freedesktop.systemd1.ShuttingDown", kOsServiceShuttingDown},
};

// The number for a system's error, which must not read as one of the service manager's.
uint32_t numberOf(int systemError) {
    switch (systemError) {
        case EACCES:
        case EPERM:
            return kOsServiceNoAccess;
        case kOsServiceNoBinary:
        case kOsServiceNoAccess:  // what an error of the bus without a number of its own has
        case kOsServiceBadName:
            return kOsServiceOther;
        default:
            return static_cast<uint32_t>(systemError);
    }
}

// One question to systemd, with its answer.
class Question {
  public:
    explicit Question(sd_bus* bus) : bus_(bus) {}
    Question(const Question&) = delete;
    Question& operator=(const Question&) = delete;
    ~Question() {
        library_->messageUnref(reply_);
        library_->errorFree(&error_);
    }

    template <typename... Args>
    uint32_t call(const char* path, const char* interface, const char* member, const char* types,
                  Args... args) {
        return result(library_->callMethod(bus_, kSystemd, path, interface, member, &error_,
                                           &reply_, types, args...));
    }
    uint32_t property(const std::string& unitPath, const char* name, const char* type) {
        return result(library_->getProperty(bus_, kSystemd, unitPath.c_str(), kUnit, name, &error_,
                                            &reply_, type));
    }
    // The values of the answer; texts live as long as the question.
    template <typename... Args>
    uint32_t read(const char* types, Args*... values) {
        return result(library_->read(reply_, types, values...));
    }
    bool isBadArgument() const { return isBadArgument_; }

  private:
    uint32_t result(int status) {
        if (status >= 0) return 0;
        isBadArgument_ = status == -EINVAL;
        const std::string_view name = error_.name == nullptr ? "" : error_.name;
        const auto* row = std::ranges::find(kErrors, name, &ErrorName::name);
        return row != std::end(kErrors) ? row->error : numberOf(-status);
    }

    const SystemBusLibrary* library_ = systemBusLibrary();
    sd_bus* bus_;
    sd_bus_message* reply_ = nullptr;
    sd_bus_error error_;
    bool isBadArgument_ = false;
};

std::string unitName(std::string_view name) {
    const auto endsName = [name](std::string_view ending) { return name.ends_with(ending); };
    const bool isWhole = std::ranges::any_of(kUnitEndings, endsName);
    return std::string(name) + (isWhole ? "" : ".service");
}

// Whether the unit has a definition.
uint32_t findDefinition(const OsService& service) {
    Question state(service.bus);
    const char* word = "";
    uint32_t error = state.property(service.path, "LoadState", "s");
    if (error == 0) error = state.read("s", &word);
    return error == 0 && std::strcmp(word, "not-found") == 0 ? kOsServiceUnknown : error;
}

// The place of the unit on the bus.
uint32_t loadUnit(OsService* service) {
    Question load(service->bus);
    const char* path = "";
    uint32_t error = load.call(kManagerPath, kManager, "LoadUnit", "s", service->unit.c_str());
    if (error == 0) error = load.read("o", &path);
    service->path = path;
    return load.isBadArgument() ? kOsServiceBadName : error;
}

// Whether the job of that path still waits or is under way for the unit.
uint32_t findJob(const OsService& service, const char* jobPath, bool* found) {
    Question job(service.bus);
    uint32_t id = 0;
    const char* path = "";
    uint32_t error = job.property(service.path, "Job", "(uo)");
    if (error == 0) error = job.read("(uo)", &id, &path);
    *found = error == 0 && std::strcmp(path, jobPath) == 0;
    return error;
}

}  // namespace

uint32_t osServiceManagerOpen(OsServiceManager** manager) {
    *manager = nullptr;
    const SystemBusLibrary* library = systemBusLibrary();
    if (library == nullptr) return ENOENT;
    OsServiceManager* made = new (std::nothrow) OsServiceManager{nullptr};
    if (made == nullptr) return ENOMEM;
    const int status = library->open(&made->bus);
    // A bus may be there without systemd.
    const uint32_t error =
        status < 0 ? numberOf(-status) : Question(made->bus).call(kManagerPath, kPeer, "Ping", "");
    *manager = made;
    if (error != 0) osServiceManagerClose(manager);
    return error;
}

void osServiceManagerClose(OsServiceManager** manager) {
    if (*manager == nullptr) return;
    systemBusLibrary()->unref((*manager)->bus);
    delete *manager;
    *manager = nullptr;
}

uint32_t osServiceOpen(OsServiceManager* manager, std::string_view name, OsService** service) {
    *service = nullptr;
    const std::string unit = unitName(name);
    if (unit.size() > kMaxUnitName) return kOsServiceBadName;
    OsService* opened =
        new (std::nothrow) OsService{systemBusLibrary()->ref(manager->bus), unit, ""};
    if (opened == nullptr) return ENOMEM;
    uint32_t error = loadUnit(opened);
    if (error == 0) error = findDefinition(*opened);
    *service = opened;
    if (error != 0) osServiceClose(service);
    return error;
}

void osServiceClose(OsService** service) {
    if (*service == nullptr) return;
    systemBusLibrary()->unref((*service)->bus);
    delete *service;
    *service = nullptr;
}

uint32_t osServiceQuery(OsService* service, uint32_t* state) {
    Question question(service->bus);
    const char* word = "";
    uint32_t error = question.property(service->path, "ActiveState", "s");
    if (error == 0) error = question.read("s", &word);
    const auto* row = std::ranges::find(kStates, std::string_view(word), &StateWord::word);
    *state = row != std::end(kStates) ? row->state : 0;
    return error;
}

uint32_t osServiceStop(OsService* service, uint32_t* state) {
    uint32_t error = osServiceQuery(service, state);
    if (error != 0) return error;
    if (*state == kOsServiceStopped) return kOsServiceNotStarted;
    Question stop(service->bus);
    const char* job = "";
    error = stop.call(kManagerPath, kManager, "StopUnit", "ss", service->unit.c_str(), "replace");
    if (error == 0) error = stop.read("o", &job);
    // The manager answers before it begins: until then the state is the old one,
    // so the job is looked for first.
    bool isUnderWay = false;
    if (error == 0) error = findJob(*service, job, &isUnderWay);
    if (error == 0) error = osServiceQuery(service, state);
    if (isUnderWay) *state = kOsServiceStopPending;
    return error;
}

uint32_t osServiceStart(OsService* service) {
    uint32_t state = 0;
    uint32_t error = osServiceQuery(service, &state);
    if (error != 0) return error;
    if (state == kOsServiceRunning || state == kOsServiceStartPending) return kOsServiceRunsAlready;
    Question start(service->bus);
    error = start.call(kManagerPath, kManager, "StartUnit", "ss", service->unit.c_str(), "replace");
    // The unit itself was found, so it is one that it needs.
    return error == kOsServiceUnknown ? uint32_t{kOsServiceNoDependency} : error;
}
