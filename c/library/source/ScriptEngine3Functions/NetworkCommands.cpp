#include "ScriptEngine3Functions/NetworkCommands.h"

#include <cmath>

#include "ScriptEngine3Defs/ScriptListener.h"
#include "ScriptEngine3Functions/ContainerArguments.h"
#include "sockets/Transfer.h"
#include "strings/StringNumbers.h"

namespace {

constexpr std::string_view kListTag = "@list";
constexpr std::string_view kMapTag = "@map";

int answer(bool done) {
    return done ? kDone : kNegative;
}

// The arguments of a command on a socket, which comes first, or on a port.
class NetworkArguments : public Arguments {
  public:
    using Arguments::Arguments;

    Socket socket(uint32_t index) { return numberToInt64(std::round(number(index))); }
    uint32_t port(uint32_t index) { return numberToUInt32(std::round(number(index))); }
    uint32_t size(uint32_t index) { return numberToUInt32(number(index)); }

    // An argument that must be one of the containers of values. Null with a
    // failure reported.
    ScriptObject* container(uint32_t index, const char* name) {
        ScriptObject* object = target(index);
        if (object == nullptr || object->type == kTypeVector || object->type == kTypeList ||
            object->type == kTypeSet)
            return object;
        logError(engine_->logger, "%s: Second parameter must be a vector, a list or a set", name);
        return fail();
    }
};

int scriptEngineConnect(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    constexpr uint32_t kTries = 3;
    NetworkArguments in(engine, block, args);
    const String* host = in.string(0);
    const uint32_t port = in.port(1);
    ScriptObject* target = in.retyped(2, kTypeNumber);
    if (!in.ok()) return in.status();
    const Socket socket = sockConnect(host, port, 0, kTries);
    if (socket == kNoSocket) return kNegative;
    target->number = static_cast<double>(socket);
    return kDone;
}

// A good close counts as a negative result: its word for that is not 0.
int scriptEngineCloseConnection(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    NetworkArguments in(engine, block, args);
    const Socket socket = in.socket(0);
    if (!in.ok()) return in.status();
    return sockClose(socket) != 0 ? kNegative : kDone;
}

int scriptEngineStartListener(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    NetworkArguments in(engine, block, args);
    const uint32_t port = in.port(0);
    if (!in.ok()) return in.status();
    Owned<ScriptListener> listener(scriptListenerCreate(engine, port));
    if (!listener || !mapInsert(engine->listeners, &listener->port, listener.get()))
        return commandOutOfMemory(engine, "scriptEngineStartListener");
    if (scriptListenerStart(listener.get())) {
        listener.release();
        return kDone;
    }
    // Another one may listen on the same port.
    MapNode* node = mapFirstNode(engine->listeners);
    while (node->value != listener.get()) node = mapNextNode(engine->listeners, node);
    mapEraseNode(engine->listeners, node, nullptr, nullptr);
    return kNegative;
}

int scriptEngineEndListener(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    NetworkArguments in(engine, block, args);
    const uint32_t port = in.port(0);
    if (!in.ok()) return in.status();
    MapNode* node = mapFindNode(engine->listeners, &port);
    if (node == nullptr) return kNegative;
    auto* listener = static_cast<ScriptListener*>(node->value);
    if (!scriptListenerStop(listener)) return kNegative;
    scriptConnectionsDrop(engine, port);
    mapEraseNode(engine->listeners, node, nullptr, nullptr);
    scriptListenerDestroy(&listener);
    return kDone;
}

struct PeerTargets {
    ScriptObject* socket;
    ScriptObject* host;  // null where the script does not ask
    ScriptObject* port;
};

PeerTargets peerTargets(NetworkArguments* in) {
    return {in->retyped(1, kTypeNumber), in->count() > 2 ? in->retyped(2, kTypeString) : nullptr,
            in->count() > 3 ? in->retyped(3, kTypeNumber) : nullptr};
}

// Targets may be one and the same variable, so each gets its type as it is written.
void setNumber(ScriptObject* target, double value) {
    if (target != nullptr && scriptObjectRetype(target, kTypeNumber)) target->number = value;
}

int scriptEngineGetNextConn(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    NetworkArguments in(engine, block, args);
    const uint32_t port = in.port(0);
    peerTargets(&in);
    // Again: a target that was a container may have held another one.
    const PeerTargets targets = peerTargets(&in);
    if (!in.ok()) return in.status();
    const Owned<ScriptConnection> connection(scriptConnectionTake(engine, port));
    if (!connection) return kNegative;
    setNumber(targets.socket, static_cast<double>(connection->socket));
    if (targets.host != nullptr && scriptObjectRetype(targets.host, kTypeString))
        stringTake(&targets.host->string, connection->peerHost);
    setNumber(targets.port, connection->peerPort);
    connection->socket = kNoSocket;  // the script's from now on
    return kDone;
}

int scriptEngineSendRaw(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    NetworkArguments in(engine, block, args);
    const Socket socket = in.socket(0);
    const String* bytes = in.string(1);
    const uint32_t count = in.size(2);
    if (!in.ok()) return in.status();
    if (count > bytes->length) return kNegative;
    return answer(sockSend(socket, stringBytes(bytes), count) == kSockDone);
}

int scriptEngineSendString(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    NetworkArguments in(engine, block, args);
    const Socket socket = in.socket(0);
    const String* text = in.string(1);
    if (!in.ok()) return in.status();
    return answer(sockSendString(socket, text));
}

int scriptEngineSendNumber(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    NetworkArguments in(engine, block, args);
    const Socket socket = in.socket(0);
    const double value = in.number(1);
    if (!in.ok()) return in.status();
    return answer(sockSendDouble(socket, value));
}

bool sendHead(Socket socket, std::string_view tag, uint32_t count) {
    LocalString text;
    return stringSetView(&text, tag) && sockSendString(socket, &text) &&
           sockSendUInt32(socket, count);
}

// The text of a value, in `scratch` where it is no string; null without one.
const String* valueText(ScriptEngine* engine, const void* value, String* scratch) {
    const auto* object = static_cast<const ScriptObject*>(value);
    if (object != nullptr && object->type == kTypeString) return &object->string;
    stringClear(scratch);
    return scriptObjectAppendString(engine, object, scratch) ? scratch : nullptr;
}

int scriptEngineSendList(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    constexpr const char* kName = "scriptEngineSendList";
    NetworkArguments in(engine, block, args);
    const Socket socket = in.socket(0);
    const ScriptObject* list = in.container(1, kName);
    if (!in.ok()) return in.status();
    if (!sendHead(socket, kListTag, scriptContainerCount(list))) return kNegative;
    LocalString scratch;
    int status = kDone;
    scriptContainerEach(list, [&](const ScriptObject* element) {
        const String* text = valueText(engine, element, &scratch);
        status = text == nullptr ? commandOutOfMemory(engine, kName)
                                 : answer(sockSendString(socket, text));
        return status == kDone;
    });
    return status;
}

int scriptEngineSendMap(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    NetworkArguments in(engine, block, args);
    const Socket socket = in.socket(0);
    const ScriptObject* object = in.typed(1, kTypeMap);
    if (!in.ok()) return in.status();
    const Map* map = object->map.map;
    if (!sendHead(socket, kMapTag, mapCount(map))) return kNegative;
    LocalString keyScratch;
    LocalString valueScratch;
    for (const MapNode* node = mapFirstNode(map); node != nullptr; node = mapNextNode(map, node)) {
        const String* key = valueText(engine, node->data, &keyScratch);
        const String* value = valueText(engine, node->value, &valueScratch);
        if (key == nullptr || value == nullptr)
            return commandOutOfMemory(engine, "scriptEngineSendMap");
        if (!sockSendString(socket, key) || !sockSendString(socket, value)) return kNegative;
    }
    return kDone;
}

int scriptEngineRecvRaw(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    NetworkArguments in(engine, block, args);
    const Socket socket = in.socket(0);
    uint32_t count = in.size(2);
    ScriptObject* target = in.retyped(1, kTypeString);
    if (!in.ok()) return in.status();
    LocalString bytes;
    if (!stringReserve(&bytes, count)) return commandOutOfMemory(engine, "scriptEngineRecvRaw");
    if (sockReceive(socket, stringBytes(&bytes), &count) != kSockDone) return kNegative;
    stringSetLength(&bytes, count);
    stringReserve(&bytes, count);
    stringTake(&target->string, &bytes);
    return kDone;
}

int scriptEngineRecvString(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    NetworkArguments in(engine, block, args);
    const Socket socket = in.socket(0);
    ScriptObject* target = in.retyped(1, kTypeString);
    if (!in.ok()) return in.status();
    const Owned<String> text(sockReceiveString(socket));
    return answer(text && stringTake(&target->string, text.get()));
}

int scriptEngineRecvNumber(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    NetworkArguments in(engine, block, args);
    const Socket socket = in.socket(0);
    ScriptObject* target = in.retyped(1, kTypeNumber);
    if (!in.ok()) return in.status();
    return answer(sockReceiveDouble(socket, &target->number));
}

bool receiveHead(Socket socket, std::string_view tag, uint32_t* count) {
    const Owned<String> text(sockReceiveString(socket));
    return text && stringView(text.get()) == tag && sockReceiveUInt32(socket, count);
}

// Receives a string as an object; null, with what the command gives then in
// `*status`, when none came or memory runs out.
ScriptObject* receiveValue(ScriptEngine* engine, Socket socket, const char* name, int* status) {
    const Owned<String> text(sockReceiveString(socket));
    *status = kNegative;
    if (!text) return nullptr;
    ScriptObject* value = scriptObjectCreate(kTypeString);
    if (value == nullptr)
        *status = commandOutOfMemory(engine, name);
    else
        stringTake(&value->string, text.get());
    return value;
}

int scriptEngineRecvList(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    constexpr const char* kName = "scriptEngineRecvList";
    NetworkArguments in(engine, block, args);
    const Socket socket = in.socket(0);
    ScriptObject* list = in.container(1, kName);
    if (!in.ok()) return in.status();
    uint32_t count = 0;
    if (!receiveHead(socket, kListTag, &count)) return kNegative;
    for (; count > 0; --count) {
        int status;
        Owned<ScriptObject> value(receiveValue(engine, socket, kName, &status));
        if (!value) return status;
        if (!containerAdd(list, value.get())) return commandOutOfMemory(engine, kName);
        value.release();
    }
    return kDone;
}

int scriptEngineRecvMap(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args, int) {
    constexpr const char* kName = "scriptEngineRecvMap";
    NetworkArguments in(engine, block, args);
    const Socket socket = in.socket(0);
    ScriptObject* map = in.target(1, kTypeMap);
    if (!in.ok()) return in.status();
    uint32_t count = 0;
    if (!receiveHead(socket, kMapTag, &count)) return kNegative;
    for (; count > 0; --count) {
        int status;
        Owned<ScriptObject> key(receiveValue(engine, socket, kName, &status));
        if (!key) return status;
        Owned<ScriptObject> value(receiveValue(engine, socket, kName, &status));
        if (!value) return status;
        if (!mapPut(map, &key, &value)) return commandOutOfMemory(engine, kName);
    }
    return kDone;
}

constexpr uint32_t kNumberSize = 4;

int scriptEngineToNetworkByteOrder(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args,
                                   int) {
    NetworkArguments in(engine, block, args);
    const uint32_t value = in.size(0);
    ScriptObject* target = in.retyped(1, kTypeString);
    if (!in.ok()) return in.status();
    char bytes[kNumberSize];
    for (uint32_t at = 0; at < kNumberSize; ++at)
        bytes[at] = static_cast<char>(value >> (8 * (kNumberSize - 1 - at)));
    return stringSetBytes(&target->string, bytes, kNumberSize)
               ? kDone
               : commandOutOfMemory(engine, "scriptEngineToNetworkByteOrder");
}

// Bytes that the text lacks count as 0.
int scriptEngineFromNetworkByteOrder(ScriptEngine* engine, ScriptBlock* block, ScriptArgs* args,
                                     int) {
    NetworkArguments in(engine, block, args);
    const std::string_view bytes = stringView(in.string(0));
    ScriptObject* target = in.retyped(1, kTypeNumber);
    if (!in.ok()) return in.status();
    uint32_t value = 0;
    for (uint32_t at = 0; at < kNumberSize; ++at)
        value = value << 8 | (at < bytes.size() ? static_cast<uint8_t>(bytes[at]) : 0);
    target->number = value;
    return kDone;
}

constexpr CommandRow kNetworkCommands[] = {
    // name         handler              min max targets
    {"connect", scriptEngineConnect, 3, 3, nullptr},
    {"closeconnection", scriptEngineCloseConnection, 1, 1, nullptr},
    {"startlistener", scriptEngineStartListener, 1, 1, nullptr},
    {"endlistener", scriptEngineEndListener, 1, 1, nullptr},
    {"getnextconn", scriptEngineGetNextConn, 2, 4, "2,3,4"},
    {"sendraw", scriptEngineSendRaw, 3, 3, nullptr},
    {"sendstring", scriptEngineSendString, 2, 2, nullptr},
    {"sendnumber", scriptEngineSendNumber, 2, 2, nullptr},
    {"sendlist", scriptEngineSendList, 2, 2, "2"},
    {"sendmap", scriptEngineSendMap, 2, 2, "2"},
    {"recvraw", scriptEngineRecvRaw, 3, 3, "2"},
    {"recvstring", scriptEngineRecvString, 2, 2, "2"},
    {"recvnumber", scriptEngineRecvNumber, 2, 2, "2"},
    {"recvlist", scriptEngineRecvList, 2, 2, "2"},
    {"recvmap", scriptEngineRecvMap, 2, 2, "2"},
    {"tonetworkbyteorder", scriptEngineToNetworkByteOrder, 2, 2, "2"},
    {"fromnetworkbyteorder", scriptEngineFromNetworkByteOrder, 2, 2, "2"},
};

}  // namespace

std::span<const CommandRow> networkCommands() {
    return kNetworkCommands;
}
