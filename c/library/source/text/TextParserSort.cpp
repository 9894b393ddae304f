#include <algorithm>

#include "text/TextParserBlock.h"

// Lines are sorted by groups of seven bytes: each line's next group goes into a
// number whose order is that of the bytes, the numbers are sorted, and lines with
// the same number are sorted by the group behind it. So a line is read once for
// each group that others share, and not for each comparison. Equal lines cannot
// be told apart, so it does not matter how they change places.

namespace {

constexpr unsigned kGroupBytes = 7;

struct SortItem {
    uint64_t key;
    size_t line;  // index in the block
};

// Items that are equal in their first `depth` bytes.
struct SortRange {
    size_t begin;
    size_t end;
    size_t depth;
};

// Seven bytes from `depth` on, and in the lowest byte how many there are; more
// than seven count as one more. Bytes are signed: the sign bit is turned, so that
// those from 128 up come first. A line that ends comes before one that goes on,
// also where that goes on with the lowest byte.
uint64_t keyAt(std::string_view line, size_t depth) {
    const size_t left = line.size() - depth;
    const size_t taken = std::min<size_t>(left, kGroupBytes);
    uint64_t key = 0;
    for (size_t at = 0; at < taken; ++at)
        key = key << 8 | (static_cast<unsigned char>(line[depth + at]) ^ 0x80U);
    key <<= 8 * (kGroupBytes - taken);
    return key << 8 | std::min<size_t>(left, kGroupBytes + 1);
}

bool goesOn(uint64_t key) {
    return (key & 0xFF) > kGroupBytes;
}

class Sorting {
  public:
    explicit Sorting(ParserBlock* block) : block_(block) {}

    // False when memory runs out; then the block is as it was.
    bool run(bool descending) {
        const size_t count = block_->lines.size();
        GrowArray<std::string_view> sorted;
        if (!items_.reserve(count) || !sorted.reserve(count)) return false;
        for (size_t at = 0; at < count; ++at) items_.push({0, at});
        if (!ranges_.push({0, count, 0})) return false;
        while (!ranges_.empty())
            if (!sortRange(ranges_.pop())) return false;
        if (descending) std::reverse(items_.begin(), items_.end());
        for (const SortItem& item : items_) sorted.push(block_->lines[item.line]);
        std::copy(sorted.begin(), sorted.end(), block_->lines.begin());
        return true;
    }

  private:
    bool sortRange(SortRange range) {
        SortItem* begin = items_.data() + range.begin;
        SortItem* end = items_.data() + range.end;
        bool equal = true;
        for (SortItem* item = begin; item != end; ++item) {
            item->key = keyAt(block_->lines[item->line], range.depth);
            equal = equal && item->key == begin->key;
        }
        if (!equal)
            std::sort(begin, end,
                      [](const SortItem& a, const SortItem& b) { return a.key < b.key; });
        return pushGroups(range);
    }

    // Lines with the same key that all go on have to be sorted further.
    bool pushGroups(const SortRange& range) {
        for (size_t at = range.begin; at < range.end;) {
            const uint64_t key = items_[at].key;
            const size_t first = at;
            while (at < range.end && items_[at].key == key) ++at;
            if (at - first > 1 && goesOn(key) &&
                !ranges_.push({first, at, range.depth + kGroupBytes}))
                return false;
        }
        return true;
    }

    ParserBlock* block_;
    GrowArray<SortItem> items_;
    GrowArray<SortRange> ranges_;
};

}  // namespace

bool parserSort(ParserBlock* block, bool descending) {
    if (block == nullptr) return false;
    if (block->sorted) return true;
    if (!Sorting(block).run(descending)) return false;
    block->sorted = true;
    return true;
}
