#pragma once

#include "ScriptEngine3Defs/CommandDef.h"

// The command `processwaitquit`: waits until no process of a name runs, and ends
// those that still do when the time is over.
int scriptProcessWaitQuit(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int);
