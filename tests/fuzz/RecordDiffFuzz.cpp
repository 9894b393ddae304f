#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "text/RecordDiff.h"

// The input's first line is a text of rules; what follows are two texts with a zero
// byte between them.

namespace {

void require(bool holds) {
    if (!holds) std::abort();
}

std::string_view cut(std::string_view* rest, char separator) {
    const std::string_view part = rest->substr(0, rest->find(separator));
    rest->remove_prefix(std::min(part.size() + 1, rest->size()));
    return part;
}

int64_t differences(const String* left, const String* right, const DiffRules* rules) {
    Vector* out = vectorCreate();
    const int64_t count = diffRun(left, right, rules, out);
    require(count >= -1 && vectorSize(out) == count + 1);
    vectorDestroyWith(&out, stringDestroyElement);
    return count;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::string_view rest(reinterpret_cast<const char*>(data), size);
    const Owned<String> ruleText(stringFromView(cut(&rest, '\n')));
    const Owned<DiffRules> rules(diffCompile(ruleText.get()));
    require(static_cast<bool>(rules));
    const Owned<String> left(stringFromView(cut(&rest, '\0')));
    const Owned<String> right(stringFromView(rest));
    const int64_t there = differences(left.get(), right.get(), rules.get());
    const int64_t back = differences(right.get(), left.get(), rules.get());
    // What the rules can cut they can cut on both sides.
    require((there < 0) == (back < 0));
    // Every record finds its equal as long as all are within reach.
    if (std::ranges::count(stringView(left.get()), '\n') < 400)
        require(differences(left.get(), left.get(), rules.get()) <= 0);
    return 0;
}
