#pragma once

#include <cstdint>

#include "sockets/Sockets.h"
#include "strings/String.h"

// The words with which a receiver answers: each is padded with "_" to one length
// on the wire. The table is made by the first use, which must be that of one
// thread, and ends with the program.

constexpr uint32_t kControlWordSize = 13;

// Registers a word and what stands for it on the wire. False for a word that is
// longer than that, for one that is registered already, and when memory runs out.
bool sockAddWord(const char* word, const char* padded);

// Sends a word; false when it is not in the table or the send fails.
bool sockSendWordStr(Socket socket, const String* word);
bool sockSendWord(Socket socket, const char* word);

// Waits for a word and gives it as the table holds it; null when none came, or
// bytes that are no word.
const String* sockReceiveWord(Socket socket);
