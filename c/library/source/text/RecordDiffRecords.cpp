#include "text/RecordDiffRecords.h"

#include <algorithm>

#include "containers/List.h"
#include "containers/Set.h"
#include "strings/StringCompare.h"
#include "strings/StringFormat.h"
#include "strings/StringMatch.h"
#include "strings/StringNumbers.h"
#include "text/RecordDiff.h"

namespace {

// Where a rewritten field seems to be until its own place is known.
constexpr char kNoPlaceYet[kFormatDoubleMax] = {};

// Cuts one text into the records of a side. While the arrays grow, lines know
// only how many fields they have, and records how many lines.
class Reader {
  public:
    Reader(const DiffRules& rules, DiffSide* side) : rules_(rules), side_(side) {}

    bool read(std::string_view text, bool isLeft) {
        // Such records would take no lines from the text.
        if (rules_.lines == 0 && !text.empty()) return false;
        rest_ = text;
        while (!rest_.empty())
            if (!readRecord(isLeft)) return false;
        settle();
        return true;
    }

  private:
    std::string_view takeLine() {
        const std::string_view line = rest_.substr(0, rest_.find('\n'));
        rest_.remove_prefix(std::min(line.size() + 1, rest_.size()));
        ++linesRead_;
        return line;
    }

    bool readRecord(bool isLeft) {
        DiffRecord record{nullptr,         0,      linesRead_ + 1, nullptr,
                          kDiffNoDistance, isLeft, /*used=*/false};
        for (uint32_t n = 0; n < rules_.lines && !rest_.empty(); ++n) {
            const std::string_view line = takeLine();
            if (isExcluded(line)) continue;
            if (!cutLine(line, n)) return false;
            ++record.lineCount;
        }
        return record.lineCount == 0 || side_->records.push(record);
    }

    bool isExcluded(std::string_view line) const {
        for (const ListNode* at = listFirstNode(rules_.filters); at != nullptr;
             at = listNextNode(rules_.filters, at)) {
            const auto* filter = static_cast<const DiffFilter*>(at->value);
            if (stringPatternMatches(&filter->pattern, line)) return filter->exclude;
        }
        return false;
    }

    struct End {
        size_t field;
        size_t skipped;  // behind what parts the field from the next
    };

    static End findEnd(std::string_view line, size_t pos, const DiffSep& sep) {
        if (sep.kind == kDiffColumn) {
            const size_t end = std::min(pos + sep.width, line.size());
            return {end, end};
        }
        const size_t found = line.find(stringView(&sep.value), pos);
        // A separator that begins the line is none.
        const size_t end = found == 0 || found == std::string_view::npos ? line.size() : found;
        return {end, end + sep.value.length};
    }

    bool cutLine(std::string_view line, uint32_t index) {
        const uint32_t count = vectorSize(rules_.seps);
        if (count == 0) return false;
        const auto* seps =
            static_cast<const List*>(vectorGet(rules_.seps, std::min(index, count - 1)));
        const size_t before = side_->fields.size();
        size_t pos = 0;
        for (const ListNode* at = listFirstNode(seps); at != nullptr && pos < line.size();) {
            const auto* sep = static_cast<const DiffSep*>(at->value);
            const End end = findEnd(line, pos, *sep);
            // It would give empty fields without end.
            if (sep->repeat && end.skipped == pos) return false;
            const auto number = static_cast<uint32_t>(side_->fields.size() - before + 1);
            if (!addField(line.substr(pos, end.field - pos), index, number)) return false;
            pos = end.skipped;
            if (!sep->repeat) at = listNextNode(seps, at);
        }
        return side_->lines.push({nullptr, static_cast<uint32_t>(side_->fields.size() - before)});
    }

    bool addField(std::string_view piece, uint32_t index, uint32_t number) {
        if (isListed(rules_.blocks, index, number))
            piece = std::string_view();
        else if (isListed(rules_.nums, index, number)) {
            char text[kFormatDoubleMax];
            const uint32_t length = formatDouble(textToDouble(piece), 'f', rules_.declevel, text);
            if (!stringAppendBytes(&side_->rewritten, text, length)) return false;
            piece = std::string_view(kNoPlaceYet, length);
        }
        return side_->fields.push(piece);
    }

    static bool isListed(const Vector* sets, uint32_t index, uint32_t number) {
        const auto* set = static_cast<const Set*>(vectorGet(sets, index));
        return set != nullptr && setContains(set, &number);
    }

    // Fills the places in, now that nothing moves any more.
    void settle() {
        const char* text = stringText(&side_->rewritten);
        for (std::string_view& field : side_->fields) {
            if (field.data() != kNoPlaceYet) continue;
            field = std::string_view(text, field.size());
            text += field.size();
        }
        const std::string_view* field = side_->fields.data();
        for (DiffLine& line : side_->lines) {
            line.fields = field;
            field += line.count;
        }
        const DiffLine* line = side_->lines.data();
        for (DiffRecord& record : side_->records) {
            record.lines = line;
            line += record.lineCount;
        }
    }

    const DiffRules& rules_;
    DiffSide* side_;
    std::string_view rest_;
    uint32_t linesRead_ = 0;
};

int compareLines(const DiffLine& a, const DiffLine& b) {
    const uint32_t shared = std::min(a.count, b.count);
    for (uint32_t at = 0; at < shared; ++at) {
        const int order = stringCompareViews(a.fields[at], b.fields[at]);
        if (order != 0) return order;
    }
    return (a.count > b.count) - (a.count < b.count);
}

uint32_t gap(uint32_t a, uint32_t b) {
    return a > b ? a - b : b - a;
}

}  // namespace

bool diffReadSide(const String* text, const DiffRules* rules, bool isLeft, DiffSide* side) {
    if (!Reader(*rules, side).read(stringView(text), isLeft)) return false;
    side->sorted.reset(vectorCreate());
    for (DiffRecord& record : side->records)
        if (!vectorAppend(side->sorted.get(), &record)) return false;
    vectorSort(side->sorted.get(), diffCompareRecords);
    return side->sorted && side->sorted->sorted != 0;
}

signed char diffCompareRecords(const void* left, const void* right) {
    const auto& a = *static_cast<const DiffRecord*>(left);
    const auto& b = *static_cast<const DiffRecord*>(right);
    const uint32_t shared = std::min(a.lineCount, b.lineCount);
    for (uint32_t at = 0; at < shared; ++at) {
        const int order = compareLines(a.lines[at], b.lines[at]);
        if (order != 0) return static_cast<signed char>(order);
    }
    return static_cast<signed char>((a.lineCount > b.lineCount) - (a.lineCount < b.lineCount));
}

uint32_t diffDistance(const DiffRecord& a, const DiffRecord& b, uint32_t limit) {
    const uint32_t shared = std::min(a.lineCount, b.lineCount);
    uint32_t distance = 0;
    for (uint32_t line = 0; line < shared; ++line) {
        const DiffLine& left = a.lines[line];
        const DiffLine& right = b.lines[line];
        distance += gap(left.count, right.count);
        const uint32_t both = std::min(left.count, right.count);
        for (uint32_t at = 0; at < both && distance < limit; ++at)
            distance += left.fields[at] != right.fields[at];
    }
    const DiffRecord& longer = a.lineCount > shared ? a : b;
    for (uint32_t line = shared; line < longer.lineCount; ++line)
        distance += longer.lines[line].count;
    return distance;
}
