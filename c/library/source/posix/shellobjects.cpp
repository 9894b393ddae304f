#include "platform/shellobjects.h"

#include <dlfcn.h>

bool osShellLibraryLoad(OsShellLibrary* library) {
    library->handle = dlopen("quorel_shellobj.so", RTLD_NOW | RTLD_LOCAL);
    if (library->handle == nullptr) return false;
    library->getPath = reinterpret_cast<OsShellGetPath>(dlsym(library->handle, "shellObjGetPath"));
    if (library->getPath == nullptr) osShellLibraryRelease(library);
    return library->getPath != nullptr;
}

void osShellLibraryRelease(OsShellLibrary* library) {
    if (library->handle != nullptr) dlclose(library->handle);
    *library = OsShellLibrary();
}
