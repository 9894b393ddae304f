#include "ScriptEngine3/ScriptLimits.h"

#include "strings/StringCompare.h"
#include "strings/StringSplit.h"
#include "system/SystemInfo.h"
#include "time/TimeParse.h"

namespace {

constexpr std::string_view kMatchesAll = "$qrx";
constexpr char kSeparator = ';';
constexpr char kNegation = '-';

// The places of a condition's bytes.
constexpr size_t kSignAt = 0;
constexpr size_t kLetterAt = 1;
constexpr size_t kColonAt = 2;
constexpr size_t kTextAt = 3;

const String* nameAt(const Vector* names, uint32_t at) {
    return static_cast<const String*>(vectorGet(names, at));
}

// A vector of Strings that lives in one function.
class Names {
  public:
    explicit Names(Vector* names) : names_(names) {}
    ~Names() { sysDestroyNames(&names_); }
    Names(const Names&) = delete;
    Names& operator=(const Names&) = delete;
    const Vector* get() const { return names_; }

  private:
    Vector* names_;
};

bool isNamed(const String* name, const GrowArray<std::string_view>& args) {
    for (const std::string_view arg : args)
        if (arg == stringView(name)) return true;
    return false;
}

bool matches(const String* a, const String* b) {
    return stringView(a) == kMatchesAll || stringView(b) == kMatchesAll ||
           stringCompareNoCase(a, b) == 0;
}

bool matchesOne(const String* name, const Vector* names) {
    for (uint32_t at = 0; at < vectorSize(names); ++at)
        if (matches(nameAt(names, at), name)) return true;
    return false;
}

// What a condition looks at, and its answer. False when it cannot be judged.
struct Condition {
    const ScriptUser& user;
    Time now;
    const String* text;
    bool holds = false;
};

bool userIs(Condition* condition) {
    condition->holds = matches(condition->user.name.get(), condition->text);
    return true;
}

bool userIsOneOf(Condition* condition) {
    const Names names(stringSplitToVector(condition->text, kSeparator));
    condition->holds = matchesOne(condition->user.name.get(), names.get());
    return names.get() != nullptr;
}

bool groupIs(Condition* condition) {
    condition->holds = matchesOne(condition->text, condition->user.groups);
    return true;
}

bool groupIsOneOf(Condition* condition) {
    const Names names(stringSplitToVector(condition->text, kSeparator));
    for (uint32_t at = 0; at < vectorSize(names.get()) && !condition->holds; ++at)
        condition->holds = matchesOne(nameAt(names.get(), at), condition->user.groups);
    return names.get() != nullptr;
}

// A part that is not there or empty leaves its bound as it is.
bool readBound(const String* part, Time* bound) {
    return stringIsEmpty(part) || timeFromText(bound, stringView(part));
}

bool timeIsWithin(Condition* condition) {
    const Names parts(stringSplitToVector(condition->text, kSeparator));
    Time from = 0;
    Time to = UINT64_MAX;
    if (parts.get() == nullptr || !readBound(nameAt(parts.get(), 0), &from) ||
        !readBound(nameAt(parts.get(), 1), &to))
        return false;
    condition->holds = from <= condition->now && condition->now <= to;
    return true;
}

struct ConditionKind {
    char letter;
    bool (*judge)(Condition* condition);
};

constexpr ConditionKind kConditionKinds[] = {
    {'U', userIsOneOf}, {'u', userIs}, {'G', groupIsOneOf}, {'g', groupIs}, {'t', timeIsWithin},
};

const ConditionKind* findKind(std::string_view token) {
    if (token.size() <= kTextAt || token[kColonAt] != ':') return nullptr;
    for (const ConditionKind& kind : kConditionKinds)
        if (kind.letter == token[kLetterAt]) return &kind;
    return nullptr;
}

}  // namespace

ScriptUser::ScriptUser() = default;

ScriptUser::~ScriptUser() {
    sysDestroyNames(&groups);
}

bool ScriptUser::readName() {
    name.reset(sysGetUser());
    return name.get() != nullptr;
}

bool ScriptUser::readGroups() {
    sysDestroyNames(&groups);
    groups = sysGetUserGroups(name.get());
    return groups != nullptr;
}

bool scriptUserIsNamed(const ScriptUser& user, const GrowArray<std::string_view>& args) {
    return isNamed(user.name.get(), args);
}

bool scriptGroupIsNamed(const ScriptUser& user, const GrowArray<std::string_view>& args) {
    for (uint32_t at = 0; at < vectorSize(user.groups); ++at)
        if (isNamed(nameAt(user.groups, at), args)) return true;
    return false;
}

LimitCheck scriptEngineCheckLimits(const GrowArray<std::string_view>& args) {
    ScriptUser user;
    if (!user.readName() || !user.readGroups()) return LimitCheck::Failed;
    return scriptCheckLimitsFor(user, timeNow(), args);
}

LimitCheck scriptCheckLimitsFor(const ScriptUser& user, Time now,
                                const GrowArray<std::string_view>& args) {
    for (const std::string_view token : args) {
        const ConditionKind* kind = findKind(token);
        if (kind == nullptr) continue;
        const Owned<String> text(stringFromView(token.substr(kTextAt)));
        Condition condition{user, now, text.get()};
        if (!text || !kind->judge(&condition)) return LimitCheck::Failed;
        if (condition.holds == (token[kSignAt] == kNegation)) return LimitCheck::Applies;
    }
    return LimitCheck::None;
}
