#pragma once

#include <string_view>

// A path for the system's byte functions, ended by a zero byte. Both separators
// are understood there, so nothing is turned. Needs no memory of its own.
class AnsiPath {
  public:
    explicit AnsiPath(std::string_view path) {
        size_t length = path.substr(0, kLongest).copy(text_, kLongest);
        text_[length] = '\0';
    }
    const char* c_str() const { return text_; }

  private:
    // Far beyond what the byte functions take: a path cut here is refused as too
    // long and never names another file.
    static constexpr size_t kLongest = 4096;
    char text_[kLongest + 1];
};
