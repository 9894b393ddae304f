#pragma once

#include "strings/String.h"

struct List;
struct Vector;
struct Set;

// Cut a text at every separator. Each separator ends an item, also an empty
// one; what follows the last separator is an item only if it is not empty.
// The result and its items belong to the caller; null when memory runs out or
// the text is null.

// Items are String*.
List* stringSplitToList(const String* s, char separator);
Vector* stringSplitToVector(const String* s, char separator);

// Items are boxed uint32_t*; in the set they are in the order of the numbers,
// equal ones kept.
List* stringSplitToNumberList(const String* s, char separator);
Vector* stringSplitToNumberVector(const String* s, char separator);
Set* stringSplitToNumberSet(const String* s, char separator);
