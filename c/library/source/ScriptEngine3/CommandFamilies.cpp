#include "ScriptEngine3/CommandFamilies.h"

#include "ScriptEngine3/FlowCommands.h"
#include "ScriptEngine3Functions/BundleCommands.h"
#include "ScriptEngine3Functions/ConfigCommands.h"
#include "ScriptEngine3Functions/ConsoleCommands.h"
#include "ScriptEngine3Functions/DeclareCommands.h"
#include "ScriptEngine3Functions/DirectoryCommands.h"
#include "ScriptEngine3Functions/FileCommands.h"
#include "ScriptEngine3Functions/ListCommands.h"
#include "ScriptEngine3Functions/LockCommands.h"
#include "ScriptEngine3Functions/LogCommands.h"
#include "ScriptEngine3Functions/MapCommands.h"
#include "ScriptEngine3Functions/NetworkCommands.h"
#include "ScriptEngine3Functions/ParserCommands.h"
#include "ScriptEngine3Functions/PathCommands.h"
#include "ScriptEngine3Functions/ProcessCommands.h"
#include "ScriptEngine3Functions/RecordCommands.h"
#include "ScriptEngine3Functions/RegistryCommands.h"
#include "ScriptEngine3Functions/SetCommands.h"
#include "ScriptEngine3Functions/StringCommands.h"
#include "ScriptEngine3Functions/SystemCommands.h"
#include "ScriptEngine3Functions/TimeCommands.h"
#include "ScriptEngine3Functions/TreeCommands.h"
#include "ScriptEngine3Functions/ValueCommands.h"
#include "ScriptEngine3Functions/VectorCommands.h"
#include "ScriptEngine3Functions/WholeFileCommands.h"

std::span<const CommandFamily> commandFamilies() {
    static const CommandFamily families[] = {
        {directiveCommands()}, {declareCommands()},   {vectorCommands()},   {listCommands()},
        {setCommands()},       {mapCommands()},       {treeCommands()},     {fileObjectCommands()},
        {parserCommands()},    {recordCommands()},    {configCommands()},   {stringCommands()},
        {valueCommands()},     {flowCommands()},      {lockCommands()},     {consoleCommands()},
        {wholeFileCommands()}, {directoryCommands()}, {bundleCommands()},   {pathCommands()},
        {timeCommands()},      {processCommands()},   {registryCommands()}, {systemCommands()},
        {logCommands()},       {networkCommands()},
    };
    return families;
}
