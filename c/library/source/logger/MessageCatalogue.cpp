#include "logger/MessageCatalogue.h"

#include "containers/Map.h"
#include "containers/Memory.h"

namespace {

Map* catalogue = nullptr;

}  // namespace

bool messageCatalogueCreate() {
    if (catalogue == nullptr) catalogue = mapCreate(compareUnsigned);
    return catalogue != nullptr;
}

bool messageCatalogueExists() {
    return catalogue != nullptr;
}

uint32_t messageCatalogueCount() {
    return mapCount(catalogue);
}

bool messageCatalogueAdd(uint32_t number, std::string_view text) {
    void* key = keyFromUnsigned(number);
    Owned<String> copy(stringFromView(text));
    if (key == nullptr || !copy || !mapInsert(catalogue, key, copy.get())) {
        keyDestroy(&key);
        return false;
    }
    copy.release();
    return true;
}

const String* messageCatalogueFind(uint32_t number) {
    return static_cast<const String*>(mapGet(catalogue, &number));
}

void messageCatalogueDestroy() {
    mapDestroyWith(&catalogue, keyDestroy, stringDestroyElement);
}
