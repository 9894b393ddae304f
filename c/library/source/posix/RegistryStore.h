#pragma once

#include <sqlite3.h>
#include <sys/types.h>

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/registry.h"

// The registry's file. It has two tables: `keys` (id, parent, name), where the
// roots have the parent 0 and their own names, and `entries` (key, name, type,
// data), where the data are the raw bytes of the value. The file is marked as ours.

// One statement; ends with its object. A failed preparation shows in `result`.
class RegistryStatement {
  public:
    RegistryStatement(sqlite3* database, const char* text) {
        sqlite3_prepare_v2(database, text, -1, &statement_, nullptr);
    }
    RegistryStatement(const RegistryStatement&) = delete;
    RegistryStatement& operator=(const RegistryStatement&) = delete;
    ~RegistryStatement() { sqlite3_finalize(statement_); }

    // Texts and bytes must live until the statement ends.
    RegistryStatement& bind(int place, int64_t number);
    RegistryStatement& bind(int place, std::string_view text);
    RegistryStatement& bindBytes(int place, std::string_view bytes);

    // SQLITE_ROW, SQLITE_DONE, or an error (SQLITE_MISUSE when it was not prepared).
    int step() { return sqlite3_step(statement_); }
    void rewind() { sqlite3_reset(statement_); }

    int64_t number(int column) { return sqlite3_column_int64(statement_, column); }
    std::string bytes(int column);

  private:
    sqlite3_stmt* statement_ = nullptr;
};

// A connection to one registry file, closed with its object.
class RegistryStore {
  public:
    RegistryStore() = default;
    RegistryStore(const RegistryStore&) = delete;
    RegistryStore& operator=(const RegistryStore&) = delete;
    ~RegistryStore() { close(); }

    // Opens for reading, or keeps the connection when it is still that of the
    // file now at `path`, with the rights it had. A missing file is NotFound.
    OsRegistryResult openForReading(const std::string& path);

    // Opens for writing; makes the file and its directories. Another program's
    // file is Damaged.
    OsRegistryResult openForWriting(const std::string& path);

    void close();

    sqlite3* database() const { return database_; }

    // Runs statements that give no rows.
    bool run(const char* text);

    // Whether the file is a registry; NotFound when there is nothing in it yet.
    OsRegistryResult recognise();

    // Fills an empty file, as part of a change.
    bool makeTables();

    // What the last failure of the connection means to a reader.
    OsRegistryResult failure() const;

    // Whether a writer was killed half-way and left work to undo.
    bool needsRecovery() const;

    // The id of a key from its root down. NotFound ends at the first that is missing.
    OsRegistryResult findKey(uint32_t root, std::string_view key, int64_t* id);

    // The same, making what is missing.
    OsRegistryResult makeKey(uint32_t root, std::string_view key, int64_t* id);

  private:
    bool open(const std::string& path, int flags);

    sqlite3* database_ = nullptr;
    std::string path_;
    dev_t device_ = 0;
    ino_t inode_ = 0;
    mode_t mode_ = 0;
};

// One change or one consistent view; undone by its end unless committed.
class RegistryTransaction {
  public:
    RegistryTransaction(RegistryStore* store, bool writing)
        : store_(store), open_(store->run(writing ? "BEGIN IMMEDIATE" : "BEGIN")) {}
    RegistryTransaction(const RegistryTransaction&) = delete;
    RegistryTransaction& operator=(const RegistryTransaction&) = delete;
    ~RegistryTransaction() {
        if (open_) store_->run("ROLLBACK");
    }
    explicit operator bool() const { return open_; }
    bool commit() {
        if (open_ && store_->run("COMMIT")) open_ = false;
        return !open_;
    }

  private:
    RegistryStore* store_;
    bool open_;
};
