#include <algorithm>
#include <utility>

#include "strings/StringFormat.h"
#include "text/RecordDiff.h"
#include "text/RecordDiffRecords.h"

namespace {

bool appendRecord(const DiffRecord& record, uint32_t linesPerRecord, String* out) {
    bool good =
        stringAppendFormat(out, "%s(%u):", record.isLeft ? "orig " : "new  ", record.lineNumber);
    for (uint32_t line = 0; good && line < record.lineCount; ++line) {
        good = stringAppendText(out, linesPerRecord > 1 ? "\n\t" : "\t");
        const DiffLine& fields = record.lines[line];
        for (uint32_t at = 0; good && at < fields.count; ++at)
            good =
                (at == 0 || stringAppendChar(out, '|')) && stringAppendView(out, fields.fields[at]);
    }
    return good && stringAppendChar(out, '\n');
}

// The numbers of the fields that differ or that only one of the two lines has.
bool appendFields(const DiffLine& a, const DiffLine& b, uint32_t line, bool oneLine, String* out) {
    const uint32_t shared = std::min(a.count, b.count);
    const uint32_t all = std::max(a.count, b.count);
    bool good = true;
    for (uint32_t at = 0; good && at < all; ++at) {
        if (at < shared && a.fields[at] == b.fields[at]) continue;
        good = oneLine ? stringAppendFormat(out, " %u", at + 1)
                       : stringAppendFormat(out, " %u:%u", line + 1, at + 1);
    }
    return good;
}

bool appendDifferences(const DiffRecord& a, const DiffRecord& b, uint32_t linesPerRecord,
                       String* out) {
    const bool oneLine = linesPerRecord == 1;
    const uint32_t shared = std::min(a.lineCount, b.lineCount);
    const uint32_t all = std::max(a.lineCount, b.lineCount);
    bool good = stringAppendText(out, oneLine ? "DIFF (field)" : "DIFF (line:field)");
    for (uint32_t line = 0; good && line < shared; ++line)
        good = appendFields(a.lines[line], b.lines[line], line, oneLine, out);
    for (uint32_t line = shared; good && line < all; ++line)
        good = stringAppendFormat(out, " %u:", line + 1);
    return good;
}

// Hands a new text to the vector, or ends it when it is refused.
bool addText(Vector* out, Owned<String> text) {
    if (!text || !vectorAppend(out, text.get())) return false;
    text.release();
    return true;
}

bool addEntry(const DiffRecord* left, const DiffRecord* right, uint32_t lines, Vector* out) {
    Owned<String> text(stringNewEmpty());
    if (left != nullptr && !appendRecord(*left, lines, text.get())) return false;
    if (right != nullptr && !appendRecord(*right, lines, text.get())) return false;
    const bool good = left == nullptr    ? stringAppendText(text.get(), "MISSING in original")
                      : right == nullptr ? stringAppendText(text.get(), "MISSING in new")
                                         : appendDifferences(*left, *right, lines, text.get());
    return good && addText(out, std::move(text));
}

}  // namespace

bool diffReport(const Vector* left, const Vector* right, const DiffRules* rules, Vector* out) {
    uint32_t differences = 0;
    uint32_t same = 0;
    for (uint32_t at = 0; at < vectorSize(left); ++at) {
        auto* record = static_cast<DiffRecord*>(vectorGet(left, at));
        if (record->partner != nullptr) record->partner->used = true;
        if (record->used) {
            ++same;
            continue;
        }
        record->used = true;
        ++differences;
        if (!addEntry(record, record->partner, rules->lines, out)) return false;
    }
    for (uint32_t at = 0; at < vectorSize(right); ++at) {
        auto* record = static_cast<DiffRecord*>(vectorGet(right, at));
        if (record->used) continue;
        record->used = true;
        ++differences;
        if (!addEntry(nullptr, record, rules->lines, out)) return false;
    }
    return addText(out, Owned<String>(stringFormatNew("%u diff of total %u record(s)", differences,
                                                      differences + same)));
}
