#pragma once

#include <cstdint>
#include <string_view>

#include "strings/String.h"

// The texts behind the references `#::N`. Filled once before the first worker
// thread starts, then only read.

// Makes the empty catalogue; true when there is one afterwards.
bool messageCatalogueCreate();
bool messageCatalogueExists();
uint32_t messageCatalogueCount();

// Adds a text, which is copied. An earlier text of the same number is not
// replaced: which one a look-up finds is the tree's affair.
bool messageCatalogueAdd(uint32_t number, std::string_view text);

// Gives the text, which stays the catalogue's, or null.
const String* messageCatalogueFind(uint32_t number);

void messageCatalogueDestroy();
