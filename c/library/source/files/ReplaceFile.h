#pragma once

#include <string_view>

// Files that are written anew as a whole: whoever looks, and whoever comes after
// a crash, finds the old one or the new one, and never a part.

// Makes `temporary` for the bytes that are to take the place of `file`: a new file,
// so that what a killed process left there, or a link, is not written to, and one
// that nobody else can read when `file` has rights of its own. Where that fails
// the opening of the temporary file tells.
void fileReplacePrepare(std::string_view file, std::string_view temporary);

// Gives `file` these bytes, and keeps its rights as far as the system lets us.
// They are written to a file beside it, which is gone afterwards. Gives the
// system's error number, 0 for success; after a failure the old file is there.
int fileReplace(std::string_view file, std::string_view bytes);
