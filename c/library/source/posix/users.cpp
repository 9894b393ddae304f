#include <grp.h>
#include <pwd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "platform/machine.h"
#include "posix/TextFile.h"
#include "posix/UserName.h"

namespace {

// The group and user walks of the C library share one place each; these walks
// happen on the thread that runs the script.
struct GroupWalk {
    GroupWalk() { setgrent(); }
    ~GroupWalk() { endgrent(); }
};
struct UserWalk {
    UserWalk() { setpwent(); }
    ~UserWalk() { endpwent(); }
};

void addOnce(std::vector<std::string>* names, const char* name) {
    if (std::find(names->begin(), names->end(), name) == names->end()) names->push_back(name);
}

}  // namespace

bool osUserName(std::string* name) {
    return posixUserName(geteuid(), name);
}

bool posixUserName(uid_t wanted, std::string* name) {
    // The local list answers for nearly everyone, in a fraction of the time that
    // the C library's switch takes to load.
    std::string id = std::to_string(wanted);
    TextFile file("/etc/passwd");
    std::string_view line;
    while (file.nextLine(&line)) {
        std::string_view user = TextFile::cutField(&line, ':');
        TextFile::cutField(&line, ':');
        if (user.empty() || TextFile::cutField(&line, ':') != id) continue;
        *name = user;
        return true;
    }
    const passwd* entry = getpwuid(wanted);
    if (entry == nullptr) return false;
    *name = entry->pw_name;
    return true;
}

bool osGroups(std::vector<std::string>* groups) {
    GroupWalk walk;
    groups->clear();
    while (const group* entry = getgrent()) addOnce(groups, entry->gr_name);
    return true;
}

bool osGroupMembers(std::string_view groupName, std::vector<std::string>* members) {
    const group* entry = getgrnam(std::string(groupName).c_str());
    if (entry == nullptr) return false;
    members->clear();
    for (char** member = entry->gr_mem; *member != nullptr; ++member) addOnce(members, *member);
    gid_t id = entry->gr_gid;
    UserWalk walk;
    while (const passwd* user = getpwent()) {
        if (user->pw_gid == id) addOnce(members, user->pw_name);
    }
    return true;
}
