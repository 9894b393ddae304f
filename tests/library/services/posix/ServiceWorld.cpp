#include "ServiceWorld.h"

#include <gtest/gtest.h>
#include <signal.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

// A bus of our own, on which a thread answers as systemd does.

struct sd_bus;
struct sd_bus_message;
extern "C" {
int sd_bus_open_system(sd_bus** bus);
int sd_bus_request_name(sd_bus* bus, const char* name, uint64_t flags);
int sd_bus_add_filter(sd_bus* bus, void** slot, int (*handler)(sd_bus_message*, void*, void*),
                      void* data);
int sd_bus_process(sd_bus* bus, sd_bus_message** message);
int sd_bus_wait(sd_bus* bus, uint64_t microseconds);
sd_bus* sd_bus_flush_close_unref(sd_bus* bus);
const char* sd_bus_message_get_path(sd_bus_message* message);
const char* sd_bus_message_get_member(sd_bus_message* message);
int sd_bus_message_read(sd_bus_message* message, const char* types, ...);
int sd_bus_reply_method_return(sd_bus_message* message, const char* types, ...);
int sd_bus_reply_method_errorf(sd_bus_message* message, const char* name, const char* text, ...);
}

namespace {

struct Unit {
    std::string name;
    const char* load = "not-found";
    const char* state = "inactive";
    std::string error = "";  // what starting and stopping it gives, behind "org.freedesktop."
    bool heedsStop = true;
    bool isStopping = false;
};
const std::string kDenied = "DBus.Error.InteractiveAuthorizationRequired";
std::vector<Unit> units = {
    {"QuorelServiceTest.service", "loaded"},
    {"QuorelServiceOff.service", "masked", "inactive", "systemd1.UnitMasked"},
    {"theirs.service", "loaded", "failed", kDenied},
    {"mine.service", "loaded", "active", kDenied},
    {"needy.service", "loaded", "inactive", "systemd1.NoSuchUnit"},
    {"bad.service", "loaded", "inactive", "DBus.Error.Odd"},
    {"bound.target", "loaded", "active", "systemd1.OnlyByDependency"},
    {"late.service", "loaded", "reloading", "systemd1.ShuttingDown"},
    {"deaf.service", "loaded", "active", "", false},
    {"new.service", "loaded", "activating"},
    {"old.service", "loaded", "deactivating"},
    {"odd.service", "loaded", "maintenance"}};

const std::string kUnits = "/org/freedesktop/systemd1/unit/";
constexpr char kJob[] = "/org/freedesktop/systemd1/job/7";

int refuse(sd_bus_message* message, const std::string& error) {
    return sd_bus_reply_method_errorf(message, ("org.freedesktop." + error).c_str(), "No");
}

size_t unitNamed(const std::string& name) {
    size_t at = 0;
    while (at < units.size() && units[at].name != name) ++at;
    if (at == units.size()) units.push_back({name});
    return at;
}

int getProperty(sd_bus_message* message, Unit* unit, const std::string& name) {
    if (name == "LoadState") return sd_bus_reply_method_return(message, "v", "s", unit->load);
    const char* job = unit->isStopping ? kJob : "/";
    if (name == "Job")
        return sd_bus_reply_method_return(message, "v", "(uo)", unit->isStopping, job);
    // The first look after a request may still see the old state, as with the real one.
    const char* state = unit->state;
    if (std::exchange(unit->isStopping, false)) unit->state = "inactive";
    return sd_bus_reply_method_return(message, "v", "s", state);
}

int answer(sd_bus_message* message, void*, void*) {
    const char* text = sd_bus_message_get_member(message);
    const std::string member = text == nullptr ? "" : text;
    if (member == "Get") {
        sd_bus_message_read(message, "ss", nullptr, &text);
        const std::string path = sd_bus_message_get_path(message);
        return getProperty(message, &units[std::stoul(path.substr(kUnits.size()))], text);
    }
    if (!member.ends_with("Unit")) return 0;
    sd_bus_message_read(message, "s", &text);
    const std::string name = text;
    if (name[0] == '.' || name.find('/') != name.npos)
        return refuse(message, "DBus.Error.InvalidArgs");
    const size_t at = unitNamed(name);
    Unit& unit = units[at];
    if (member == "LoadUnit")
        return sd_bus_reply_method_return(message, "o", (kUnits + std::to_string(at)).c_str());
    if (!unit.error.empty()) return refuse(message, unit.error);
    if (member == "StartUnit") unit.state = "active";
    unit.isStopping = member == "StopUnit" && unit.heedsStop;
    return sd_bus_reply_method_return(message, "o", kJob);
}

FILE* daemonOutput = nullptr;
int daemonId = 0;
std::atomic<bool> ends = false;
std::thread systemd;

void serve(sd_bus* bus) {
    while (!ends)
        if (sd_bus_process(bus, nullptr) == 0) sd_bus_wait(bus, 20000);
    sd_bus_flush_close_unref(bus);
}

}  // namespace

ServiceWorld::ServiceWorld() {
    daemonOutput = popen(
        "exec setpriv --pdeathsig TERM dbus-daemon --session --nofork --nopidfile"
        " --address=unix:tmpdir=. --print-address=1 --print-pid=1 2>/dev/null",
        "r");
    char address[256] = "";
    EXPECT_EQ(2, fscanf(daemonOutput, "%255s %d", address, &daemonId));
    setenv("DBUS_SYSTEM_BUS_ADDRESS", address, 1);
    sd_bus* bus = nullptr;
    EXPECT_GE(sd_bus_open_system(&bus), 0);
    EXPECT_GE(sd_bus_add_filter(bus, nullptr, answer, nullptr), 0);
    EXPECT_GE(sd_bus_request_name(bus, "org.freedesktop.systemd1", 0), 0);
    systemd = std::thread(serve, bus);
}

ServiceWorld::~ServiceWorld() {
    ends = true;
    systemd.join();
    if (daemonId > 0) kill(daemonId, SIGTERM);
    pclose(daemonOutput);
}

const char ServiceWorld::kCases[] =
    "\xff start -> 0Invalid service name \"\xff\"\n"
    R"(theirs getstate -> 1stopped
theirs start -> 0Access denied when attempting to start service "theirs"
mine stop -> 0Access denied when attempting to stop service "mine"
needy start
  -> 0A service "needy" is depending on does not exist (or has been marked for deletion)
bad start -> 0Failed to start service "bad". (Error code=1359)
bound.target stop -> 0The service "bound.target" is in a state where it cannot be stopped
late getstate -> 1running
late stop -> 0The system is shutting down
deaf stop -> 0Failed to signal stop for service "deaf"
new getstate -> 1start pending
new start -> 0Service "new" is already running
old stop -> 1old
odd getstate -> 1error
setenv "DBUS_SYSTEM_BUS_ADDRESS" "unix:path=/nowhere"; service "mine" "start" s; OK; show ( ok . s )
  -> 0Unable to open service manager. (Error code=2)
)";
