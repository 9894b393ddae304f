#include "text/RecordDiffWalk.h"

#include "containers/Vector.h"

namespace {

// What stands around one item in a text.
struct Around {
    const char* before;
    const char* after;
};

constexpr Around kOnlyLeft = {"left : ", "\nrmiss\n"};
constexpr Around kOnlyRight = {"right: ", "\nlmiss\n"};
// At the last item of the other side the line does not end behind the item. On
// purpose or not: scripts that read these texts know it so.
constexpr Around kOnlyLeftAtEnd = {"left : ", "rmiss\n"};
constexpr Around kOnlyRightAtEnd = {"right: ", "lmiss\n"};
constexpr Around kLeftOfBoth = {"left : ", "\n"};
constexpr Around kRightOfBoth = {"right: ", "\ndiff\n"};

class Walk {
  public:
    Walk(const DiffRows& rows, Vector* out) : rows_(rows), out_(out) {}

    bool run() {
        while (good_ && i_ < rows_.leftCount && j_ < rows_.rightCount) step();
        for (; good_ && i_ < rows_.leftCount; ++i_) onlyLeft(kOnlyLeft, i_);
        for (; good_ && j_ < rows_.rightCount; ++j_) onlyRight(kOnlyRight, j_);
        return good_;
    }

  private:
    bool same(uint32_t i, uint32_t j) const {
        return i < rows_.leftCount && j < rows_.rightCount &&
               rows_.same(rows_.left, i, rows_.right, j);
    }

    void step() {
        const bool lastLeft = i_ + 1 == rows_.leftCount;
        const bool lastRight = j_ + 1 == rows_.rightCount;
        if (same(i_, j_)) return both();
        if (same(i_ + 1, j_)) return onlyLeft(lastRight ? kOnlyLeftAtEnd : kOnlyLeft, i_++);
        if (same(i_, j_ + 1)) return onlyRight(lastLeft ? kOnlyRightAtEnd : kOnlyRight, j_++);
        differ();
        both();
    }

    void both() {
        ++i_;
        ++j_;
    }

    bool append(String* text, const Around& around, const void* row, uint32_t at) const {
        return stringAppendText(text, around.before) && rows_.show(row, at, text) &&
               stringAppendText(text, around.after);
    }

    void onlyLeft(const Around& around, uint32_t at) {
        Owned<String> text(stringNewEmpty());
        hand(append(text.get(), around, rows_.left, at), &text);
    }

    void onlyRight(const Around& around, uint32_t at) {
        Owned<String> text(stringNewEmpty());
        hand(append(text.get(), around, rows_.right, at), &text);
    }

    void differ() {
        Owned<String> text(stringNewEmpty());
        hand(append(text.get(), kLeftOfBoth, rows_.left, i_) &&
                 append(text.get(), kRightOfBoth, rows_.right, j_),
             &text);
    }

    void hand(bool made, Owned<String>* text) {
        good_ = made && vectorAppend(out_, text->get());
        if (good_) text->release();
    }

    const DiffRows& rows_;
    Vector* out_;
    uint32_t i_ = 0;
    uint32_t j_ = 0;
    bool good_ = true;
};

}  // namespace

bool diffWalk(const DiffRows& rows, Vector* out) {
    return Walk(rows, out).run();
}
