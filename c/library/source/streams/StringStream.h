#pragma once

#include <cstdint>

#include "containers/GrowArray.h"
#include "streams/BasicStream.h"

namespace Quorel {

// A stream that keeps its items in memory. A plain value: a copy has the same
// items and begins at the first of them.
class StringStream : public BasicStream {
  public:
    StringStream() = default;
    StringStream(const StringStream& other);
    StringStream& operator=(const StringStream& other);
    ~StringStream() override;

    bool pushItem(const StreamItem& item) override;
    bool getItem(StreamItem* item, bool advance) override;

    BasicStream& operator<<(const StreamRecord& record) override;
    BasicStream& operator<<(const StreamTime& time) override;
    BasicStream& operator<<(const char* text) override;
    BasicStream& operator<<(const String* text) override;
    BasicStream& operator<<(const StringCpp& text) override;
    BasicStream& operator<<(double value) override;
    BasicStream& operator<<(uint64_t value) override;
    BasicStream& operator<<(int64_t value) override;
    BasicStream& operator<<(uint32_t value) override;
    BasicStream& operator<<(int32_t value) override;
    BasicStream& operator<<(uint16_t value) override;
    BasicStream& operator<<(int16_t value) override;
    BasicStream& operator<<(uint8_t value) override;
    BasicStream& operator<<(int8_t value) override;
    BasicStream& operator<<(bool value) override;

    BasicStream& operator>>(StreamRecord& record) override;
    BasicStream& operator>>(const StreamTime& time) override;
    BasicStream& operator>>(String* text) override;
    BasicStream& operator>>(StringCpp& text) override;
    BasicStream& operator>>(double& value) override;
    BasicStream& operator>>(uint64_t& value) override;
    BasicStream& operator>>(int64_t& value) override;
    BasicStream& operator>>(uint32_t& value) override;
    BasicStream& operator>>(int32_t& value) override;
    BasicStream& operator>>(uint16_t& value) override;
    BasicStream& operator>>(int16_t& value) override;
    BasicStream& operator>>(uint8_t& value) override;
    BasicStream& operator>>(int8_t& value) override;
    BasicStream& operator>>(bool& value) override;

    // Number of items, read ones included.
    uint32_t count() const { return static_cast<uint32_t>(items_.size()); }
    // The texts of all items, read ones included, in one piece.
    StringCpp str() const;
    // The tag of the next item; kStreamAny when none is left.
    char peek() const;

  private:
    void clear();

    GrowArray<StreamItem*> items_;  // owned
    uint32_t cursor_ = 0;           // the next item to read
};

}  // namespace Quorel
