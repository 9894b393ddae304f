#pragma once

#include <span>

#include "ScriptEngine3Defs/CommandDef.h"

// Bundles of files, and single files compressed.
std::span<const CommandRow> bundleCommands();
