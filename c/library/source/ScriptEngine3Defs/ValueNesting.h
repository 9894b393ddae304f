#pragma once

#include "ScriptEngine3Defs/ScriptObject.h"
#include "platform/program.h"

// Values can hold values, and through pointers also themselves. An operation
// that walks into them stops at a value that it is in already, and at a depth
// that no script reaches by intention, and then fails as a whole.
constexpr int kMaxValueNesting = 5000;
// The walk may begin in the depths of a recursion: this much stack is left to
// what a level calls.
constexpr size_t kValueStackReserve = 64 * 1024;

// True when no further level of values may be entered.
inline bool valueNestingEnds(int depth) {
    return depth >= kMaxValueNesting || osStackLeft() < kValueStackReserve;
}

// One operation on a value and all that it holds.
class ValueWalk {
  public:
    bool tripped() const { return tripped_; }

    // Calls `work()`, which gives a bool, inside the object; false when the
    // object cannot be entered.
    template <typename Work>
    bool inside(const ScriptObject* object, Work work) {
        if (tripped_ || (object->flags & kObjectInWalk) != 0 || valueNestingEnds(depth_)) {
            tripped_ = true;
            return false;
        }
        object->flags |= kObjectInWalk;
        ++depth_;
        const bool result = work();
        --depth_;
        object->flags &= ~kObjectInWalk;
        return result && !tripped_;
    }

  private:
    int depth_ = 0;
    bool tripped_ = false;
};
