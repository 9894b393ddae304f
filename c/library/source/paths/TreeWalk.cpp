#include "paths/TreeWalk.h"

#include "paths/DirectoryList.h"
#include "paths/PathError.h"

namespace {

// Some trees are copied side by side, and programs have few hundred files.
constexpr uint32_t kMostOpen = 64;

struct AllEntries {
    DirectoryList* list;
    bool failed = false;
};

bool takeEntry(void* context, std::string_view name, OsEntryKind kind) {
    auto* all = static_cast<AllEntries*>(context);
    all->failed = !all->list->add(name, kind);
    return !all->failed;
}

}  // namespace

DirectoryChain::~DirectoryChain() {
    for (Link& link : links_) osDirectoryClose(&link.directory);
}

bool DirectoryChain::push(OsDirectory* directory) {
    OpenDirectory added(directory);
    if (links_.size() >= kMostOpen) {
        Link& high = links_[links_.size() - kMostOpen];
        int error = high.directory == nullptr ? 0 : osDirectoryId(high.directory, &high.id);
        if (error != 0) return pathFailSystem(error);
        osDirectoryClose(&high.directory);
    }
    if (!links_.push({added.get(), OsFileId()})) return pathFail(kPathNoMemory);
    added.release();
    return true;
}

bool DirectoryChain::pop() {
    OpenDirectory lowest(links_.pop().directory);
    if (links_.empty() || links_.back().directory != nullptr) return true;
    Link& above = links_.back();
    OpenDirectory parent;
    int error = osDirectoryOpenParent(lowest.get(), parent.receive());
    OsFileId id;
    if (error == 0) error = osDirectoryId(parent.get(), &id);
    if (error != 0) return pathFailSystem(error);
    // Somebody has moved the directory meanwhile.
    if (id != above.id) return pathFail(kPathNotFound);
    above.directory = parent.release();
    return true;
}

TreeWalk::~TreeWalk() {
    while (!levels_.empty()) dropLevel();
}

void TreeWalk::dropLevel() {
    DirectoryList* entries = levels_.pop().entries;
    memDelete(&entries);
}

bool TreeWalk::start(OsDirectory* top) {
    pathClearError();
    return enter(top);
}

// Reads the entries and goes down; owns the directory, also after a failure.
bool TreeWalk::enter(OsDirectory* directory) {
    if (!chain_.push(directory)) return false;
    auto* entries = memNew<DirectoryList>();
    if (entries == nullptr || !levels_.push({entries, 0})) {
        memDelete(&entries);
        return pathFail(kPathNoMemory);
    }
    AllEntries all{entries};
    int error = osDirectoryRead(directory, takeEntry, &all);
    if (error != 0) return pathFailSystem(error);
    return !all.failed || pathFail(kPathNoMemory);
}

bool TreeWalk::next(TreeStep* step) {
    *step = {TreeEvent::End, OsEntryKind::Other, nullptr, nullptr, nullptr};
    if (levels_.empty()) return true;
    if (levels_.back().at == levels_.back().entries->size()) {
        dropLevel();
        if (levels_.empty()) return true;
        if (!chain_.pop()) return false;
        step->event = TreeEvent::Leave;
    } else {
        ++levels_.back().at;
        step->event = TreeEvent::Entry;
    }
    const Level& level = levels_.back();
    step->kind = level.entries->kind(level.at - 1);
    step->name = (*level.entries)[level.at - 1].name.data();
    step->directory = chain_.lowest();
    if (step->event == TreeEvent::Leave || step->kind != OsEntryKind::Directory) return true;
    step->event = TreeEvent::Enter;
    OpenDirectory entered;
    int error = osDirectoryOpenEntry(step->directory, step->name, entered.receive());
    if (error != 0) return pathFailSystem(error);
    step->entered = entered.get();
    return enter(entered.release());
}
