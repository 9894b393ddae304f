#include "posix/RegistryStore.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstdlib>

namespace {

constexpr char kMachineFile[] = "/var/lib/quorel/registry.db";
constexpr char kUserFile[] = "/quorel/registry.db";

// Another process holds the file for milliseconds; longer means that it hangs.
constexpr int kBusyMilliseconds = 10000;

// The file's mark, "qreg"; the second place is the text of the tables.
constexpr int64_t kMark = 0x71726567;

constexpr char kTables[] =
    "PRAGMA application_id = 0x71726567;"
    "CREATE TABLE keys (id INTEGER PRIMARY KEY, parent INTEGER NOT NULL,"
    " name TEXT NOT NULL COLLATE NOCASE, UNIQUE (parent, name));"
    "CREATE TABLE entries (key INTEGER NOT NULL, name TEXT NOT NULL COLLATE NOCASE,"
    " type INTEGER NOT NULL, data BLOB NOT NULL, PRIMARY KEY (key, name)) WITHOUT ROWID;";

struct RootName {
    uint32_t root;
    const char* name;
};
constexpr RootName kRootNames[] = {
    {kOsClassesRoot, "HKEY_CLASSES_ROOT"},         {kOsCurrentUser, "HKEY_CURRENT_USER"},
    {kOsLocalMachine, "HKEY_LOCAL_MACHINE"},       {kOsUsers, "HKEY_USERS"},
    {kOsPerformanceData, "HKEY_PERFORMANCE_DATA"}, {kOsCurrentConfig, "HKEY_CURRENT_CONFIG"},
};

std::string_view rootName(uint32_t root) {
    for (const RootName& row : kRootNames) {
        if (row.root == root) return row.name;
    }
    return {};
}

bool environment(const char* name, std::string* value) {
    const char* text = getenv(name);
    if (text == nullptr || *text == '\0') return false;
    *value = text;
    return true;
}

// Makes the directories of a file's path; a failure shows when the file is opened.
void makeDirectories(const std::string& path) {
    for (size_t end = path.find('/', 1); end != std::string::npos; end = path.find('/', end + 1)) {
        mkdir(path.substr(0, end).c_str(), 0755);
    }
}

// Takes the next component off a key path; doubled and closing separators do not count.
std::string_view nextComponent(std::string_view* key) {
    while (!key->empty() && key->front() == '\\') key->remove_prefix(1);
    std::string_view component = key->substr(0, key->find('\\'));
    key->remove_prefix(component.size());
    return component;
}

}  // namespace

bool osRegistryFile(uint32_t root, std::string* path) {
    path->clear();
    std::string place;
    if (environment("QUOREL_REGISTRY", &place))
        *path = place;
    else if (root != kOsCurrentUser)
        *path = kMachineFile;
    else if (environment("XDG_DATA_HOME", &place) && place[0] == '/')
        *path = place + kUserFile;
    else if (environment("HOME", &place))
        *path = place + "/.local/share" + kUserFile;
    return true;
}

RegistryStatement& RegistryStatement::bind(int place, int64_t number) {
    sqlite3_bind_int64(statement_, place, number);
    return *this;
}

RegistryStatement& RegistryStatement::bind(int place, std::string_view text) {
    const char* bytes = text.empty() ? "" : text.data();
    sqlite3_bind_text64(statement_, place, bytes, text.size(), SQLITE_STATIC, SQLITE_UTF8);
    return *this;
}

RegistryStatement& RegistryStatement::bindBytes(int place, std::string_view bytes) {
    const char* data = bytes.empty() ? "" : bytes.data();
    sqlite3_bind_blob64(statement_, place, data, bytes.size(), SQLITE_STATIC);
    return *this;
}

std::string RegistryStatement::bytes(int column) {
    const void* data = sqlite3_column_blob(statement_, column);
    int size = sqlite3_column_bytes(statement_, column);
    return data == nullptr ? std::string()
                           : std::string(static_cast<const char*>(data), static_cast<size_t>(size));
}

bool RegistryStore::open(const std::string& path, int flags) {
    close();
    int status = sqlite3_open_v2(path.c_str(), &database_, flags | SQLITE_OPEN_NOMUTEX, nullptr);
    if (status != SQLITE_OK) return false;
    sqlite3_extended_result_codes(database_, 1);
    sqlite3_busy_timeout(database_, kBusyMilliseconds);
    path_ = path;
    return true;
}

void RegistryStore::close() {
    sqlite3_close(database_);
    database_ = nullptr;
    path_.clear();
}

OsRegistryResult RegistryStore::openForReading(const std::string& path) {
    struct stat status;
    if (path.empty() || stat(path.c_str(), &status) != 0) {
        close();
        bool absent = path.empty() || errno == ENOENT || errno == ENOTDIR;
        return absent ? OsRegistryResult::NotFound : OsRegistryResult::NoAccess;
    }
    // Opening it would wait for another end that nobody has.
    if (S_ISFIFO(status.st_mode)) return OsRegistryResult::Damaged;
    bool same = database_ != nullptr && path == path_ && status.st_dev == device_ &&
                status.st_ino == inode_ && status.st_mode == mode_;
    if (same) return OsRegistryResult::Done;
    if (!open(path, SQLITE_OPEN_READONLY)) {
        OsRegistryResult result = failure();
        close();
        return result;
    }
    device_ = status.st_dev;
    inode_ = status.st_ino;
    mode_ = status.st_mode;
    return OsRegistryResult::Done;
}

OsRegistryResult RegistryStore::openForWriting(const std::string& path) {
    struct stat status;
    if (path.empty()) return OsRegistryResult::Failed;
    if (stat(path.c_str(), &status) == 0 && S_ISFIFO(status.st_mode))
        return OsRegistryResult::Damaged;
    makeDirectories(path);
    if (!open(path, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE)) return OsRegistryResult::Failed;
    OsRegistryResult result = recognise();
    if (result == OsRegistryResult::Damaged) return result;
    if (result != OsRegistryResult::Done && result != OsRegistryResult::NotFound)
        return OsRegistryResult::Failed;
    // A change that has been reported as done survives the loss of power.
    bool ready = run("PRAGMA journal_mode = DELETE") && run("PRAGMA synchronous = FULL");
    return ready ? OsRegistryResult::Done : OsRegistryResult::Failed;
}

bool RegistryStore::run(const char* text) {
    return sqlite3_exec(database_, text, nullptr, nullptr, nullptr) == SQLITE_OK;
}

OsRegistryResult RegistryStore::recognise() {
    RegistryStatement mark(database_, "PRAGMA application_id");
    if (mark.step() != SQLITE_ROW) return failure();
    if (mark.number(0) == kMark) return OsRegistryResult::Done;
    RegistryStatement content(database_, "SELECT count(*) FROM sqlite_master");
    if (content.step() != SQLITE_ROW) return failure();
    bool empty = mark.number(0) == 0 && content.number(0) == 0;
    return empty ? OsRegistryResult::NotFound : OsRegistryResult::Damaged;
}

bool RegistryStore::makeTables() {
    return run(kTables);
}

OsRegistryResult RegistryStore::failure() const {
    if (database_ == nullptr) return OsRegistryResult::NoMemory;
    switch (sqlite3_errcode(database_) & 0xff) {
        case SQLITE_NOMEM:
            return OsRegistryResult::NoMemory;
        case SQLITE_CORRUPT:
        case SQLITE_NOTADB:
        case SQLITE_ERROR:  // a statement does not fit the tables
            return OsRegistryResult::Damaged;
        case SQLITE_PERM:
        case SQLITE_AUTH:
        case SQLITE_READONLY:
            return OsRegistryResult::NoAccess;
        case SQLITE_CANTOPEN: {
            int error = sqlite3_system_errno(database_);
            bool denied = error == EACCES || error == EPERM;
            return denied ? OsRegistryResult::NoAccess : OsRegistryResult::Failed;
        }
        default:
            return OsRegistryResult::Failed;
    }
}

bool RegistryStore::needsRecovery() const {
    return database_ != nullptr && sqlite3_extended_errcode(database_) == SQLITE_READONLY_ROLLBACK;
}

OsRegistryResult RegistryStore::findKey(uint32_t root, std::string_view key, int64_t* id) {
    RegistryStatement find(database_, "SELECT id FROM keys WHERE parent = ? AND name = ?");
    *id = 0;
    std::string_view component = rootName(root);
    if (component.empty()) return OsRegistryResult::NotFound;
    while (!component.empty()) {
        find.rewind();
        int status = find.bind(1, *id).bind(2, component).step();
        if (status == SQLITE_DONE) return OsRegistryResult::NotFound;
        if (status != SQLITE_ROW) return failure();
        *id = find.number(0);
        component = nextComponent(&key);
    }
    return OsRegistryResult::Done;
}

OsRegistryResult RegistryStore::makeKey(uint32_t root, std::string_view key, int64_t* id) {
    if (rootName(root).empty()) return OsRegistryResult::Failed;
    RegistryStatement make(database_, "INSERT OR IGNORE INTO keys (parent, name) VALUES (?, ?)");
    RegistryStatement find(database_, "SELECT id FROM keys WHERE parent = ? AND name = ?");
    *id = 0;
    std::string_view component = rootName(root);
    while (!component.empty()) {
        make.rewind();
        find.rewind();
        if (make.bind(1, *id).bind(2, component).step() != SQLITE_DONE) {
            return OsRegistryResult::Failed;
        }
        if (find.bind(1, *id).bind(2, component).step() != SQLITE_ROW) {
            return OsRegistryResult::Failed;
        }
        *id = find.number(0);
        component = nextComponent(&key);
    }
    return OsRegistryResult::Done;
}
