#include "streams/StringStream.h"

#include "containers/Memory.h"
#include "containers/Owned.h"
#include "strings/String.h"

template <>
struct OwnedTraits<Quorel::StreamItem> {
    static void destroy(Quorel::StreamItem** item) { memDelete(item); }
};

namespace Quorel {

StringStream::StringStream(const StringStream& other) : BasicStream(other) {
    for (const StreamItem* item : other.items_)
        if (!pushItem(*item)) return;
}

StringStream& StringStream::operator=(const StringStream& other) {
    if (this == &other) return *this;
    clear();
    for (const StreamItem* item : other.items_)
        if (!pushItem(*item)) break;
    return *this;
}

StringStream::~StringStream() {
    clear();
}

void StringStream::clear() {
    for (StreamItem* item : items_) memDelete(&item);
    items_.clear();
    cursor_ = 0;
}

bool StringStream::pushItem(const StreamItem& item) {
    Owned<StreamItem> copy(memNew<StreamItem>(item));
    if (!copy || copy->value.string() == nullptr || !items_.push(copy.get())) return false;
    copy.release();
    return true;
}

bool StringStream::getItem(StreamItem* item, bool advance) {
    if (item == nullptr || cursor_ >= count()) return false;
    const StreamItem& next = *items_[cursor_];
    item->value = next.value;
    if (!(item->value == next.value)) return false;
    item->tag = next.tag;
    if (advance) ++cursor_;
    return true;
}

StringCpp StringStream::str() const {
    StringCpp text;
    for (const StreamItem* item : items_) text += item->value;
    return text;
}

char StringStream::peek() const {
    return cursor_ >= count() ? static_cast<char>(kStreamAny) : items_[cursor_]->tag;
}

BasicStream& StringStream::operator<<(const StreamRecord& record) {
    streamWrite(this, record);
    return *this;
}

BasicStream& StringStream::operator<<(const StreamTime& time) {
    streamWrite(this, time);
    return *this;
}

BasicStream& StringStream::operator<<(const char* text) {
    streamWrite(this, text);
    return *this;
}

BasicStream& StringStream::operator<<(const String* text) {
    streamWrite(this, text);
    return *this;
}

BasicStream& StringStream::operator<<(const StringCpp& text) {
    streamWrite(this, text);
    return *this;
}

BasicStream& StringStream::operator<<(double value) {
    streamWrite(this, value);
    return *this;
}

BasicStream& StringStream::operator<<(uint64_t value) {
    streamWrite(this, value);
    return *this;
}

BasicStream& StringStream::operator<<(int64_t value) {
    streamWrite(this, value);
    return *this;
}

BasicStream& StringStream::operator<<(uint32_t value) {
    streamWrite(this, value);
    return *this;
}

BasicStream& StringStream::operator<<(int32_t value) {
    streamWrite(this, value);
    return *this;
}

BasicStream& StringStream::operator<<(uint16_t value) {
    streamWrite(this, value);
    return *this;
}

BasicStream& StringStream::operator<<(int16_t value) {
    streamWrite(this, value);
    return *this;
}

BasicStream& StringStream::operator<<(uint8_t value) {
    streamWrite(this, value);
    return *this;
}

BasicStream& StringStream::operator<<(int8_t value) {
    streamWrite(this, value);
    return *this;
}

BasicStream& StringStream::operator<<(bool value) {
    streamWrite(this, value);
    return *this;
}

BasicStream& StringStream::operator>>(StreamRecord& record) {
    streamRead(this, &record);
    return *this;
}

BasicStream& StringStream::operator>>(const StreamTime& time) {
    streamRead(this, time);
    return *this;
}

BasicStream& StringStream::operator>>(String* text) {
    streamRead(this, text);
    return *this;
}

BasicStream& StringStream::operator>>(StringCpp& text) {
    streamRead(this, &text);
    return *this;
}

BasicStream& StringStream::operator>>(double& value) {
    streamRead(this, &value);
    return *this;
}

BasicStream& StringStream::operator>>(uint64_t& value) {
    streamRead(this, &value);
    return *this;
}

BasicStream& StringStream::operator>>(int64_t& value) {
    streamRead(this, &value);
    return *this;
}

BasicStream& StringStream::operator>>(uint32_t& value) {
    streamRead(this, &value);
    return *this;
}

BasicStream& StringStream::operator>>(int32_t& value) {
    streamRead(this, &value);
    return *this;
}

BasicStream& StringStream::operator>>(uint16_t& value) {
    streamRead(this, &value);
    return *this;
}

BasicStream& StringStream::operator>>(int16_t& value) {
    streamRead(this, &value);
    return *this;
}

BasicStream& StringStream::operator>>(uint8_t& value) {
    streamRead(this, &value);
    return *this;
}

BasicStream& StringStream::operator>>(int8_t& value) {
    streamRead(this, &value);
    return *this;
}

BasicStream& StringStream::operator>>(bool& value) {
    streamRead(this, &value);
    return *this;
}

}  // namespace Quorel
