#include <string>
#include <vector>

#include "containers/Vector.h"
#include "platform/machine.h"
#include "strings/String.h"
#include "system/SystemInfo.h"

namespace {

// A member may be given with its domain in front.
std::string withoutDomain(const std::string& member) {
    return member.substr(member.find('\\') + 1);
}

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

bool isMember(std::string_view group, std::string_view user) {
    std::vector<std::string> members;
    if (!osGroupMembers(group, &members)) return false;
    for (const std::string& member : members) {
        if (withoutDomain(member) == user) return true;
    }
    return false;
}

}  // namespace

Vector* sysGetGroups() {
    std::vector<std::string> groups;
    return osGroups(&groups) ? vectorOfNames(groups) : nullptr;
}

Vector* sysGetGroupMembers(const String* group) {
    std::vector<std::string> members;
    if (group == nullptr || !osGroupMembers(stringView(group), &members)) return nullptr;
    for (std::string& member : members) member = withoutDomain(member);
    return vectorOfNames(members);
}

Vector* sysGetUserGroups(const String* user) {
    std::vector<std::string> groups;
    if (user == nullptr || !osGroups(&groups)) return nullptr;
    std::vector<std::string> found;
    for (const std::string& group : groups) {
        if (isMember(group, stringView(user))) found.push_back(group);
    }
    return vectorOfNames(found);
}

void sysDestroyNames(Vector** names) {
    vectorDestroyWith(names, stringDestroyElement);
}
