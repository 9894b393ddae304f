#include "strings/StringSplit.h"

#include <string_view>

#include "containers/List.h"
#include "containers/Memory.h"
#include "containers/Set.h"
#include "containers/Vector.h"
#include "strings/StringNumbers.h"

namespace {

// Calls `take(item, isTail)` for each item, where the tail is what follows the
// last separator, until one is refused.
template <typename Take>
bool forEachItem(const String* s, char separator, Take take) {
    std::string_view rest = stringView(s);
    while (!rest.empty()) {
        const size_t cut = rest.find(separator);
        const bool isTail = cut == std::string_view::npos;
        if (!take(rest.substr(0, cut), isTail)) return false;
        rest.remove_prefix(isTail ? rest.size() : cut + 1);
    }
    return true;
}

// Hands a new element to the container, or ends it when it is refused.
template <typename Add>
bool addItem(void* item, DestroyFunction destroy, Add add) {
    if (item == nullptr) return false;
    if (add(item)) return true;
    destroy(&item);
    return false;
}

template <typename Add>
bool splitTexts(const String* s, char separator, Add add) {
    return forEachItem(s, separator, [&](std::string_view item, bool) {
        return addItem(stringFromView(item), stringDestroyElement, add);
    });
}

// The tail of a list is read with its sign, which shows where a number is too long.
template <typename Add>
bool splitNumbers(const String* s, char separator, bool signedTail, Add add) {
    return forEachItem(s, separator, [&](std::string_view item, bool isTail) {
        const uint32_t number =
            signedTail && isTail ? static_cast<uint32_t>(textToInt32(item)) : textToUInt32(item);
        return addItem(keyFromUnsigned(number), keyDestroy, add);
    });
}

}  // namespace

List* stringSplitToList(const String* s, char separator) {
    List* list = s == nullptr ? nullptr : listCreate();
    if (list == nullptr) return nullptr;
    if (!splitTexts(s, separator, [list](void* item) { return listPushBack(list, item); }))
        listDestroyWith(&list, stringDestroyElement);
    return list;
}

Vector* stringSplitToVector(const String* s, char separator) {
    Vector* vector = s == nullptr ? nullptr : vectorCreate();
    if (vector == nullptr) return nullptr;
    if (!splitTexts(s, separator, [vector](void* item) { return vectorAppend(vector, item); }))
        vectorDestroyWith(&vector, stringDestroyElement);
    return vector;
}

List* stringSplitToNumberList(const String* s, char separator) {
    List* list = s == nullptr ? nullptr : listCreate();
    if (list == nullptr) return nullptr;
    if (!splitNumbers(s, separator, true, [list](void* item) { return listPushBack(list, item); }))
        listDestroyWith(&list, keyDestroy);
    return list;
}

Vector* stringSplitToNumberVector(const String* s, char separator) {
    Vector* vector = s == nullptr ? nullptr : vectorCreate();
    if (vector == nullptr) return nullptr;
    if (!splitNumbers(s, separator, false,
                      [vector](void* item) { return vectorAppend(vector, item); }))
        vectorDestroyWith(&vector, keyDestroy);
    return vector;
}

Set* stringSplitToNumberSet(const String* s, char separator) {
    Set* set = s == nullptr ? nullptr : setCreate(compareUnsigned);
    if (set == nullptr) return nullptr;
    if (!splitNumbers(s, separator, false, [set](void* item) { return setInsert(set, item); }))
        setDestroyWith(&set, keyDestroy);
    return set;
}
