#include "logger/LoggerShell.h"

#include "containers/List.h"
#include "containers/Memory.h"
#include "streams/StringStream.h"

namespace Quorel {

namespace {

// A list of this module owns its boxed values, and the strings in them.
void destroyBox(void** element) {
    auto* box = static_cast<LogArg*>(*element);
    if (box->kind == LogArgKind::String) {
        auto* string = const_cast<String*>(box->string);
        stringDestroy(&string);
    }
    memDelete(&box);
    *element = nullptr;
}

class BoxList {
  public:
    BoxList() : list_(listCreate()) {}
    BoxList(const BoxList&) = delete;
    BoxList& operator=(const BoxList&) = delete;
    ~BoxList() { listDestroyWith(&list_, destroyBox); }

    // Takes an argument in; an owned string in it is taken over.
    bool push(const LogArg& arg) {
        LogArg* box = memNew<LogArg>(arg);
        if (box != nullptr && listPushBack(list_, box)) return true;
        memDelete(&box);
        return false;
    }

    const List* get() const { return list_; }

  private:
    List* list_;
};

template <typename Stored, typename Boxed = Stored>
bool pushNext(StringStream* stream, BoxList* boxes) {
    Stored value{};
    return streamRead(stream, &value) == kStreamRead && boxes->push(static_cast<Boxed>(value));
}

bool pushNextText(StringStream* stream, BoxList* boxes) {
    Owned<String> text(stringNewEmpty());
    if (!text || streamRead(stream, text.get()) != kStreamRead ||
        !boxes->push(LogArg(static_cast<const String*>(text.get()))))
        return false;
    text.release();
    return true;
}

struct TagReader {
    char tag;
    bool (*push)(StringStream* stream, BoxList* boxes);
};

constexpr TagReader kReaders[] = {
    {kStreamInt8, pushNext<int8_t, char>}, {kStreamUInt8, pushNext<uint8_t, char>},
    {kStreamInt16, pushNext<int16_t>},     {kStreamInt32, pushNext<int32_t>},
    {kStreamUInt16, pushNext<uint16_t>},   {kStreamUInt32, pushNext<uint32_t>},
    {kStreamInt64, pushNext<int64_t>},     {kStreamUInt64, pushNext<uint64_t>},
    {kStreamDouble, pushNext<double>},     {kStreamText, pushNextText},
    {kStreamOldText, pushNextText},
};

// Boxes the next item; false for a type that no message takes.
bool boxNext(StringStream* stream, BoxList* boxes) {
    const char tag = stream->peek();
    for (const TagReader& reader : kReaders)
        if (reader.tag == tag) return reader.push(stream, boxes);
    return false;
}

void logStream(Logger* logger, const char* text, int level, StringStream* arguments) {
    if (!logWanted(level)) return;
    BoxList boxes;
    while (arguments->peek() != kStreamAny)
        if (!boxNext(arguments, &boxes)) return logDispatchList(logger, text, level, nullptr);
    logDispatchList(logger, text, level, boxes.get());
}

}  // namespace

LoggerShellCpp::LoggerShellCpp() : logger_(logCreate()) {}

LoggerShellCpp::~LoggerShellCpp() {
    logDestroy(&logger_);
}

bool LoggerShellCpp::isDebug() const {
    return logger_ != nullptr && logIsDebug();
}

void LoggerShellCpp::fatal(const char* text) {
    logFatal(logger_, text);
}

void LoggerShellCpp::error(const char* text) {
    logError(logger_, text);
}

void LoggerShellCpp::info(const char* text) {
    logInfo(logger_, text);
}

void LoggerShellCpp::verbose(const char* text) {
    logVerbose(logger_, text);
}

void LoggerShellCpp::debug(const char* text) {
    logDebug(logger_, text);
}

void LoggerShellCpp::fatal(const char* text, StringStream arguments) {
    logStream(logger_, text, kLogFatal, &arguments);
}

void LoggerShellCpp::error(const char* text, StringStream arguments) {
    logStream(logger_, text, kLogError, &arguments);
}

}  // namespace Quorel
