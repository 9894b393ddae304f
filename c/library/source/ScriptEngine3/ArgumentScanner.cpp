#include "ScriptEngine3/ArgumentScanner.h"

#include "ScriptEngine3Expressions/ExpressionParser.h"

namespace {

constexpr char kQuote = '"';
constexpr char kQuoteMark = 0x1B;
constexpr unsigned char kLastBlank = 32;

struct Escape {
    char letter;
    char byte;
};

constexpr Escape kEscapes[] = {
    {'n', '\n'}, {'t', '\t'}, {'v', '\v'}, {'b', '\b'},  {'r', '\r'},
    {'f', '\f'}, {'a', '\a'}, {'?', '?'},  {'\\', '\\'}, {'0', '\0'},
};

bool isBlank(char c) {
    return static_cast<unsigned char>(c) <= kLastBlank;
}

// One pass over the text. The storage is as large as the text from the start:
// a token never grows, so that views of it stay good.
class ArgumentScanner {
  public:
    ArgumentScanner(std::string_view text, char* storage, GrowArray<std::string_view>* tokens)
        : text_(text), start_(storage), end_(storage), tokens_(tokens) {}

    bool scan();
    bool hasDoubleBlank() const { return doubleBlank_; }

  private:
    bool outside(char c, bool* handled);
    void inside(char c);
    bool escape(char next);
    bool finish(bool isExpression);
    void put(char c) { *end_++ = c; }

    std::string_view text_;
    size_t at_ = 0;
    char* start_;  // of the token so far
    char* end_;
    GrowArray<std::string_view>* tokens_;
    int depth_ = 0;
    bool inString_ = false;
    bool quoteEscaped_ = false;
    bool doubleBlank_ = false;
};

bool ArgumentScanner::scan() {
    for (; at_ < text_.size(); ++at_) {
        const char c = text_[at_];
        if (!quoteEscaped_ && c == kQuote) inString_ = !inString_;
        bool handled = false;
        if (!inString_ && !outside(c, &handled)) return false;
        if (!handled) inside(c);
    }
    return finish(false);
}

// A byte outside of strings. False when memory runs out.
bool ArgumentScanner::outside(char c, bool* handled) {
    *handled = true;
    if (c == '(' && ++depth_ == 1) {
        if (at_ + 1 < text_.size() && text_[at_ + 1] == ' ') ++at_;
        put(kExpressionMark);
        return true;
    }
    if (c == ')' && --depth_ == 0) return finish(true);
    if (depth_ == 0 && c == ' ') return finish(false);
    if (depth_ == 0)
        put(c);
    else
        *handled = false;
    return true;
}

void ArgumentScanner::inside(char c) {
    if (quoteEscaped_) {
        quoteEscaped_ = false;
        put(c);
    } else if (c == '\\' && at_ + 1 < text_.size() && escape(text_[at_ + 1])) {
        ++at_;
    } else {
        put(c);
    }
}

// True when both bytes of the pair are done with.
bool ArgumentScanner::escape(char next) {
    for (const Escape& known : kEscapes) {
        if (known.letter != next) continue;
        put(known.byte);
        return true;
    }
    if (next != kQuote) return false;
    if (inString_) {
        put(kQuoteMark);
        return true;
    }
    quoteEscaped_ = true;
    return false;
}

// Ends the token, trimmed, and begins the next. Its own mark is no blank.
bool ArgumentScanner::finish(bool isExpression) {
    char* first = start_;
    while (first < end_ && isBlank(*first) && *first != kExpressionMark) ++first;
    char* last = end_;
    while (last > first && isBlank(last[-1]) && last[-1] != kExpressionMark) --last;
    start_ = end_;
    const std::string_view token(first, static_cast<size_t>(last - first));
    if (token.empty()) return true;
    if (isExpression) {
        bool inString = false;
        for (size_t at = 0; at + 1 < token.size(); ++at) {
            if (token[at] == kQuote) inString = !inString;
            if (!inString && token[at] == ' ' && token[at + 1] == ' ') doubleBlank_ = true;
        }
    }
    return tokens_->push(token);
}

bool outOfMemory(ScriptEngine* engine) {
    logError(engine->logger, "   scriptEngineParseArgs: #::100");
    logLocation(engine->logger, kLogError);
    return false;
}

}  // namespace

bool scriptEngineParseArgs(ScriptEngine* engine, std::string_view text, String* storage,
                           GrowArray<std::string_view>* tokens) {
    logDebug(engine->logger, "   scriptEngineParseArgs: Parsing arguments: \"%S\"", text);
    tokens->clear();
    stringClear(storage);
    if (text.empty()) {
        logDebug(engine->logger, "   scriptEngineParseArgs: Got %u argument(s)", 0u);
        return true;
    }
    char* room = stringMakeRoom(storage, static_cast<uint32_t>(text.size()));
    if (room == nullptr) return outOfMemory(engine);
    ArgumentScanner scanner(text, room, tokens);
    if (!scanner.scan()) return outOfMemory(engine);
    if (scanner.hasDoubleBlank()) {
        logError(engine->logger, "   scriptEngineParseArgs: #::1124");
        logLocation(engine->logger, kLogError);
        return false;
    }
    logDebug(engine->logger, "   scriptEngineParseArgs: Got %u argument(s)", tokens->size());
    return true;
}
