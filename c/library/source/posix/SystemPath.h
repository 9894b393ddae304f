#pragma once

#include <climits>
#include <string_view>

// The one place where a path of ours becomes a path of the system: `\` turns
// into `/`, and a zero byte ends it. Needs no memory of its own.
class SystemPath {
  public:
    explicit SystemPath(std::string_view path) {
        size_t length = 0;
        for (char byte : path) {
            if (byte == '\0' || length == kLongest) break;
            text_[length++] = byte == '\\' ? '/' : byte;
        }
        text_[length] = '\0';
    }
    const char* c_str() const { return text_; }

  private:
    // A text this long leaves no room for its terminator in the system's limit:
    // a path cut here is refused as too long and never names another file.
    static constexpr size_t kLongest = PATH_MAX;
    char text_[kLongest + 1];
};
