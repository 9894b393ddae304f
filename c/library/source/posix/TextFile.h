#pragma once

#include <string>
#include <string_view>

// A small text file of the system, such as those below /etc, read whole and
// taken line by line. The pieces given point into it.
class TextFile {
  public:
    explicit TextFile(const char* path);

    bool isOpen() const { return isOpen_; }

    // The next line without its end; false behind the last one.
    bool nextLine(std::string_view* line);

    // Takes the first word, delimited by blanks or tabs, off the line.
    static std::string_view cutWord(std::string_view* line);

    // Takes the first field off the line and the separator behind it.
    static std::string_view cutField(std::string_view* line, char separator);

  private:
    bool isOpen_ = false;
    std::string text_;
    size_t place_ = 0;
};
