#include <algorithm>
#include <string_view>

#include "containers/Memory.h"
#include "containers/Set.h"
#include "strings/StringNumbers.h"
#include "strings/StringSplit.h"
#include "text/RecordDiff.h"

namespace {

constexpr uint32_t kStandardLines = 1;
constexpr uint32_t kStandardDecimals = 8;

// Cuts a text at a separator. Quotes, which are dropped, keep what is between
// them together. A backslash is dropped, too, and takes its meaning from a
// backslash or a quote behind it, but not from a separator.
class RuleTokens {
  public:
    RuleTokens(std::string_view text, char separator) : rest_(text), separator_(separator) {}

    // Puts the next token that is not empty into `token`. False at the end, and
    // when memory runs out, which `failed` tells.
    bool next(String* token) {
        stringClear(token);
        while (!failed_ && !rest_.empty()) {
            readToken(token);
            if (token->length > 0) return !failed_;
        }
        return false;
    }
    bool failed() const { return failed_; }

  private:
    static constexpr char kNoQuote = 0;

    void readToken(String* token) {
        char quote = kNoQuote;
        bool escaped = false;
        while (!failed_ && !rest_.empty()) {
            const char c = rest_.front();
            rest_.remove_prefix(1);
            const bool literal = escaped;
            escaped = c == '\\' && !literal;
            if (escaped) continue;
            if (c == separator_ && quote == kNoQuote) return;
            if (!literal && takesAsQuote(c, &quote)) continue;
            failed_ = !stringAppendChar(token, c);
        }
    }

    static bool takesAsQuote(char c, char* quote) {
        const bool opens = *quote == kNoQuote && (c == '\'' || c == '"');
        const bool closes = *quote != kNoQuote && c == *quote;
        if (opens) *quote = c;
        if (closes) *quote = kNoQuote;
        return opens || closes;
    }

    std::string_view rest_;
    char separator_;
    bool failed_ = false;
};

template <typename T>
void elementDelete(void** element) {
    auto* record = static_cast<T*>(*element);
    *element = nullptr;
    memDelete(&record);
}

void sepListDestroy(void** element) {
    auto* list = static_cast<List*>(*element);
    *element = nullptr;
    listDestroyWith(&list, elementDelete<DiffSep>);
}

void numberSetDestroy(void** element) {
    auto* set = static_cast<Set*>(*element);
    *element = nullptr;
    setDestroyWith(&set, keyDestroy);
}

// Hands a new element to the vector, or ends it when it is refused.
bool addElement(Vector* vector, void* element, DestroyFunction destroy) {
    if (element == nullptr) return false;
    if (vectorAppend(vector, element)) return true;
    destroy(&element);
    return false;
}

template <bool kExclude>
bool addFilter(DiffRules* rules, std::string_view value) {
    auto* filter = memNew<DiffFilter>();
    if (filter == nullptr) return false;
    filter->exclude = kExclude;
    if (stringPatternPrepare(&filter->pattern, value) && listPushBack(rules->filters, filter))
        return true;
    memDelete(&filter);
    return false;
}

// A letter, a byte of no meaning, a value, and perhaps a plus sign.
bool addSep(List* list, std::string_view text) {
    auto* sep = memNew<DiffSep>();
    if (sep == nullptr) return false;
    std::string_view value = text.substr(std::min<size_t>(2, text.size()));
    sep->repeat = value.ends_with('+');
    if (sep->repeat) value.remove_suffix(1);
    sep->kind = text.front() == 'S' ? kDiffText : kDiffColumn;
    sep->width = text.front() == 'C' ? textToUInt32(value) : 0;
    if (stringSetView(&sep->value, value) && listPushBack(list, sep)) return true;
    memDelete(&sep);
    return false;
}

bool addSeps(DiffRules* rules, std::string_view value) {
    List* list = listCreate();
    if (!addElement(rules->seps, list, sepListDestroy)) return false;
    RuleTokens tokens(value, ',');
    LocalString token;
    while (tokens.next(&token))
        if (!addSep(list, stringView(&token))) return false;
    return !tokens.failed();
}

template <Vector* DiffRules::*kSets>
bool addNumbers(DiffRules* rules, std::string_view value) {
    LocalString text;
    return stringSetView(&text, value) &&
           addElement(rules->*kSets, stringSplitToNumberSet(&text, ','), numberSetDestroy);
}

template <uint32_t DiffRules::*kNumber>
bool setNumber(DiffRules* rules, std::string_view value) {
    rules->*kNumber = textToUInt32(value);
    return true;
}

struct RuleKey {
    std::string_view name;
    bool (*take)(DiffRules* rules, std::string_view value);
};

constexpr RuleKey kKeys[] = {
    {"exclude", addFilter<true>},
    {"include", addFilter<false>},
    {"lines", setNumber<&DiffRules::lines>},
    {"sep", addSeps},
    {"block", addNumbers<&DiffRules::blocks>},
    {"num", addNumbers<&DiffRules::nums>},
    {"declevel", setNumber<&DiffRules::declevel>},
};

bool takeEntry(DiffRules* rules, std::string_view entry) {
    const size_t cut = entry.find('=');
    const std::string_view name = entry.substr(0, cut);
    const std::string_view value =
        cut == std::string_view::npos ? std::string_view() : entry.substr(cut + 1);
    for (const RuleKey& key : kKeys)
        if (key.name == name) return key.take(rules, value);
    return true;
}

DiffRules* createRules() {
    Owned<DiffRules> rules(memNew<DiffRules>(
        DiffRules{nullptr, kStandardLines, nullptr, nullptr, nullptr, kStandardDecimals}));
    if (!rules) return nullptr;
    rules->filters = listCreate();
    rules->seps = vectorCreate();
    rules->blocks = vectorCreate();
    rules->nums = vectorCreate();
    const bool whole = rules->filters != nullptr && rules->seps != nullptr &&
                       rules->blocks != nullptr && rules->nums != nullptr;
    return whole ? rules.release() : nullptr;
}

}  // namespace

DiffRules* diffCompile(const String* ruleText) {
    if (ruleText == nullptr) return nullptr;
    Owned<DiffRules> rules(createRules());
    if (!rules) return nullptr;
    RuleTokens entries(stringView(ruleText), '|');
    LocalString entry;
    while (entries.next(&entry))
        if (!takeEntry(rules.get(), stringView(&entry))) return nullptr;
    return entries.failed() ? nullptr : rules.release();
}

void diffRulesDestroy(DiffRules** rules) {
    if (rules == nullptr || *rules == nullptr) return;
    listDestroyWith(&(*rules)->filters, elementDelete<DiffFilter>);
    vectorDestroyWith(&(*rules)->seps, sepListDestroy);
    vectorDestroyWith(&(*rules)->blocks, numberSetDestroy);
    vectorDestroyWith(&(*rules)->nums, numberSetDestroy);
    memDelete(rules);
}
