#pragma once

#include <cstdint>

#include "sockets/Sockets.h"
#include "strings/String.h"

// The protocol that two programs of this kind speak over a connection: numbers
// as texts behind their length, strings in chunks that the receiver acknowledges
// one by one. Nothing on the wire tells what comes next: both ends know. A stream
// that got out of step stays so; the connection is only good for closing then.

constexpr uint32_t kTransferChunk = 8192;

// A number field. False when a send fails.
bool sockSendUInt32(Socket socket, uint32_t value);
bool sockSendDouble(Socket socket, double value);

// Reads a number field; false, with the value as it was, when none came or its
// length byte is none. Digits are read as far as they are digits.
bool sockReceiveUInt32(Socket socket, uint32_t* value);
bool sockReceiveDouble(Socket socket, double* value);

// True once the receiver has acknowledged all of the string. A receiver that
// asks for a chunk again gets it again, as often as it asks.
bool sockSendString(Socket socket, const String* string);

// A new string that the caller owns; null when it did not come whole. Memory is
// taken as the bytes come, whatever length was announced.
String* sockReceiveString(Socket socket);
