#pragma once

#include <string_view>

// The one owner of standard output. What scripts print and what is logged go
// through the same block of memory, so that they come out in the order in which
// they were made. Bytes are not translated. Any thread may call.

// Appends bytes; they go out in one piece with respect to other threads. On a
// terminal they are written out at each line end, else when 64 KiB have
// collected. After a failed write (output closed, disk full) what could not be
// written is dropped, and later output is tried again.
void outputWrite(std::string_view bytes);

// Writes out what has collected. False when the system refused a part of it.
bool outputFlush();

// The same for a thread that must not wait for another: gives up, with false,
// when the output is still in use after `milliseconds`.
bool outputTryFlush(unsigned milliseconds);
