#include "streams/BasicStream.h"

#include <string_view>

#include "strings/StringFormat.h"
#include "strings/StringNumbers.h"

namespace Quorel {

namespace {

// How a type becomes text and what it reads from one.
template <typename T>
struct Codec;

template <char Tag, typename T, T (*Read)(const StringCpp&)>
struct NumberCodec {
    static constexpr char kTag = Tag;
    static StringCpp encode(T value) { return stringCppFrom(value); }
    static T decode(const StringCpp& text) { return Read(text); }
};

template <char Tag, typename T>
struct ByteCodec {
    static constexpr char kTag = Tag;
    static StringCpp encode(T value) {
        StringCpp text;
        text = static_cast<char>(value);
        return text;
    }
    static T decode(const StringCpp& text) {
        const std::string_view bytes = stringView(text.string());
        return static_cast<T>(bytes.empty() ? 0 : bytes.front());
    }
};

template <>
struct Codec<bool> : ByteCodec<kStreamBool, bool> {
    static bool decode(const StringCpp& text) {
        return stringView(text.string()).starts_with('\1');
    }
};
template <>
struct Codec<int8_t> : ByteCodec<kStreamInt8, int8_t> {};
template <>
struct Codec<uint8_t> : ByteCodec<kStreamUInt8, uint8_t> {};
template <>
struct Codec<int16_t> : NumberCodec<kStreamInt16, int16_t, stringCppToInt16> {};
template <>
struct Codec<uint16_t> : NumberCodec<kStreamUInt16, uint16_t, stringCppToUInt16> {};
template <>
struct Codec<int32_t> : NumberCodec<kStreamInt32, int32_t, stringCppToInt32> {};
template <>
struct Codec<uint32_t> : NumberCodec<kStreamUInt32, uint32_t, stringCppToUInt32> {};
template <>
struct Codec<int64_t> : NumberCodec<kStreamInt64, int64_t, stringCppToInt64> {};
template <>
struct Codec<uint64_t> : NumberCodec<kStreamUInt64, uint64_t, stringCppToUInt64> {};

template <>
struct Codec<double> {
    static constexpr char kTag = kStreamDouble;
    static StringCpp encode(double value) {
        StringCpp text;
        stringFormat(text.string(), "%f", value);
        stringTrimNumber(text.string());
        return text;
    }
    static double decode(const StringCpp& text) { return stringToDouble(text.string()); }
};

bool pushText(BasicStream* stream, char tag, const StringCpp& text) {
    if (stream == nullptr || text.string() == nullptr) return false;
    StreamItem item;
    item.tag = tag;
    item.value = text;
    return item.value.string() != nullptr && item.value.string()->length == text.string()->length &&
           stream->pushItem(item);
}

bool isText(char tag) {
    return tag == kStreamText || tag == kStreamOldText;
}

}  // namespace

StreamResult streamReadTagged(BasicStream* stream, char wanted, StringCpp* text) {
    StreamItem item;
    if (stream == nullptr || text == nullptr || !stream->getItem(&item, true)) return kStreamEnd;
    *text = item.value;
    const bool same =
        wanted == kStreamAny || wanted == item.tag || (isText(wanted) && isText(item.tag));
    return same ? kStreamRead : kStreamOtherType;
}

template <StreamNumber T>
bool streamWrite(BasicStream* stream, T value) {
    const StringCpp text = Codec<T>::encode(value);
    return !text.isEmpty() && pushText(stream, Codec<T>::kTag, text);
}

template <StreamNumber T>
StreamResult streamRead(BasicStream* stream, T* value) {
    StringCpp text;
    const StreamResult result = streamReadTagged(stream, Codec<T>::kTag, &text);
    if (value != nullptr) *value = result == kStreamRead ? Codec<T>::decode(text) : T{};
    return result;
}

#define PLAINCAST_STREAM_TYPE(T)                   \
    template bool streamWrite<T>(BasicStream*, T); \
    template StreamResult streamRead<T>(BasicStream*, T*);
PLAINCAST_STREAM_TYPE(double)
PLAINCAST_STREAM_TYPE(uint64_t)
PLAINCAST_STREAM_TYPE(int64_t)
PLAINCAST_STREAM_TYPE(uint32_t)
PLAINCAST_STREAM_TYPE(int32_t)
PLAINCAST_STREAM_TYPE(uint16_t)
PLAINCAST_STREAM_TYPE(int16_t)
PLAINCAST_STREAM_TYPE(uint8_t)
PLAINCAST_STREAM_TYPE(int8_t)
PLAINCAST_STREAM_TYPE(bool)
#undef PLAINCAST_STREAM_TYPE

// The fields travel under the signed tags, though they are unsigned.
bool streamWrite(BasicStream* stream, const StreamRecord& record) {
    for (const uint32_t field : record.fields)
        if (!streamWrite(stream, static_cast<int32_t>(field))) return false;
    return streamWrite(stream, static_cast<int8_t>(record.last));
}

StreamResult streamRead(BasicStream* stream, StreamRecord* record) {
    if (record == nullptr) return kStreamEnd;
    for (uint32_t& field : record->fields) {
        int32_t value = 0;
        const StreamResult result = streamRead(stream, &value);
        field = static_cast<uint32_t>(value);
        if (result != kStreamRead) return result;
    }
    int8_t last = 0;
    const StreamResult result = streamRead(stream, &last);
    record->last = static_cast<uint8_t>(last);
    return result;
}

bool streamWrite(BasicStream* stream, const StreamTime& time) {
    return time.time != nullptr && streamWrite(stream, *time.time);
}

StreamResult streamRead(BasicStream* stream, const StreamTime& time) {
    return streamRead(stream, time.time);
}

bool streamWrite(BasicStream* stream, const char* text) {
    return pushText(stream, kStreamText, StringCpp(text == nullptr ? "" : text));
}

bool streamWrite(BasicStream* stream, const String* text) {
    return text == nullptr ? streamWrite(stream, "")
                           : pushText(stream, kStreamText, StringCpp(text));
}

bool streamWrite(BasicStream* stream, const StringCpp& text) {
    return pushText(stream, kStreamText, text);
}

StreamResult streamRead(BasicStream* stream, String* text) {
    StringCpp read;
    const StreamResult result = streamRead(stream, &read);
    stringSetView(text, stringView(read.string()));
    return result;
}

StreamResult streamRead(BasicStream* stream, StringCpp* text) {
    StringCpp read;
    const StreamResult result = streamReadTagged(stream, kStreamText, &read);
    if (text != nullptr) *text = result == kStreamRead ? read : StringCpp();
    return result;
}

}  // namespace Quorel
