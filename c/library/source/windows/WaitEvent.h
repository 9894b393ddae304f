#pragma once

#include <windows.h>

struct OsEvent;

// What a wait of the system takes for the event; null for null.
HANDLE windowsEventHandle(const OsEvent* event);
