#pragma once

#include <cstdint>

struct String;

// Services of this machine, by name. The functions do not log.

// None only looks whether the service is there.
enum class ServiceAction { None, GetState, Stop, Start };

// What was under way when a service could not be controlled.
enum class ServiceStep { Manager, Open, GetState, Stop, Start };

// Does the action without waiting for what comes of it. True when it is done:
// GetState puts the word for the state into `text`, the others leave it as it
// is. False otherwise, and then `text` says why, as far as there is memory.
bool serviceControl(const String* name, ServiceAction action, String* text);

// What a failed step with the system's error number is called: a format for the
// service's name and the number. It is never null.
const char* serviceErrorFormat(ServiceStep step, uint32_t error);

// The word for a state's number, "error" for one that is none.
const char* serviceStateWord(uint32_t state);
