#include "logger/MessageExpand.h"

#include <algorithm>
#include <string_view>

#include "logger/MessageCatalogue.h"
#include "strings/StringNumbers.h"

namespace {

// Texts of the catalogue may refer to each other in circles: a reference that
// lies deeper, or comes later, stays as it stands.
constexpr uint32_t kMaxDepth = 16;
constexpr uint32_t kMaxReferences = 256;

constexpr std::string_view kNullText = "<NULL>";

enum class Mark { None, Hash, HashColon };

bool isDigit(char byte) {
    return byte >= '0' && byte <= '9';
}

// How an argument prints on its own, whatever letter it stands under.
void appendPlain(String* out, const LogArg& arg) {
    switch (arg.kind) {
        case LogArgKind::Int32:
        case LogArgKind::Int64:
            stringAppendInt64(out, arg.integer);
            break;
        case LogArgKind::UInt32:
        case LogArgKind::UInt64:
            stringAppendUInt64(out, static_cast<uint64_t>(arg.integer));
            break;
        case LogArgKind::Double:
            stringAppendDouble(out, arg.number);
            break;
        case LogArgKind::Char:
            stringAppendChar(out, arg.character);
            break;
        case LogArgKind::Text:
            stringAppendView(
                out, arg.text == nullptr ? kNullText : std::string_view(arg.text, arg.length));
            break;
        case LogArgKind::String:
            stringAppendView(out, arg.string == nullptr ? kNullText : stringView(arg.string));
            break;
    }
}

bool isNarrow(const LogArg& arg) {
    return arg.kind == LogArgKind::Int32 || arg.kind == LogArgKind::UInt32;
}

bool isInteger(const LogArg& arg) {
    return isNarrow(arg) || arg.kind == LogArgKind::Int64 || arg.kind == LogArgKind::UInt64;
}

// The letters for integers choose between the two readings of the same bits; the
// width is the argument's own.
void appendSigned(String* out, const LogArg& arg, bool narrow) {
    const bool wraps = narrow && arg.kind == LogArgKind::UInt32;
    stringAppendInt64(out, wraps ? static_cast<int32_t>(arg.integer) : arg.integer);
}

void appendUnsigned(String* out, const LogArg& arg, bool narrow) {
    const auto bits = static_cast<uint64_t>(arg.integer);
    stringAppendUInt64(out, narrow || isNarrow(arg) ? static_cast<uint32_t>(bits) : bits);
}

class Expander {
  public:
    Expander(String* out, LogForm form, const LogArg* args, uint32_t count)
        : out_(out), form_(form), args_(args), count_(args == nullptr ? 0 : count) {}

    void walk(std::string_view text) {
        Mark mark = Mark::None;
        for (size_t at = 0; at < text.size();) {
            const char byte = text[at];
            if (mark == Mark::None && byte == '#') {
                mark = Mark::Hash;
                ++at;
            } else if (mark == Mark::None) {
                at = byte == '%' ? conversion(text, at) : plainRun(text, at);
            } else if (byte != ':') {
                stringAppendView(out_, mark == Mark::Hash ? "#" : "#:");
                stringAppendChar(out_, byte);
                mark = Mark::None;
                ++at;
            } else if (mark == Mark::Hash) {
                mark = Mark::HashColon;
                ++at;
            } else {
                at = reference(text, at + 1, &mark);
            }
        }
    }

  private:
    size_t plainRun(std::string_view text, size_t at) {
        const size_t end = std::min(text.find_first_of("#%", at), text.size());
        stringAppendView(out_, text.substr(at, end - at));
        return end;
    }

    // `at` is behind "#::". Gives where the walk goes on.
    size_t reference(std::string_view text, size_t at, Mark* mark) {
        size_t end = at;
        while (end < text.size() && isDigit(text[end])) ++end;
        if (end == at) {
            // Without a number both colons stay, and the mark is not over: an oddity
            // that "#::x" shows as "::#:x".
            stringAppendText(out_, "::");
            return at;
        }
        *mark = Mark::None;
        const uint32_t number = textToUInt32(text.substr(at, end - at));
        const String* entry = messageCatalogueFind(number);
        if (entry != nullptr && depth_ < kMaxDepth && references_ < kMaxReferences) {
            ++references_;
            ++depth_;
            walk(stringView(entry));
            --depth_;
            return end;
        }
        stringAppendText(out_, "#::");
        stringAppendUInt64(out_, number);
        // What follows an unknown number is text, whatever it is.
        if (end < text.size()) stringAppendChar(out_, text[end++]);
        return end;
    }

    // `at` is on a percent sign. Gives where the walk goes on.
    size_t conversion(std::string_view text, size_t at) {
        const bool missing = next_ >= count_;
        const bool letter = at + 1 < text.size() && isLetter(text[at + 1]);
        if (missing && (count_ == 0 || form_ == LogForm::List || letter)) {
            stringAppendChar(out_, '%');
            return at + 1;
        }
        if (letter) argument(text[at + 1], args_[next_++]);
        return at + 2;
    }

    static bool isLetter(char byte) {
        return byte != 0 && std::string_view("iutIUfcsS").find(byte) != std::string_view::npos;
    }

    void argument(char letter, const LogArg& arg) {
        const bool integer = isInteger(arg);
        if (integer && (letter == 'i' || letter == 'I')) {
            appendSigned(out_, arg, letter == 'i');
        } else if (integer && (letter == 'u' || letter == 'U')) {
            appendUnsigned(out_, arg, false);
        } else if (integer && letter == 't') {
            appendUnsigned(out_, arg, form_ == LogForm::Call);
        } else if (integer && letter == 'c') {
            stringAppendChar(out_, static_cast<char>(arg.integer));
        } else if (arg.kind == LogArgKind::Char && letter != 'c' && letter != 's' &&
                   letter != 'S') {
            stringAppendInt64(out_, arg.character);
        } else {
            appendPlain(out_, arg);
        }
    }

    String* out_;
    LogForm form_;
    const LogArg* args_;
    uint32_t count_;
    uint32_t next_ = 0;
    uint32_t depth_ = 0;
    uint32_t references_ = 0;
};

}  // namespace

void messageExpandInto(String* out, const char* format, LogForm form, const LogArg* args,
                       uint32_t count) {
    if (out == nullptr || format == nullptr) return;
    Expander(out, form, args, count).walk(format);
}

String* messageExpand(const char* format, LogForm form, const LogArg* args, uint32_t count) {
    if (format == nullptr) return nullptr;
    String* out = stringNewEmpty();
    messageExpandInto(out, format, form, args, count);
    return out;
}
