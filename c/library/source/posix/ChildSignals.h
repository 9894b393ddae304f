#pragma once

#include <spawn.h>

// Gives a child that is about to be started the signals as we found them: what
// we block, catch or ignore for our own sake means the usual again in it. To be
// called before the flags of `attributes` are set otherwise; it adds its own.
// Gives the system's error number, 0 for success.
int posixChildSignals(posix_spawnattr_t* attributes);
