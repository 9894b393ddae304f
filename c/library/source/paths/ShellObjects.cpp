#include "paths/ShellObjects.h"

#include <algorithm>
#include <string_view>

#include "platform/shellobjects.h"
#include "strings/String.h"

namespace {

class ShellLibrary {
  public:
    ShellLibrary() : isLoaded_(osShellLibraryLoad(&library_)) {}
    ShellLibrary(const ShellLibrary&) = delete;
    ShellLibrary& operator=(const ShellLibrary&) = delete;
    ~ShellLibrary() { osShellLibraryRelease(&library_); }

    bool isLoaded() const { return isLoaded_; }
    bool rewrite(char* path) const { return library_.getPath(path) != 0; }

  private:
    OsShellLibrary library_;
    bool isLoaded_;
};

}  // namespace

ShellAnswer pathAskShell(String* path) {
    ShellLibrary library;
    if (!library.isLoaded()) return ShellAnswer::NoLibrary;
    const uint32_t size = std::max(path->length + 1, uint32_t{kOsShellPathSize});
    Owned<String> buffer(stringNew(size));
    if (!buffer) return ShellAnswer::NoMemory;
    char* text = stringBytes(buffer.get());
    std::fill_n(std::copy_n(stringBytes(path), path->length, text), size - path->length, '\0');
    if (!library.rewrite(text)) return ShellAnswer::Unknown;
    text[size - 1] = '\0';
    return stringSetView(path, text) ? ShellAnswer::Rewritten : ShellAnswer::NoMemory;
}
