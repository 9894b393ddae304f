#pragma once

#include <concepts>
#include <cstdint>

#include "strings/String.h"
#include "strings/StringCpp.h"

// A sequence of values of mixed types, written with `<<` and read back with `>>`
// in the same order, each kept as text under a tag of one letter. It has
// nothing to do with streams of bytes or files.

namespace Quorel {

// What an item holds.
enum StreamTag : char {
    kStreamBool = 'b',   // one byte, 0 or 1
    kStreamInt8 = 'c',   // the byte itself
    kStreamUInt8 = 'C',  // the byte itself
    kStreamInt16 = 'i',  // decimal text, as in all that follow
    kStreamUInt16 = 'I',
    kStreamInt32 = 'l',
    kStreamUInt32 = 'L',
    kStreamInt64 = 'v',
    kStreamUInt64 = 'V',
    kStreamDouble = 'f',
    kStreamText = 's',
    kStreamOldText = 'S',  // read as text; never written
    kStreamAny = 'a',      // never stored: any type in a read, no item in a peek
};

struct StreamItem {
    char tag = kStreamAny;
    StringCpp value;
};

// Eight numbers and a byte that travel together, as nine items.
struct StreamRecord {
    uint32_t fields[8];
    uint8_t last;
};

// Refers to a point in time (milliseconds since 1900), which travels as a
// number. An inserter reads what it points at, an extractor writes there.
struct StreamTime {
    uint64_t* time;
};

class BasicStream {
  public:
    virtual ~BasicStream() = default;

    // Adds a copy of the item at the end; false when memory runs out.
    virtual bool pushItem(const StreamItem& item) = 0;
    // Copies the next item out, and with `advance` goes on to the one behind it.
    // False, with nothing changed, when none is left or memory runs out.
    virtual bool getItem(StreamItem* item, bool advance) = 0;

    // Each adds a value; `streamWrite` tells whether it could be stored.
    virtual BasicStream& operator<<(const StreamRecord& record) = 0;
    virtual BasicStream& operator<<(const StreamTime& time) = 0;
    virtual BasicStream& operator<<(const char* text) = 0;
    virtual BasicStream& operator<<(const String* text) = 0;
    virtual BasicStream& operator<<(const StringCpp& text) = 0;
    virtual BasicStream& operator<<(double value) = 0;
    virtual BasicStream& operator<<(uint64_t value) = 0;
    virtual BasicStream& operator<<(int64_t value) = 0;
    virtual BasicStream& operator<<(uint32_t value) = 0;
    virtual BasicStream& operator<<(int32_t value) = 0;
    virtual BasicStream& operator<<(uint16_t value) = 0;
    virtual BasicStream& operator<<(int16_t value) = 0;
    virtual BasicStream& operator<<(uint8_t value) = 0;
    virtual BasicStream& operator<<(int8_t value) = 0;
    virtual BasicStream& operator<<(bool value) = 0;

    // Each reads the next item into its target; `streamRead` tells how that went.
    virtual BasicStream& operator>>(StreamRecord& record) = 0;
    virtual BasicStream& operator>>(const StreamTime& time) = 0;
    virtual BasicStream& operator>>(String* text) = 0;
    virtual BasicStream& operator>>(StringCpp& text) = 0;
    virtual BasicStream& operator>>(double& value) = 0;
    virtual BasicStream& operator>>(uint64_t& value) = 0;
    virtual BasicStream& operator>>(int64_t& value) = 0;
    virtual BasicStream& operator>>(uint32_t& value) = 0;
    virtual BasicStream& operator>>(int32_t& value) = 0;
    virtual BasicStream& operator>>(uint16_t& value) = 0;
    virtual BasicStream& operator>>(int16_t& value) = 0;
    virtual BasicStream& operator>>(uint8_t& value) = 0;
    virtual BasicStream& operator>>(int8_t& value) = 0;
    virtual BasicStream& operator>>(bool& value) = 0;

  protected:
    BasicStream() = default;
    BasicStream(const BasicStream&) = default;
    BasicStream& operator=(const BasicStream&) = default;
};

enum StreamResult {
    kStreamRead = 0,
    kStreamOtherType = 1,  // the item is skipped all the same
    kStreamEnd = 2,
};

template <typename T>
concept StreamNumber = std::same_as<T, double> || std::same_as<T, uint64_t> ||
    std::same_as<T, int64_t> || std::same_as<T, uint32_t> || std::same_as<T, int32_t> ||
    std::same_as<T, uint16_t> || std::same_as<T, int16_t> || std::same_as<T, uint8_t> ||
    std::same_as<T, int8_t> || std::same_as<T, bool>;

// The inserters as functions: false when the item cannot be stored, and for a
// null stream. A null text is stored as an empty one. A double is kept with six
// decimals less the trailing zeros, by the rule of `stringTrimNumber`.
bool streamWrite(BasicStream* stream, const StreamRecord& record);
bool streamWrite(BasicStream* stream, const StreamTime& time);
bool streamWrite(BasicStream* stream, const char* text);
bool streamWrite(BasicStream* stream, const String* text);
bool streamWrite(BasicStream* stream, const StringCpp& text);
template <StreamNumber T>
bool streamWrite(BasicStream* stream, T value);

// The extractors as functions. Unless the result is kStreamRead the target takes
// zero or the empty text. A record ends with the first field that cannot be
// read, whose result it gives; the fields before it stay.
StreamResult streamRead(BasicStream* stream, StreamRecord* record);
StreamResult streamRead(BasicStream* stream, const StreamTime& time);
StreamResult streamRead(BasicStream* stream, String* text);
StreamResult streamRead(BasicStream* stream, StringCpp* text);
template <StreamNumber T>
StreamResult streamRead(BasicStream* stream, T* value);

// Reads the next item as text if it has the tag `wanted`, or whatever its type
// for kStreamAny; the text is its value also for kStreamOtherType.
StreamResult streamReadTagged(BasicStream* stream, char wanted, StringCpp* text);

}  // namespace Quorel
