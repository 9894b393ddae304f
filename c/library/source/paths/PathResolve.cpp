#include <string>
#include <string_view>
#include <utility>

#include "paths/PathError.h"
#include "paths/Paths.h"
#include "paths/ShellObjects.h"
#include "platform/files.h"
#include "platform/machine.h"
#include "strings/StringCompare.h"
#include "strings/StringEdit.h"
#include "strings/StringFormat.h"
#include "system/SystemInfo.h"

namespace {

// A variable may hold its own name again; the expansion of such a path must end.
constexpr int kMostReplacements = 1000;

bool isOneOf(const String* path, const char* first, const char* second) {
    return stringCompareNoCaseText(path, first) == 0 || stringCompareNoCaseText(path, second) == 0;
}

// What stands for a name between percent signs, which are part of `quoted`; null
// for a name that is not known. The environment is asked with the signs.
String* replacementFor(std::string_view quoted) {
    std::string value;
    if (osGetEnvironment(quoted, &value)) return stringFromView(value);
    Owned<String> name(stringFromView(quoted.substr(1, quoted.size() - 2)));
    return sysGetSpecialFolder(name.get());
}

// Replaces names between percent signs from left to right. Each search begins at
// the second byte, also behind a name that is not known: it can meet that one
// again, and then nothing would ever change.
bool expandNames(String* path) {
    size_t from = 0;
    for (int replaced = 0; replaced < kMostReplacements;) {
        std::string_view text = stringView(path);
        size_t first = text.find('%', from);
        if (first == std::string_view::npos) return true;
        size_t second = text.find('%', first + 1);
        if (second == std::string_view::npos) return true;
        uint32_t place = static_cast<uint32_t>(first);
        std::string_view quoted = text.substr(first, second - first + 1);
        Owned<String> value(replacementFor(quoted));
        if (value) {
            uint32_t size = static_cast<uint32_t>(quoted.size());
            if (!stringInsert(path, place, value.get())) return pathFail(kPathNoMemory);
            stringErase(path, place + value->length, size);
            ++replaced;
        } else if (first > 0) {
            return true;
        }
        from = 1;
    }
    return true;
}

// Rebuilds a path component by component in the spelling of the disk.
class TrueCaseWalk {
  public:
    explicit TrueCaseWalk(std::string_view path) : rest_(path), result_(stringNewEmpty()) {}

    // The whole path; null when memory runs out.
    String* walk() {
        size_t lead = rest_.find_first_not_of("/\\");
        if (lead == std::string_view::npos) lead = rest_.size();
        add(rest_.substr(0, lead));
        rest_.remove_prefix(lead);
        while (!rest_.empty() && done_) {
            std::string_view component = rest_.substr(0, rest_.find_first_of("/\\"));
            bool isThere = addComponent(component);
            rest_.remove_prefix(component.size());
            if (!isThere) {
                add(rest_);
                break;
            }
            if (rest_.empty()) break;
            add("\\");
            rest_.remove_prefix(1);
        }
        return done_ ? result_.release() : nullptr;
    }

  private:
    void add(std::string_view text) { done_ = done_ && stringAppendView(result_.get(), text); }

    // False when the path so far, which has the component added as it is, is not there.
    bool addComponent(std::string_view component) {
        add(component);
        bool stands =
            component.empty() || component.back() == ':' || component == "." || component == "..";
        if (stands || !done_) return true;
        std::string name;
        if (osTrueName(stringView(result_.get()), &name) == 0) {
            replaceEnd(component, name);
            return true;
        }
        switch (pathAskShell(result_.get())) {
            case ShellAnswer::Rewritten:
                return true;
            case ShellAnswer::NoLibrary:
                return pathFail(kPathNoShellLibrary);
            case ShellAnswer::NoMemory:
                return done_ = false;
            default:
                return false;
        }
    }

    void replaceEnd(std::string_view component, std::string_view name) {
        if (name == component) return;
        size_t kept = result_->length - component.size();
        done_ = stringSetLength(result_.get(), static_cast<uint32_t>(kept));
        add(name);
    }

    std::string_view rest_;
    Owned<String> result_;
    bool done_ = true;
};

}  // namespace

bool pathIsFull(String* path) {
    if (!pathUnifySeparators(path)) return false;
    if (pathIsAbsolute(path)) return true;
    if (!pathExists(path)) return false;
    Owned<String> full(pathCurrentDirectory());
    bool made = pathEnsureTrailingSeparator(full.get()) && stringAppend(full.get(), path);
    if (made) std::swap(*path, *full);
    return made;
}

bool pathExpand(String* path) {
    pathClearError();
    if (path == nullptr) return pathFail(kPathEmpty);
    if (isOneOf(path, "/c:", "\\c:")) return stringSetText(path, "c:");
    if (!expandNames(path)) return false;
    if (isOneOf(path, "/systemroot", "\\systemroot")) {
        std::string root;
        int error = osSystemRoot(&root);
        if (error != 0) return pathFailSystem(error);
        return stringSetView(path, root) || pathFail(kPathNoMemory);
    }
    if (isOneOf(path, "/??", "\\??")) stringClear(path);
    return true;
}

bool pathTrueCase(String* path) {
    pathClearError();
    if (path == nullptr) return pathFail(kPathEmpty);
    Owned<String> spelled(TrueCaseWalk(stringView(path)).walk());
    if (!spelled) return pathFail(kPathNoMemory);
    if (!stringEqual(spelled.get(), path)) std::swap(*path, *spelled);
    return true;
}

bool pathCanonical(String* path) {
    Owned<String> copy(stringClone(path));
    if (path != nullptr && !copy) return pathFail(kPathNoMemory);
    if (!pathExpand(copy.get()) || !pathResolveDots(copy.get()) || !pathTrueCase(copy.get())) {
        return false;
    }
    std::swap(*path, *copy);
    return true;
}

bool pathMakeUnique(String* path, bool always) {
    if (path == nullptr) return pathFail(kPathEmpty);
    if (!always && !pathExists(path)) return true;
    bool hasSuffix = false;
    Owned<String> start(pathDirectoryPart(path));
    Owned<String> name(pathBaseName(path));
    Owned<String> suffix(pathSuffix(path, &hasSuffix));
    Owned<String> candidate(stringNewEmpty());
    if (!start || !name || !suffix) return pathFail(kPathNoMemory);
    // The last point may stand in a directory's name: then the base name has no such end.
    if (hasSuffix && !stringInsertChar(suffix.get(), 0, '.')) return pathFail(kPathNoMemory);
    std::string_view base = stringView(name.get());
    if (base.ends_with(stringView(suffix.get()))) base.remove_suffix(suffix->length);
    for (uint32_t number = 0;; ++number) {
        if (!stringFormat(candidate.get(), "%S%s-%'0'5u%S", start, base, number, suffix)) {
            return pathFail(kPathNoMemory);
        }
        if (!pathExists(candidate.get())) break;
    }
    std::swap(*path, *candidate);
    pathClearError();
    return true;
}
