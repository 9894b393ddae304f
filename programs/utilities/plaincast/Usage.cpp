#include "PlainCast.h"
#include "logger/StandardOutput.h"
#include "platform/console.h"
#include "streams/StringStream.h"

namespace Quorel {

namespace {

constexpr const char* kUsageLines[] = {
    "Quorel Tools PlainCast",
    "Usage: quorel_plaincast <options>",
    "",
    "Options:",
    "  --info --verboxe --debug --trace : Set debug level",
    "  --silent           : Don't output anything",
    "  --period <seconds> : Set minimum runtime in seconds",
    "  --script <script>  : Specify script to run",
    "  --parse            : Will parse the script, but not execute",
    "  --startfunc <name> : Specify start function in script",
    "                       (Default: main)",
    "  --var <var>=<val>  : Set a pre-defined global variable",
    "  --help             : Show this text",
    "",
};

}  // namespace

bool PlainCast::printUsage(bool toStdout) {
    StringStream stream;
    for (const char* line : kUsageLines) stream << line << "\r\n";
    const StringCpp text = stream.str();
    const std::string_view bytes = stringView(text.string());
    if (toStdout) {
        outputWrite(bytes);
    } else {
        outputFlush();
        osConsoleWrite(OsOutput::Error, bytes.data(), bytes.size(), nullptr);
    }
    return toStdout;
}

}  // namespace Quorel
