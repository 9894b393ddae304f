#include "ScriptEngine3/BuiltInVariables.h"

#include "ScriptEngine3/EngineVariables.h"
#include "paths/ConfiguredDirectories.h"
#include "platform/clock.h"
#include "platform/machine.h"
#include "strings/StringFormat.h"
#include "strings/StringNumbers.h"
#include "system/SystemInfo.h"

namespace {

// The text of a variable in a new String; null leaves the variable undefined.
using ValueSource = String* (*)();

struct BuiltInVariable {
    const char* name;
    bool quote;
    ValueSource value;
    // Where the engine keeps the variable's id; null for most.
    uint32_t ScriptEngine::*id = nullptr;
};

String* zero() {
    return stringFromChar('0');
}

String* one() {
    return stringFromChar('1');
}

String* lineFeed() {
    return stringFromChar('\n');
}

String* platformName() {
    return stringFromText(osPlatformName());
}

String* registryRoot() {
    return stringFromText(sysIsWow64() ? "HKEY_LOCAL_MACHINE\\SOFTWARE\\Wow6432Node\\Quorel"
                                       : "HKEY_LOCAL_MACHINE\\SOFTWARE\\Quorel");
}

String* systemBits() {
    return stringFromUInt32(sysGetOsBits());
}

String* localGroup() {
    return stringClone(sysGetLocalGroup());
}

String* localSubsite() {
    return stringClone(sysGetLocalSubsite());
}

String* localSite() {
    return stringClone(sysGetLocalSite());
}

String* roleName() {
    return stringFromText(sysRoleName(sysGetRole()));
}

String* routerHost() {
    String* host = stringNewEmpty();
    sysGetRouter(host, nullptr);
    return host;
}

String* routerPort() {
    uint32_t port = 0;
    sysGetRouter(nullptr, &port);
    return stringFromUInt32(port);
}

String* folderNamed(const char* name) {
    Owned<String> text(stringFromText(name));
    return sysGetSpecialFolder(text.get());
}

String* systemFolder() {
    return folderNamed("system");
}

String* programsFolder() {
    return folderNamed("programs");
}

template <ConfiguredDirectory directory>
String* configured() {
    return pathConfiguredDirectory(directory);
}

// Minutes from UTC to local time by the clocks' readings alone. The date is not
// looked at, so a zone west of Greenwich comes out near 1440.
String* minutesFromUtc() {
    const int64_t now = osClockUtc() / 1000;
    OsTimeOfDay utc{};
    OsTimeOfDay local{};
    if (!osTimeOfDayUtc(now, &utc) || !osTimeOfDayLocal(now, &local)) return nullptr;
    const int hours = local.hour - utc.hour + (local.hour < utc.hour ? 24 : 0);
    const int seconds =
        hours * 3600 + (local.minute - utc.minute) * 60 + (local.second - utc.second);
    return stringFormatNew("%u", static_cast<uint32_t>(seconds / 60));
}

constexpr BuiltInVariable kBuiltInVariables[] = {
    {"true", false, one},
    {"false", false, zero},
    {"endl", true, lineFeed},
    {"regkey", true, registryRoot},
    {"localhost", true, sysGetComputerName},
    {"localos", true, sysGetOsName},
    {"localosbits", false, systemBits},
    {"localosversion", false, sysGetOsVersionText},
    {"localarch", true, sysGetArch},
    {"localdomain", true, sysGetDomain},
    {"localoslang", true, sysGetLanguage},
    {"user", true, sysGetUser},
    {"platform", true, platformName},
    {"systemdir", true, systemFolder},
    {"programsdir", true, programsFolder},
    {"opsys", true, platformName},
    {"installdir", true, configured<kInstallDirectory>},
    {"bindir", true, configured<kBinDirectory>},
    {"scriptsdir", true, configured<kScriptsDirectory>},
    {"configdir", true, configured<kConfigDirectory>},
    {"debugdir", true, configured<kDebugDirectory>},
    {"workdir", true, configured<kWorkDirectory>},
    {"tempdir", true, configured<kTempDirectory>},
    {"localplainhost", true, sysGetPlainHost},
    {"localgroup", true, localGroup},
    {"localsubsite", true, localSubsite},
    {"localsite", true, localSite},
    {"localrouterhost", true, routerHost},
    {"localrouterport", false, routerPort},
    {"timezone", false, minutesFromUtc},
    {"role", true, roleName},
    // ORDER result variables
    {"error", false, zero, &ScriptEngine::errorVar},
    {"success", false, zero, &ScriptEngine::successVar},
    {"invalid_args", false, zero, &ScriptEngine::invalidArgsVar},
    {"out_of_memory", false, zero, &ScriptEngine::outOfMemoryVar},
};

}  // namespace

bool scriptEngineAddBuiltInVariables(ScriptEngine* engine) {
    if (engine == nullptr) return false;
    for (const BuiltInVariable& row : kBuiltInVariables) {
        const uint32_t id = scriptEngineAddDefaultVar(engine, row.name, row.value(), row.quote);
        if (id == kNoVariable) return false;
        if (row.id != nullptr) engine->*row.id = id;
    }
    return true;
}
