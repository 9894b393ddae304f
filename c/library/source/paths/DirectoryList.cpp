#include "paths/DirectoryList.h"

#include <algorithm>

#include "paths/OpenDirectory.h"
#include "paths/PathError.h"
#include "paths/Paths.h"
#include "strings/StringCompare.h"
#include "strings/StringMatch.h"

DirectoryEntry DirectoryList::operator[](uint32_t index) const {
    const Entry& entry = entries_[index];
    return {nameOf(entry), entry.kind == OsEntryKind::Directory || entry.leadsToDirectory};
}

void DirectoryList::sort() {
    std::sort(entries_.begin(), entries_.end(), [this](const Entry& left, const Entry& right) {
        return stringCompareViews(nameOf(left), nameOf(right)) < 0;
    });
}

bool DirectoryList::add(std::string_view name, OsEntryKind kind) {
    const size_t start = names_.size();
    if (!names_.append(name.data(), name.size()) || !names_.push('\0')) {
        names_.truncate(start);
        return false;
    }
    if (entries_.push({start, static_cast<uint32_t>(name.size()), kind, false})) return true;
    names_.truncate(start);
    return false;
}

void DirectoryList::clear() {
    entries_.clear();
    names_.clear();
    unnamed_ = 0;
}

namespace {

struct MatchingEntries {
    const String* pattern;  // null for every name
    DirectoryList* list;
    LocalString name = {};  // of the entry, for the matcher
    bool failed = false;
};

bool takeMatching(void* context, std::string_view name, OsEntryKind kind) {
    auto* wanted = static_cast<MatchingEntries*>(context);
    if (name.find_first_of("/\\") != std::string_view::npos) {
        wanted->list->countUnnamed();
        return true;
    }
    if (wanted->pattern != nullptr) {
        wanted->failed = !stringSetView(&wanted->name, name);
        if (wanted->failed) return false;
        if (!stringMatch(&wanted->name, wanted->pattern)) return true;
    }
    wanted->failed = !wanted->list->add(name, kind);
    return !wanted->failed;
}

// The path under which the system reads the directory.
std::string_view readingPath(const String* canonical) {
    return stringIsEmpty(canonical) ? std::string_view(".") : stringView(canonical);
}

}  // namespace

bool pathListDirectory(const String* directory, const String* pattern, DirectoryList* list) {
    pathClearError();
    list->clear();
    if (stringIsEmpty(directory)) return pathFail(kPathEmpty);
    if (!pathDirectoryExists(directory)) return pathFail(kPathNotFound);
    Owned<String> path(stringClone(directory));
    if (!path) return pathFail(kPathNoMemory);
    if (!pathCanonical(path.get())) return false;
    pathClearError();
    OpenDirectory opened;
    int error = osDirectoryOpen(readingPath(path.get()), true, opened.receive());
    if (error != 0) return pathFailSystem(error);
    const bool all = stringIsEmpty(pattern) || stringView(pattern) == "*";
    MatchingEntries wanted{all ? nullptr : pattern, list};
    error = osDirectoryRead(opened.get(), takeMatching, &wanted);
    if (error == 0 && !wanted.failed) {
        for (uint32_t i = 0; i < list->size(); ++i) {
            if (list->kind(i) == OsEntryKind::Link &&
                osEntryLeadsToDirectory(opened.get(), (*list)[i].name.data()))
                list->setLeadsToDirectory(i);
        }
        return true;
    }
    list->clear();
    return wanted.failed ? pathFail(kPathNoMemory) : pathFailSystem(error);
}
