#include <string>
#include <vector>

#include "containers/Vector.h"
#include "platform/machine.h"
#include "strings/String.h"
#include "system/SystemInfo.h"

namespace {

bool addName(Vector* names, std::string_view name) {
    Owned<String> text(stringFromView(name));
    if (!text || !vectorAppend(names, text.get())) return false;
    text.release();
    return true;
}

// All of the names in a new vector, or null when memory runs out.
Vector* vectorOfNames(const std::vector<std::string>& names) {
    Vector* result = vectorCreate();
    bool done = result != nullptr;
    for (const std::string& name : names) done = done && addName(result, name);
    if (!done) sysDestroyNames(&result);
    return result;
}

}  // namespace

Vector* sysGetGroups() {
    std::vector<std::string> groups;
    return osGroups(&groups) ? vectorOfNames(groups) : nullptr;
}

Vector* sysGetGroupMembers(const String* group) {
    std::vector<std::string> members;
    if (group == nullptr || !osGroupMembers(stringView(group), &members)) return nullptr;
    return vectorOfNames(members);
}

Vector* sysGetUserGroups(const String* user) {
    std::vector<std::string> groups;
    if (user == nullptr || !osUserGroups(stringView(user), &groups)) return nullptr;
    return vectorOfNames(groups);
}

void sysDestroyNames(Vector** names) {
    vectorDestroyWith(names, stringDestroyElement);
}
