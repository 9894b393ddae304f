#pragma once

#include <cstdint>
#include <string_view>

#include "containers/GrowArray.h"
#include "paths/OpenDirectory.h"
#include "platform/directories.h"

class DirectoryList;

// Directories held open from the top of a tree down to one of its leaves, each
// reached from the one above. However deep it goes only some are really open:
// those high up are closed and found again by way of their child's parent, which
// must be the same directory still.
class DirectoryChain {
  public:
    DirectoryChain() = default;
    DirectoryChain(const DirectoryChain&) = delete;
    DirectoryChain& operator=(const DirectoryChain&) = delete;
    ~DirectoryChain();

    // Adds the next one, which the chain owns from then on, also after a failure.
    // These give false with the reason in the record of paths/PathError.h.
    bool push(OsDirectory* directory);
    // Closes the lowest and makes sure that the one above is open.
    bool pop();

    OsDirectory* lowest() const { return links_.back().directory; }
    uint32_t depth() const { return static_cast<uint32_t>(links_.size()); }

  private:
    struct Link {
        OsDirectory* directory;  // null while closed
        OsFileId id;             // known while closed
    };
    GrowArray<Link> links_;
};

enum class TreeEvent : uint8_t {
    Entry,  // not a directory
    Enter,  // a directory, before its entries
    Leave,  // the same directory, behind its entries
    End,
};

struct TreeStep {
    TreeEvent event;
    OsEntryKind kind;
    const char* name;        // bare; until the next step
    OsDirectory* directory;  // what holds the entry; until the next step
    OsDirectory* entered;    // with `Enter`, the directory itself
};

// Walks through a tree from its top, with names as the system gave them and in
// its order. Links are met as entries and never followed. The entries of a
// directory are read before the first of them is met, so what is met may be
// removed, and what is added is not met. The top itself is not met.
class TreeWalk {
  public:
    TreeWalk() = default;
    TreeWalk(const TreeWalk&) = delete;
    TreeWalk& operator=(const TreeWalk&) = delete;
    ~TreeWalk();

    // Takes the open top over. These give false with the reason in the record of
    // paths/PathError.h, and then the walk is at its end.
    bool start(OsDirectory* top);
    bool next(TreeStep* step);

  private:
    struct Level {
        DirectoryList* entries;
        uint32_t at;  // the next entry
    };
    bool enter(OsDirectory* directory);
    void dropLevel();

    DirectoryChain chain_;
    GrowArray<Level> levels_;
};
