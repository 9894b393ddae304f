#pragma once

#include <cstddef>
#include <cstdint>

// The process's three standard streams, raw: bytes are not translated and not
// buffered. Functions with an int result give the system's error number, 0 for
// success.

enum class OsOutput { Standard, Error };

// Once, before anything else uses the streams: makes them binary and sees to it
// that no file opened later takes the place of one that was closed when we
// started. No failure of the process brings up a window from here on.
void osConsolePrepare();

// Writes all of the bytes, waiting as long as the reader needs. After a failure
// `written` (may be null) tells how many went out. A reader that has gone is a failure.
int osConsoleWrite(OsOutput output, const void* data, size_t size, size_t* written);

// The same, giving up after about `milliseconds` with what then was written,
// for a process that has to end now.
int osConsoleTryWrite(OsOutput output, const void* data, size_t size, uint32_t milliseconds,
                      size_t* written);

// Whether a person looks at the output.
bool osConsoleIsTerminal(OsOutput output);

// Reads up to `size` bytes of standard input, waiting for the first; `got` is 0
// at its end, and also when it was closed when we started.
int osConsoleRead(void* buffer, size_t size, size_t* got);
