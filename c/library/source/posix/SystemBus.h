#pragma once

#include <cstdint>

// libsystemd's client of the system's message bus, loaded when it is first asked
// for: the program starts, and does all else, where there is none. These are the
// declarations of <systemd/sd-bus.h> that are used, so that building needs no
// more than running does.

struct sd_bus;
struct sd_bus_message;
struct sd_bus_error {
    const char* name = nullptr;
    const char* message = nullptr;
    int needFree = 0;
};

struct SystemBusLibrary {
    int (*open)(sd_bus** bus);
    sd_bus* (*ref)(sd_bus* bus);
    sd_bus* (*unref)(sd_bus* bus);
    int (*callMethod)(sd_bus* bus, const char* destination, const char* path, const char* interface,
                      const char* member, sd_bus_error* error, sd_bus_message** reply,
                      const char* types, ...);
    int (*getProperty)(sd_bus* bus, const char* destination, const char* path,
                       const char* interface, const char* member, sd_bus_error* error,
                       sd_bus_message** reply, const char* type);
    int (*read)(sd_bus_message* message, const char* types, ...);
    sd_bus_message* (*messageUnref)(sd_bus_message* message);
    void (*errorFree)(sd_bus_error* error);
};

// The loaded library, which stays until the program ends; null where it is missing.
const SystemBusLibrary* systemBusLibrary();
