#include "ScriptEngine3Functions/MissingCommands.h"

#include <algorithm>
#include <cstddef>

#include "ScriptEngine3Defs/ScriptEngineRecord.h"

namespace {

// A name as a parameter of a template: a handler is not told its command's name.
template <size_t N>
struct CommandName {
    constexpr CommandName(const char (&name)[N]) { std::copy_n(name, N, text); }
    char text[N];
};

template <CommandName kName>
int missing(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    if (engine == nullptr || block == nullptr || args == nullptr) return kInvalidCall;
    return scriptEngineMissingCommand(engine, kName.text);
}

constexpr CommandRow kNetworkCommands[] = {
    {"connect", missing<"connect">, 3, 3, nullptr},
    {"closeconnection", missing<"closeconnection">, 1, 1, nullptr},
    {"startlistener", missing<"startlistener">, 1, 1, nullptr},
    {"endlistener", missing<"endlistener">, 1, 1, nullptr},
    {"getnextconn", missing<"getnextconn">, 2, 4, "2,3,4"},
    {"sendraw", missing<"sendraw">, 3, 3, nullptr},
    {"sendstring", missing<"sendstring">, 2, 2, nullptr},
    {"sendnumber", missing<"sendnumber">, 2, 2, nullptr},
    {"sendlist", missing<"sendlist">, 2, 2, "2"},
    {"sendmap", missing<"sendmap">, 2, 2, "2"},
    {"recvraw", missing<"recvraw">, 3, 3, "2"},
    {"recvstring", missing<"recvstring">, 2, 2, "2"},
    {"recvnumber", missing<"recvnumber">, 2, 2, "2"},
    {"recvlist", missing<"recvlist">, 2, 2, "2"},
    {"recvmap", missing<"recvmap">, 2, 2, "2"},
    {"tonetworkbyteorder", missing<"tonetworkbyteorder">, 2, 2, "2"},
    {"fromnetworkbyteorder", missing<"fromnetworkbyteorder">, 2, 2, "2"},
};

}  // namespace

int scriptEngineMissingCommand(ScriptEngine* engine, const char* name) {
    logError(engine->logger, "The command \"%s\" is missing from this build", name);
    return kError;
}

std::span<const CommandRow> networkCommands() {
    return kNetworkCommands;
}
