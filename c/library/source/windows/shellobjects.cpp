#include "platform/shellobjects.h"

#include <windows.h>

bool osShellLibraryLoad(OsShellLibrary* library) {
    HMODULE module = LoadLibraryA("quorel_shellobj.dll");
    if (module == nullptr) return false;
    library->handle = module;
    void* found = reinterpret_cast<void*>(GetProcAddress(module, "shellObjGetPath"));
    library->getPath = reinterpret_cast<OsShellGetPath>(found);
    if (library->getPath == nullptr) osShellLibraryRelease(library);
    return library->getPath != nullptr;
}

void osShellLibraryRelease(OsShellLibrary* library) {
    if (library->handle != nullptr) FreeLibrary(static_cast<HMODULE>(library->handle));
    *library = OsShellLibrary();
}
