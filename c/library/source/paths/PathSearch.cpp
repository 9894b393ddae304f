#include <string>
#include <string_view>
#include <utility>

#include "containers/GrowArray.h"
#include "paths/PathError.h"
#include "paths/Paths.h"
#include "platform/machine.h"
#include "strings/String.h"

namespace {

// The directories in which a search has looked, so that parents which many
// directories share are asked once.
class TriedDirectories {
  public:
    TriedDirectories() = default;
    TriedDirectories(const TriedDirectories&) = delete;
    TriedDirectories& operator=(const TriedDirectories&) = delete;
    ~TriedDirectories() {
        for (String* directory : tried_) stringDestroy(&directory);
    }

    bool holds(std::string_view directory) const {
        for (const String* tried : tried_) {
            if (stringView(tried) == directory) return true;
        }
        return false;
    }
    bool add(std::string_view directory) {
        Owned<String> copy(stringFromView(directory));
        if (!copy || !tried_.push(copy.get())) return false;
        copy.release();
        return true;
    }

  private:
    GrowArray<String*> tried_;
};

enum class Search { Found, NotFound, NoMemory };

// Looks in a directory and all its parents, each once.
Search searchUpward(String* directory, const String* name, TriedDirectories* tried,
                    String* candidate) {
    if (!pathCanonical(directory)) {
        return pathLastErrorCode() == kPathNoMemory ? Search::NoMemory : Search::NotFound;
    }
    if (!pathEnsureTrailingSeparator(directory)) return Search::NoMemory;
    while (!stringIsEmpty(directory) && !tried->holds(stringView(directory))) {
        if (!stringSet(candidate, directory) || !stringAppend(candidate, name)) {
            return Search::NoMemory;
        }
        if (pathExists(candidate)) return Search::Found;
        if (!tried->add(stringView(directory))) return Search::NoMemory;
        pathRemoveTrailingSeparator(directory);
        // A single component, a drive among them, has no parent that its name could tell.
        if (pathLastSeparator(directory) < 0) break;
        pathCutToDirectory(directory);
    }
    return Search::NotFound;
}

}  // namespace

bool pathFindInPath(const String* name, String* target) {
    pathClearError();
    if (stringIsEmpty(name) || target == nullptr) return pathFail(kPathEmpty);
    TriedDirectories tried;
    Owned<String> candidate(stringNewEmpty());
    Owned<String> directory(pathCurrentDirectory());
    Search state = Search::NotFound;
    if (directory) state = searchUpward(directory.get(), name, &tried, candidate.get());
    if (!directory) directory.reset(stringNewEmpty());
    std::string list;
    char separator = ';';
    if (state == Search::NotFound && osSearchPath(&list, &separator)) {
        for (std::string_view rest = list; !rest.empty() && state == Search::NotFound;) {
            size_t end = rest.find(separator);
            if (!stringSetView(directory.get(), rest.substr(0, end))) state = Search::NoMemory;
            if (state == Search::NotFound) {
                state = searchUpward(directory.get(), name, &tried, candidate.get());
            }
            rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
        }
    }
    if (state == Search::NoMemory) return pathFail(kPathNoMemory);
    if (state == Search::Found) std::swap(*target, *candidate);
    return state == Search::Found;
}
