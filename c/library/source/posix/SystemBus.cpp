#include "posix/SystemBus.h"

#include <dlfcn.h>

namespace {

template <typename Function>
bool find(void* handle, const char* name, Function** function) {
    *function = reinterpret_cast<Function*>(dlsym(handle, name));
    return *function != nullptr;
}

struct Loaded {
    SystemBusLibrary library = {};
    bool isThere = false;

    Loaded() {
        void* handle = dlopen("libsystemd.so.0", RTLD_NOW | RTLD_LOCAL);
        isThere = handle != nullptr && find(handle, "sd_bus_open_system", &library.open) &&
                  find(handle, "sd_bus_ref", &library.ref) &&
                  find(handle, "sd_bus_unref", &library.unref) &&
                  find(handle, "sd_bus_call_method", &library.callMethod) &&
                  find(handle, "sd_bus_get_property", &library.getProperty) &&
                  find(handle, "sd_bus_message_read", &library.read) &&
                  find(handle, "sd_bus_message_unref", &library.messageUnref) &&
                  find(handle, "sd_bus_error_free", &library.errorFree);
    }
};

}  // namespace

const SystemBusLibrary* systemBusLibrary() {
    static const Loaded loaded;
    return loaded.isThere ? &loaded.library : nullptr;
}
