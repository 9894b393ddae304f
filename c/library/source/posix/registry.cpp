#include "platform/registry.h"

#include <mutex>

#include "posix/RegistryStore.h"

namespace {

// A connection for reading stays open: the settings are read one by one, and
// each opening would read the tables' definitions again. No lock stays with it.
struct Readers {
    std::mutex lock;
    RegistryStore machine;
    RegistryStore user;
};

Readers& readers() {
    static Readers all;
    return all;
}

std::string fileOf(uint32_t root) {
    std::string path;
    osRegistryFile(root, &path);
    return path;
}

// Opens a writer's connection for a moment, which undoes what a killed writer left.
bool recover(const std::string& path) {
    RegistryStore store;
    return store.openForWriting(path) == OsRegistryResult::Done &&
           store.run("SELECT count(*) FROM keys");
}

// Runs `read` on the root's file within one view. `read` takes the store and
// gives a result.
template <typename Read>
OsRegistryResult reading(uint32_t root, const Read& read) {
    std::string path = fileOf(root);
    std::lock_guard<std::mutex> guard(readers().lock);
    RegistryStore& store = root == kOsCurrentUser ? readers().user : readers().machine;
    OsRegistryResult result = OsRegistryResult::Failed;
    for (int attempt = 0; attempt < 2; ++attempt) {
        result = store.openForReading(path);
        if (result != OsRegistryResult::Done) return result;
        RegistryTransaction view(&store, false);
        result = view ? store.recognise() : store.failure();
        // A file that another process has made but not filled yet is an empty registry.
        if (result == OsRegistryResult::NotFound) return result;
        if (result == OsRegistryResult::Done) return read(&store);
        if (!store.needsRecovery() || !recover(path)) break;
    }
    store.close();
    return result;
}

// Runs `write` on the root's file as one change.
template <typename Write>
OsRegistryResult writing(uint32_t root, const Write& write) {
    RegistryStore store;
    OsRegistryResult result = store.openForWriting(fileOf(root));
    if (result != OsRegistryResult::Done) return result;
    RegistryTransaction change(&store, true);
    if (!change) return OsRegistryResult::Failed;
    // Another process may have filled it meanwhile.
    result = store.recognise();
    bool ready = result == OsRegistryResult::Done ||
                 (result == OsRegistryResult::NotFound && store.makeTables());
    if (!ready) return OsRegistryResult::Failed;
    result = write(&store);
    if (result == OsRegistryResult::Done && change.commit()) return result;
    if (result == OsRegistryResult::NotFound) return result;
    return store.failure() == OsRegistryResult::Damaged ? OsRegistryResult::Damaged
                                                        : OsRegistryResult::Failed;
}

// A path of the registry does not begin with its separator.
bool isBadKey(std::string_view key) {
    return !key.empty() && key.front() == '\\';
}

// Roots are there, and can be empty, whatever the file holds.
bool isRoot(std::string_view key) {
    return key.find_first_not_of('\\') == std::string_view::npos;
}

bool fileIsMissing(uint32_t root) {
    std::lock_guard<std::mutex> guard(readers().lock);
    RegistryStore probe;
    return probe.openForReading(fileOf(root)) == OsRegistryResult::NotFound;
}

OsRegistryResult deleteTree(RegistryStore* store, int64_t id) {
    constexpr const char* kDeletions[] = {
        "WITH RECURSIVE below (id) AS (SELECT ? UNION ALL SELECT keys.id FROM keys JOIN below"
        " ON keys.parent = below.id) DELETE FROM entries WHERE key IN (SELECT id FROM below)",
        "WITH RECURSIVE below (id) AS (SELECT ? UNION ALL SELECT keys.id FROM keys JOIN below"
        " ON keys.parent = below.id) DELETE FROM keys WHERE id IN (SELECT id FROM below)",
    };
    for (const char* text : kDeletions) {
        RegistryStatement statement(store->database(), text);
        if (statement.bind(1, id).step() != SQLITE_DONE) return OsRegistryResult::Failed;
    }
    return OsRegistryResult::Done;
}

}  // namespace

OsRegistryResult osRegistryGet(uint32_t root, std::string_view key, std::string_view value,
                               uint32_t* type, std::string* data) {
    if (isBadKey(key)) return OsRegistryResult::Failed;
    return reading(root, [&](RegistryStore* store) {
        int64_t id;
        OsRegistryResult result = store->findKey(root, key, &id);
        if (result != OsRegistryResult::Done) return result;
        RegistryStatement find(store->database(),
                               "SELECT type, data FROM entries WHERE key = ? AND name = ?");
        int status = find.bind(1, id).bind(2, value).step();
        if (status == SQLITE_DONE) return OsRegistryResult::NotFound;
        if (status != SQLITE_ROW) return store->failure();
        *type = static_cast<uint32_t>(find.number(0));
        *data = find.bytes(1);
        return OsRegistryResult::Done;
    });
}

OsRegistryResult osRegistrySet(uint32_t root, std::string_view key, std::string_view value,
                               uint32_t type, std::string_view data) {
    if (isBadKey(key)) return OsRegistryResult::Failed;
    return writing(root, [&](RegistryStore* store) {
        int64_t id;
        OsRegistryResult result = store->makeKey(root, key, &id);
        if (result != OsRegistryResult::Done) return result;
        // A value that is written again keeps the spelling of its name.
        RegistryStatement put(store->database(),
                              "INSERT INTO entries (key, name, type, data) VALUES (?, ?, ?, ?)"
                              " ON CONFLICT (key, name) DO UPDATE SET type = excluded.type,"
                              " data = excluded.data");
        put.bind(1, id).bind(2, value).bind(3, static_cast<int64_t>(type)).bindBytes(4, data);
        return put.step() == SQLITE_DONE ? OsRegistryResult::Done : OsRegistryResult::Failed;
    });
}

OsRegistryResult osRegistryDeleteValue(uint32_t root, std::string_view key,
                                       std::string_view value) {
    if (isBadKey(key)) return OsRegistryResult::Failed;
    const auto missing = isRoot(key) ? OsRegistryResult::Failed : OsRegistryResult::NotFound;
    if (fileIsMissing(root)) return missing;
    return writing(root, [&](RegistryStore* store) {
        int64_t id;
        OsRegistryResult result = store->findKey(root, key, &id);
        if (result == OsRegistryResult::NotFound) return missing;
        if (result != OsRegistryResult::Done) return result;
        RegistryStatement remove(store->database(),
                                 "DELETE FROM entries WHERE key = ? AND name = ?");
        bool removed = remove.bind(1, id).bind(2, value).step() == SQLITE_DONE &&
                       sqlite3_changes(store->database()) == 1;
        return removed ? OsRegistryResult::Done : OsRegistryResult::Failed;
    });
}

OsRegistryResult osRegistrySubKeys(uint32_t root, std::string_view key,
                                   std::vector<std::string>* names) {
    if (isBadKey(key)) return OsRegistryResult::Failed;
    std::vector<std::string> found;
    OsRegistryResult result = reading(root, [&](RegistryStore* store) {
        int64_t id;
        const OsRegistryResult place = store->findKey(root, key, &id);
        if (place != OsRegistryResult::Done) return place;
        RegistryStatement list(store->database(),
                               "SELECT name FROM keys WHERE parent = ? ORDER BY name");
        list.bind(1, id);
        int status = list.step();
        for (; status == SQLITE_ROW; status = list.step()) found.push_back(list.bytes(0));
        return status == SQLITE_DONE ? OsRegistryResult::Done : store->failure();
    });
    if (result == OsRegistryResult::NotFound && isRoot(key)) result = OsRegistryResult::Done;
    if (result == OsRegistryResult::Done) names->swap(found);
    return result;
}

OsRegistryResult osRegistryDeleteKey(uint32_t root, std::string_view key) {
    // A root is not a key that could go.
    if (isRoot(key) || isBadKey(key)) return OsRegistryResult::Failed;
    int64_t id;
    // What may not be read is told apart from what may not be written.
    OsRegistryResult found =
        reading(root, [&](RegistryStore* store) { return store->findKey(root, key, &id); });
    if (found != OsRegistryResult::Done) return found;
    return writing(root, [&](RegistryStore* store) {
        OsRegistryResult result = store->findKey(root, key, &id);
        return result == OsRegistryResult::Done ? deleteTree(store, id) : result;
    });
}
