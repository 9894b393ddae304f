#include <algorithm>

#include "text/RecordDiffRecords.h"

namespace {

// How far from its place in the order a partner is looked for, and how often
// records that lose their partner to another are paired again. Both keep large
// reports near n log n.
constexpr uint32_t kReach = 500;
constexpr uint32_t kMostDepth = 2;

struct Nearest {
    DiffRecord* record;
    uint32_t distance;
};

// The search goes outward from where the record stands or, when it does not
// stand there, from the middle.
Nearest findNearest(const DiffRecord& a, const Vector* right) {
    const uint32_t count = vectorSize(right);
    const int64_t found = vectorFind(right, &a, diffCompareRecords);
    const uint32_t start = found >= 0 ? static_cast<uint32_t>(found) : count / 2;
    const uint32_t reach = std::min(count, kReach);
    Nearest best{nullptr, kDiffNoDistance};
    const auto look = [&](uint32_t index) {
        auto* record = static_cast<DiffRecord*>(vectorGet(right, index));
        if (record == nullptr || record->used) return;
        const uint32_t distance = diffDistance(a, *record, best.distance);
        if (distance < best.distance) best = {record, distance};
    };
    for (uint32_t away = 0; away <= reach && best.distance != 0; ++away) {
        look(start + away);
        if (away > 0 && away <= start && best.distance != 0) look(start - away);
    }
    return best;
}

void join(DiffRecord* a, DiffRecord* c, uint32_t distance) {
    a->partner = c;
    c->partner = a;
    a->distance = distance;
    c->distance = distance;
}

void pairRecord(DiffRecord* a, const Vector* right, uint32_t depth);

// Pairs a record again as if `c` were not there.
void pairElsewhere(DiffRecord* a, DiffRecord* c, const Vector* right, uint32_t depth) {
    c->used = true;
    pairRecord(a, right, depth + 1);
    c->used = false;
}

void pairRecord(DiffRecord* a, const Vector* right, uint32_t depth) {
    if (depth >= kMostDepth) return;
    const Nearest nearest = findNearest(*a, right);
    DiffRecord* c = nearest.record;
    if (c == nullptr) return;
    if (nearest.distance == 0) {
        a->used = true;
        c->used = true;
        // What was paired with it keeps that partner when it finds no other: a
        // record that is gone shows what it was nearest to.
        if (c->partner != nullptr) pairRecord(c->partner, right, depth + 1);
    } else if (c->partner != nullptr) {
        if (nearest.distance >= c->distance) return pairElsewhere(a, c, right, depth);
        DiffRecord* old = c->partner;
        old->partner = nullptr;
        old->distance = kDiffNoDistance;
        pairElsewhere(old, c, right, depth);
    }
    join(a, c, nearest.distance);
}

}  // namespace

void diffPair(const Vector* left, const Vector* right) {
    for (uint32_t at = 0; at < vectorSize(left); ++at)
        pairRecord(static_cast<DiffRecord*>(vectorGet(left, at)), right, 0);
}
