#include "registry/Registry.h"

#include <string>
#include <string_view>
#include <vector>

#include "containers/List.h"
#include "logger/Logger.h"
#include "platform/registry.h"
#include "strings/String.h"

namespace {

constexpr char kSettingsKey[] = "SOFTWARE\\Quorel\\version6\\";

struct RootName {
    const char* name;
    uint32_t root;
};
constexpr RootName kRootNames[] = {
    {"HKEY_CLASSES_ROOT", kOsClassesRoot},         {"HKEY_CURRENT_USER", kOsCurrentUser},
    {"HKEY_LOCAL_MACHINE", kOsLocalMachine},       {"HKEY_USERS", kOsUsers},
    {"HKEY_PERFORMANCE_DATA", kOsPerformanceData}, {"HKEY_CURRENT_CONFIG", kOsCurrentConfig},
};

void reportDamage(uint32_t root) {
    std::string path;
    osRegistryFile(root, &path);
    const Owned<Logger> logger(logCreate());
    logError(logger.get(), "The registry \"%S\" is damaged, or the file of another program", path);
}

RegResult readingResult(uint32_t root, OsRegistryResult result) {
    switch (result) {
        case OsRegistryResult::Done:
            return RegResult::Done;
        case OsRegistryResult::NotFound:
            return RegResult::NotFound;
        case OsRegistryResult::NoAccess:
            return RegResult::NoAccess;
        case OsRegistryResult::NoMemory:
            return RegResult::NoMemory;
        case OsRegistryResult::Damaged:
            reportDamage(root);
            break;
        case OsRegistryResult::Failed:
            break;
    }
    return RegResult::Failed;
}

RegResult writingResult(uint32_t root, OsRegistryResult result) {
    if (result == OsRegistryResult::Damaged) reportDamage(root);
    return result == OsRegistryResult::Done ? RegResult::Done : RegResult::Failed;
}

bool isText(uint32_t type) {
    return type == kOsRegString || type == kOsRegExpandString || type == kOsRegBinary ||
           type == kOsRegMultiString;
}

RegResult getText(uint32_t root, std::string_view key, std::string_view value, String* out,
                  bool* isExpandOut) {
    uint32_t type = 0;
    std::string data;
    OsRegistryResult read = osRegistryGet(root, key, value, &type, &data);
    if (read != OsRegistryResult::Done) return readingResult(root, read);
    if (!isText(type)) return RegResult::OtherType;
    size_t last = data.find_last_not_of('\0');
    std::string_view text = std::string_view(data).substr(0, last + 1);
    if (!stringSetView(out, text)) return RegResult::NoMemory;
    if (isExpandOut != nullptr) *isExpandOut = type == kOsRegExpandString;
    return RegResult::Done;
}

RegResult getNumber(uint32_t root, std::string_view key, std::string_view value, uint32_t* out) {
    uint32_t type = 0;
    std::string data;
    OsRegistryResult read = osRegistryGet(root, key, value, &type, &data);
    if (read != OsRegistryResult::Done) return readingResult(root, read);
    if (type != kOsRegNumber || data.size() != sizeof *out) return RegResult::OtherType;
    // The lowest byte stands first in the registry.
    *out = 0;
    for (size_t i = sizeof *out; i-- > 0;) *out = *out << 8 | static_cast<uint8_t>(data[i]);
    return RegResult::Done;
}

std::string settingsKey(const char* subKey) {
    return std::string(kSettingsKey) + (subKey == nullptr ? "" : subKey);
}

// A name of the registry ends at its first zero byte.
std::string_view nameOf(const String* text) {
    std::string_view view = stringView(text);
    return view.substr(0, view.find('\0'));
}

}  // namespace

bool regRootFromName(const String* name, uint32_t* root) {
    if (name == nullptr || root == nullptr) return false;
    for (const RootName& row : kRootNames) {
        if (stringView(name) != row.name) continue;
        *root = row.root;
        return true;
    }
    return false;
}

RegResult regGetString(uint32_t root, const String* key, const String* value, String* out,
                       bool* isExpandOut) {
    if (value == nullptr || out == nullptr) return RegResult::Arguments;
    return getText(root, nameOf(key), nameOf(value), out, isExpandOut);
}

RegResult regGetNumber(uint32_t root, const String* key, const String* value, uint32_t* out) {
    if (value == nullptr || out == nullptr) return RegResult::Arguments;
    return getNumber(root, nameOf(key), nameOf(value), out);
}

RegResult regSetValue(uint32_t root, const String* key, const String* value, uint32_t type,
                      const void* data, uint32_t size) {
    if (value == nullptr || (data == nullptr && size > 0)) return RegResult::Arguments;
    std::string_view bytes(static_cast<const char*>(data), size);
    return writingResult(root, osRegistrySet(root, nameOf(key), nameOf(value), type, bytes));
}

RegResult regSetString(uint32_t root, const String* key, const String* value,
                       const String* string) {
    if (string == nullptr) return RegResult::Arguments;
    return regSetValue(root, key, value, kOsRegString, stringText(string), string->length);
}

RegResult regSetNumber(uint32_t root, const String* key, const String* value, uint32_t number) {
    uint8_t bytes[sizeof number];
    for (uint8_t& byte : bytes) {
        byte = static_cast<uint8_t>(number);
        number >>= 8;
    }
    return regSetValue(root, key, value, kOsRegNumber, bytes, sizeof bytes);
}

RegResult regDeleteValue(uint32_t root, const String* key, const String* value) {
    if (value == nullptr) return RegResult::Arguments;
    OsRegistryResult result = osRegistryDeleteValue(root, nameOf(key), nameOf(value));
    return result == OsRegistryResult::NotFound ? RegResult::Done : writingResult(root, result);
}

RegResult regGetSubKeys(uint32_t root, const String* key, List* out) {
    if (out == nullptr) return RegResult::Arguments;
    std::vector<std::string> names;
    OsRegistryResult result = osRegistrySubKeys(root, nameOf(key), &names);
    if (result == OsRegistryResult::NoMemory) return RegResult::Failed;
    if (result != OsRegistryResult::Done) return readingResult(root, result);
    for (const std::string& name : names) {
        Owned<String> copy(stringFromView(name));
        if (!copy || !listPushBack(out, copy.get())) return RegResult::Failed;
        copy.release();
    }
    return RegResult::Done;
}

RegResult regDeleteKey(uint32_t root, const String* key) {
    return readingResult(root, osRegistryDeleteKey(root, nameOf(key)));
}

RegResult getConfigString(const char* subKey, const char* value, String* out) {
    if (value == nullptr || out == nullptr) return RegResult::Arguments;
    return getText(kOsLocalMachine, settingsKey(subKey), value, out, nullptr);
}

RegResult getConfigNumber(const char* subKey, const char* value, uint32_t* out) {
    if (value == nullptr || out == nullptr) return RegResult::Arguments;
    return getNumber(kOsLocalMachine, settingsKey(subKey), value, out);
}
