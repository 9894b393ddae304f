#include "strings/StringLines.h"

#include <algorithm>
#include <string_view>

namespace {

bool isBreak(char c) {
    return c == ' ' || c == '\t';
}

// One walk over `text`, which is copied to `out` as it goes. Positions count
// bytes of `out`, which is ahead of `text` by the newlines put between bytes.
class LineWalk {
  public:
    LineWalk(std::string_view text, String* out, uint32_t width, bool breakWords)
        : text_(text), out_(out), width_(width), breakWords_(breakWords) {}

    uint32_t run() {
        while (next_ < text_.size()) {
            const char c = take();
            if (c == '\n') {
                startLine();
                ++lines_;
            } else if (++column_ >= width_) {
                endLine();
            }
        }
        return lines_;
    }

  private:
    char take() {
        const char c = text_[next_++];
        if (isBreak(c)) lastBreak_ = out_->length;
        stringAppendChar(out_, c);
        return c;
    }

    // The next line begins behind what was copied.
    void startLine() {
        lineStart_ = out_->length;
        column_ = 0;
    }

    void endLine() {
        if (next_ < text_.size() && isBreak(text_[next_])) take();
        if (lastBreak_ > lineStart_) {
            stringBytes(out_)[lastBreak_] = '\n';
            lineStart_ = lastBreak_ + 1;
            column_ = out_->length - lineStart_;
            ++lines_;
            return;
        }
        // The line count does not see the breaks of words that are too long.
        if (breakWords_) {
            stringAppendChar(out_, '\n');
        } else {
            while (next_ < text_.size() && !isBreak(text_[next_])) take();
            if (next_ == text_.size()) return;
            take();
            stringBytes(out_)[out_->length - 1] = '\n';
        }
        startLine();
    }

    std::string_view text_;
    String* out_;
    uint32_t width_;
    bool breakWords_;
    size_t next_ = 0;
    uint32_t lineStart_ = 0;
    uint32_t lastBreak_ = 0;
    uint32_t column_ = 0;
    uint32_t lines_ = 1;
};

}  // namespace

uint32_t stringMakeLines(String* s, uint32_t width, bool breakWords) {
    if (s == nullptr || width > s->length) return 0;
    // A newline is put in at most once in `width` bytes, so with this room no
    // append of the walk can fail.
    const uint64_t most = uint64_t{s->length} + s->length / std::max<uint32_t>(width, 1);
    LocalString out;
    if (most > kStringMaxLength || !stringReserve(&out, static_cast<uint32_t>(most))) return 0;
    const uint32_t lines = LineWalk(stringView(s), &out, width, breakWords).run();
    stringTake(s, &out);
    return lines;
}
