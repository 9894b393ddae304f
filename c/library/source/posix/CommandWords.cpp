#include "posix/CommandWords.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "platform/machine.h"
#include "posix/SystemPath.h"

namespace {

bool isBlank(char byte) {
    return static_cast<unsigned char>(byte) <= ' ';
}

// 0 for a file that may be run.
int checkProgram(const char* path) {
    struct stat status {};
    if (stat(path, &status) != 0) return errno;
    if (!S_ISREG(status.st_mode)) return EACCES;
    return access(path, X_OK) == 0 ? 0 : errno;
}

}  // namespace

CommandWords::CommandWords(std::string_view line) {
    line = line.substr(0, line.find('\0'));
    bool inWord = false;
    bool quoted = false;
    for (const char byte : line) {
        if (!quoted && isBlank(byte)) {
            inWord = false;
            continue;
        }
        if (!inWord) words_.emplace_back();
        inWord = true;
        if (byte == '"')
            quoted = !quoted;
        else
            words_.back() += byte;
    }
    for (std::string& word : words_) pointers_.push_back(word.data());
    pointers_.push_back(nullptr);
}

int posixFindProgram(std::string_view word, std::string* path) {
    if (word.empty()) return ENOENT;
    if (word.find_first_of("/\\") != std::string_view::npos) {
        *path = SystemPath(word).c_str();
        return checkProgram(path->c_str());
    }
    std::string list;
    char separator = ':';
    if (!osSearchPath(&list, &separator)) return ENOENT;
    int error = ENOENT;
    for (std::string_view rest = list; !rest.empty();) {
        const size_t end = rest.find(separator);
        const std::string directory = SystemPath(rest.substr(0, end)).c_str();
        rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
        if (directory.empty()) continue;
        *path = directory + '/';
        *path += word;
        const int found = checkProgram(path->c_str());
        if (found == 0) return 0;
        // One that is there and may not be run tells more than one that is not.
        if (found == EACCES) error = EACCES;
    }
    return error;
}
