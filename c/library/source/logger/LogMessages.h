#pragma once

// Loads the message catalogue from the file "logmsg.conf" of the configured
// directory, else of the current directory or the search path, each with its
// parents. Counts its users: the first one loads. False when there is no file,
// which stops nothing: references then show as they stand.
bool logMessagesInit();

// Releases what the last user leaves behind.
void logMessagesDone();
