#pragma once

#include <sys/types.h>

#include <string>

// The name of the user with the id; false when there is none.
bool posixUserName(uid_t user, std::string* name);
