#include "posix/TextFile.h"

#include "platform/files.h"

TextFile::TextFile(const char* path) {
    OsFile file;
    if (osFileOpen(path, kOsOpenRead, &file) != 0) return;
    isOpen_ = true;
    char block[8192];
    size_t got = 0;
    while (osFileRead(file, block, sizeof block, &got) == 0 && got > 0) text_.append(block, got);
    osFileClose(file);
}

bool TextFile::nextLine(std::string_view* line) {
    if (place_ >= text_.size()) return false;
    size_t end = text_.find('\n', place_);
    if (end == std::string::npos) end = text_.size();
    *line = std::string_view(text_).substr(place_, end - place_);
    place_ = end + 1;
    return true;
}

std::string_view TextFile::cutWord(std::string_view* line) {
    size_t start = line->find_first_not_of(" \t");
    if (start == std::string_view::npos) start = line->size();
    line->remove_prefix(start);
    size_t end = line->find_first_of(" \t");
    if (end == std::string_view::npos) end = line->size();
    std::string_view word = line->substr(0, end);
    line->remove_prefix(end);
    return word;
}

std::string_view TextFile::cutField(std::string_view* line, char separator) {
    size_t end = line->find(separator);
    std::string_view field = line->substr(0, end);
    line->remove_prefix(end == std::string_view::npos ? line->size() : end + 1);
    return field;
}
