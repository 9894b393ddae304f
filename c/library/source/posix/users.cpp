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

// An end and a failure look alike, but for the error number; that of an end can
// be one that nothing is wrong with.
bool lookFailed(int error) {
    return error == EIO || error == EINTR || error == EMFILE || error == ENFILE || error == ENOMEM;
}

// Calls `each` for every group. False when the groups cannot be read.
template <typename Each>
bool walkGroups(Each each) {
    GroupWalk walk;
    for (;;) {
        errno = 0;
        const group* entry = getgrent();
        if (entry == nullptr) return !lookFailed(errno);
        each(*entry);
    }
}

bool lists(const group& entry, std::string_view user) {
    for (char** member = entry.gr_mem; *member != nullptr; ++member)
        if (user == *member) return true;
    return false;
}

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
    groups->clear();
    return walkGroups([&](const group& entry) { addOnce(groups, entry.gr_name); });
}

bool osUserGroups(std::string_view user, std::vector<std::string>* groups) {
    errno = 0;
    const passwd* account = getpwnam(std::string(user).c_str());
    const bool hasPrimary = account != nullptr;
    if (!hasPrimary && lookFailed(errno)) return false;
    const gid_t primary = hasPrimary ? account->pw_gid : 0;
    groups->clear();
    return walkGroups([&](const group& entry) {
        if ((hasPrimary && entry.gr_gid == primary) || lists(entry, user))
            addOnce(groups, entry.gr_name);
    });
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
