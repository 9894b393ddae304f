#pragma once

struct String;

enum class ShellAnswer { Rewritten, Unknown, NoLibrary, NoMemory };

// Lets the optional library for shell objects rewrite the path; whatever the
// answer but `Rewritten`, the path stays. The library is loaded for each call.
ShellAnswer pathAskShell(String* path);
