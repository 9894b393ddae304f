#pragma once

#include <string>
#include <string_view>
#include <vector>

// A command line of ours as the words that a program is started with.
class CommandWords {
  public:
    // Cuts the line at blanks, up to a zero byte. A double quote switches anywhere
    // in a word whether blanks separate, and is dropped; there is no escape.
    explicit CommandWords(std::string_view line);

    bool empty() const { return words_.empty(); }
    const std::string& operator[](size_t at) const { return words_[at]; }
    // With a null behind the last one, as the system wants them.
    char* const* pointers() { return pointers_.data(); }

  private:
    std::vector<std::string> words_;
    std::vector<char*> pointers_;
};

// The path of the program that a command's first word means: a word with a
// separator is a path, any other is looked for along the search path. Gives the
// system's error number, 0 for success.
int posixFindProgram(std::string_view word, std::string* path);
