#include <cstring>
#include <string_view>

#include "paths/Paths.h"
#include "platform/files.h"
#include "strings/String.h"
#include "strings/StringEdit.h"
#include "strings/StringFind.h"
#include "strings/StringMatch.h"

namespace {

constexpr char kSeparator = '\\';

bool endsInSeparator(std::string_view path) {
    return !path.empty() && pathIsSeparator(path.back());
}

std::string_view withoutTrailingSeparator(std::string_view path) {
    return path.substr(0, path.size() - (endsInSeparator(path) ? 1 : 0));
}

size_t leadingSeparators(std::string_view path) {
    size_t count = 0;
    while (count < path.size() && pathIsSeparator(path[count])) ++count;
    return count;
}

// Writes the components of a unified path back into it, dots resolved. What
// comes out never reaches what is still to be read.
class DotResolver {
  public:
    DotResolver(char* text, size_t lead) : text_(text), lead_(lead), end_(lead), floor_(lead) {}

    void take(std::string_view component) {
        if (component.empty() || component == ".") return;
        if (component != "..") {
            append(component);
        } else if (end_ > floor_) {
            removeLast();
        } else {
            append(component);
            floor_ = end_;  // what stands before has nothing to remove
        }
    }

    size_t finish(bool trailingSeparator) {
        if (trailingSeparator && end_ > lead_) text_[end_++] = kSeparator;
        return end_;
    }

  private:
    void append(std::string_view component) {
        if (end_ > lead_) text_[end_++] = kSeparator;
        memmove(text_ + end_, component.data(), component.size());
        end_ += component.size();
    }
    void removeLast() {
        while (end_ > lead_ && text_[end_ - 1] != kSeparator) --end_;
        if (end_ > lead_) --end_;
    }

    char* text_;
    size_t lead_;
    size_t end_;
    size_t floor_;
};

}  // namespace

bool pathRemoveTrailingSeparator(String* path) {
    if (path == nullptr) return false;
    std::string_view kept = withoutTrailingSeparator(stringView(path));
    return kept.size() == path->length || stringSetLength(path, static_cast<uint32_t>(kept.size()));
}

bool pathEnsureTrailingSeparator(String* path) {
    if (path == nullptr) return false;
    std::string_view text = stringView(path);
    return text.empty() || endsInSeparator(text) || stringAppendChar(path, kSeparator);
}

int64_t pathLastSeparator(const String* path) {
    std::string_view text = stringView(path);
    size_t end = text.size() > 1 ? withoutTrailingSeparator(text).size() : text.size();
    while (end > 0 && !pathIsSeparator(text[end - 1])) --end;
    return static_cast<int64_t>(end) - 1;
}

String* pathDirectoryPart(const String* path) {
    if (path == nullptr) return nullptr;
    size_t length = static_cast<size_t>(pathLastSeparator(path) + 1);
    return stringFromView(stringView(path).substr(0, length));
}

String* pathBaseName(const String* path) {
    if (path == nullptr) return nullptr;
    std::string_view text = withoutTrailingSeparator(stringView(path));
    size_t separator = text.find_last_of("/\\");
    return stringFromView(separator == std::string_view::npos ? text : text.substr(separator + 1));
}

String* pathSuffix(const String* path, bool* found) {
    if (path == nullptr) return nullptr;
    std::string_view text = stringView(path);
    size_t point = text.rfind('.');
    if (found != nullptr) *found = point != std::string_view::npos;
    if (point == std::string_view::npos) return stringNewEmpty();
    return stringFromView(withoutTrailingSeparator(text.substr(point + 1)));
}

bool pathCutSuffix(String* path) {
    if (path == nullptr) return false;
    size_t point = stringView(path).rfind('.');
    if (point != std::string_view::npos) stringSetLength(path, static_cast<uint32_t>(point));
    return pathRemoveTrailingSeparator(path);
}

bool pathCutToDirectory(String* path) {
    if (path == nullptr) return false;
    int64_t separator = pathLastSeparator(path);
    return separator < 0 || stringSetLength(path, static_cast<uint32_t>(separator + 1));
}

bool pathUnifySeparators(String* path) {
    if (path == nullptr) return false;
    std::string_view text = stringView(path);
    uint32_t end = 0;
    for (size_t i = 0; i < text.size(); ++i) {
        bool repeated = i > 1 && pathIsSeparator(text[i]) && pathIsSeparator(text[i - 1]);
        if (!repeated) stringBytes(path)[end++] = pathIsSeparator(text[i]) ? kSeparator : text[i];
    }
    return end == path->length || stringSetLength(path, end);
}

bool pathResolveDots(String* path) {
    if (!pathUnifySeparators(path)) return false;
    std::string_view text = stringView(path);
    if (text.empty()) return true;
    size_t lead = leadingSeparators(text);
    bool trailing = endsInSeparator(text);
    DotResolver resolver(stringBytes(path), lead);
    for (size_t start = lead; start < text.size();) {
        size_t end = text.find(kSeparator, start);
        if (end == std::string_view::npos) end = text.size();
        // The resolver writes over what has been read: take the end first.
        resolver.take(text.substr(start, end - start));
        start = end + 1;
    }
    return stringSetLength(path, static_cast<uint32_t>(resolver.finish(trailing)));
}

bool pathIsAbsolute(const String* path) {
    Owned<String> unified(stringClone(path));
    if (!pathUnifySeparators(unified.get())) return false;
    bool leads = !stringIsEmpty(path) && pathIsSeparator(stringBytes(path)[0]);
    return (leads && osLeadingSeparatorIsAbsolute()) || stringMatchText(unified.get(), "?*:\\*") ||
           stringMatchText(unified.get(), "\\\\?*\\*");
}
