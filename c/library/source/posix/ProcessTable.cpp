#include "posix/ProcessTable.h"

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <climits>
#include <new>

#include "platform/machine.h"
#include "platform/processes.h"
#include "posix/TextFile.h"
#include "posix/UserName.h"

// The process's folder stays open, so that all that is read belongs to one
// process, also when its id is another's by then.
struct OsProcessView {
    int folder;
};

namespace {

std::string tablePath(uint32_t id) {
    return "/proc/" + std::to_string(id);
}

// What the system puts behind the path of a program whose file is gone.
constexpr std::string_view kDeleted = " (deleted)";

// The state letter stands behind the name, which is in brackets and can hold any byte.
bool hasEnded(uint32_t id) {
    TextFile file((tablePath(id) + "/stat").c_str());
    std::string text;
    for (std::string_view line; file.nextLine(&line);) text += line;
    const size_t bracket = text.rfind(')');
    if (bracket == std::string::npos || bracket + 2 >= text.size()) return true;
    const char state = text[bracket + 2];
    return state == 'Z' || state == 'X';
}

// The second number of the line "Uid:" is the user in whose name it acts.
bool effectiveUser(const OsProcessView* view, uid_t* user) {
    char text[4096];
    const int file = openat(view->folder, "status", O_RDONLY | O_CLOEXEC);
    if (file < 0) return false;
    const ssize_t got = read(file, text, sizeof text);
    close(file);
    std::string_view rest(text, got < 0 ? 0 : static_cast<size_t>(got));
    const size_t at = rest.find("\nUid:");
    if (at == rest.npos) return false;
    rest.remove_prefix(at + 5);
    TextFile::cutWord(&rest);
    const std::string_view number = TextFile::cutWord(&rest);
    return std::from_chars(number.data(), number.data() + number.size(), *user).ec == std::errc();
}

}  // namespace

bool posixProcessRuns(pid_t id) {
    return !hasEnded(static_cast<uint32_t>(id));
}

uint32_t osOwnProcessId() {
    return static_cast<uint32_t>(getpid());
}

int osProcessIds(std::vector<uint32_t>* ids) {
    ids->clear();
    DIR* table = opendir("/proc");
    if (table == nullptr) return errno;
    while (const dirent* entry = readdir(table)) {
        const std::string_view name = entry->d_name;
        uint32_t id = 0;
        const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), id);
        if (error == std::errc() && end == name.data() + name.size() && !hasEnded(id))
            ids->push_back(id);
    }
    closedir(table);
    return 0;
}

int osProcessViewOpen(uint32_t id, OsProcessView** view) {
    *view = nullptr;
    // The table has folders for threads too, which it does not list.
    if (id == 0 || id > INT_MAX || hasEnded(id)) return ESRCH;
    const int folder = open(tablePath(id).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder < 0) return errno == ENOENT ? ESRCH : errno;
    *view = new (std::nothrow) OsProcessView{folder};
    if (*view == nullptr) close(folder);
    return *view == nullptr ? ENOMEM : 0;
}

void osProcessViewClose(OsProcessView** view) {
    if (view == nullptr || *view == nullptr) return;
    close((*view)->folder);
    delete *view;
    *view = nullptr;
}

int osProcessViewProgram(OsProcessView* view, std::string* path, bool* mayCome) {
    *mayCome = false;
    char target[PATH_MAX];
    const ssize_t length = readlinkat(view->folder, "exe", target, sizeof target);
    if (length < 0) return errno;
    path->assign(target, static_cast<size_t>(length));
    if (path->ends_with(kDeleted) && access(path->c_str(), F_OK) != 0)
        path->resize(path->size() - kDeleted.size());
    return 0;
}

bool osProcessViewUser(OsProcessView* view, std::string* domain, std::string* name) {
    uid_t user = 0;
    return effectiveUser(view, &user) && posixUserName(user, name) && osComputerName(domain);
}
