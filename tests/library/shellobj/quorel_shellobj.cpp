#include <cstring>

// Stands in for the library of shell objects: it knows where "box" is.
extern "C" int shellObjGetPath(char* path) {
    const char* known = strstr(path, "box");
    if (known == nullptr || known[3] != '\0') return 0;
    return strcpy(path, "opened") != nullptr;
}
