#pragma once

#include <cstdint>
#include <string_view>

#include "containers/GrowArray.h"
#include "platform/directories.h"

struct String;

struct DirectoryEntry {
    std::string_view name;  // bare, with a zero byte behind it
    bool isDirectory;       // what a link leads to counts
};

// The entries of a directory. The names stay as the system gave them, in any
// bytes, and live as long as the list.
class DirectoryList {
  public:
    uint32_t size() const { return static_cast<uint32_t>(entries_.size()); }
    DirectoryEntry operator[](uint32_t index) const;

    // Entries left out since their names hold a separator: no path could name them.
    uint32_t unnamed() const { return unnamed_; }

    // In the order of Strings: signed bytes, the shorter first.
    void sort();

    // ---- For those who fill a list ----

    // False, with nothing added, when memory runs out.
    bool add(std::string_view name, OsEntryKind kind);
    OsEntryKind kind(uint32_t index) const { return entries_[index].kind; }
    void setLeadsToDirectory(uint32_t index) { entries_[index].leadsToDirectory = true; }
    void countUnnamed() { ++unnamed_; }
    void clear();

  private:
    struct Entry {
        size_t start;
        uint32_t length;
        OsEntryKind kind;
        bool leadsToDirectory;
    };
    std::string_view nameOf(const Entry& entry) const {
        return {names_.data() + entry.start, entry.length};
    }

    GrowArray<Entry> entries_;
    GrowArray<char> names_;
    uint32_t unnamed_ = 0;
};

// Lists the entries that match the pattern, case-sensitively, in the order of the
// file system; a null or empty pattern is "*". The path is made canonical first.
// False, with the reason in the record of paths/PathError.h and an empty list,
// when the directory cannot be read or memory runs out.
bool pathListDirectory(const String* directory, const String* pattern, DirectoryList* list);
