#include "sockets/SockErrors.h"

#include "platform/sockets.h"
#include "sockets/Sockets.h"
#include "strings/String.h"

namespace {

using Kind = OsSocketError;

constexpr unsigned kBoth = kSockSends | kSockReceives;

constexpr struct {
    Kind kind;
    const char* text;
    unsigned transfers;
} kTransferTexts[] = {
    {Kind::NotStarted, "WSANOTINITIALISED", kBoth},
    {Kind::NetDown, "WSAENETDOWN", kBoth},
    {Kind::Access, "WSAEACCES", kSockSends},
    {Kind::Interrupted, "WSAEINTR", kSockReceives},
    {Kind::InProgress, "WSAEINPROGRESS", kBoth},
    {Kind::Fault, "WSAEFAULT", kBoth},
    {Kind::NetReset, "WSAENETRESET", kBoth},
    {Kind::NoBuffers, "WSAENOBUFS", kSockSends},
    {Kind::NotConnected, "WSAENOTCONN", kBoth},
    {Kind::NotSocket, "WSAENOTSOCK", kBoth},
    {Kind::NotSupported, "WSAEOPNOTSUPP", kBoth},
    {Kind::ShutDown, "WSAESHUTDOWN", kBoth},
    {Kind::MessageSize, "WSAEMSGSIZE", kBoth},
    {Kind::HostUnreachable, "WSAEHOSTUNREACH", kSockSends},
    {Kind::Invalid, "WSAEINVAL", kBoth},
    {Kind::Aborted, "#::414 - or other failure", kBoth},
    {Kind::Reset, "#::451", kBoth},
    {Kind::TimedOut, "#::414", kBoth},
    {Kind::Other, "#::416", kSockSends},
    {Kind::Other, "#::416 ", kSockReceives},  // the second blank belongs to the line
};

const char* transferText(SockTransfer transfer, Kind kind) {
    const char* other = nullptr;
    for (const auto& row : kTransferTexts) {
        if ((row.transfers & transfer) == 0) continue;
        if (row.kind == kind) return row.text;
        if (row.kind == Kind::Other) other = row.text;
    }
    return other;
}

constexpr struct {
    Kind kind;
    const char* line;
    bool isBroken;
} kLookLines[] = {
    {Kind::Interrupted, "sockHaveData: #::415 - WSAEINTR #::14", false},
    {Kind::Fault, "sockHaveData: #::415 - SWAEFAULT #::14", false},  // always spelled so
    {Kind::Invalid, "sockHaveData: #::415 - WSAEINVAL #::14", false},
    {Kind::InProgress, "sockHaveData: #::415 - WSAEINPROGRESS #::14", false},
    {Kind::NotSocket, "sockHaveData: #::415 - WSAENOTSOCK #::14", true},
    {Kind::NetDown, "sockHaveData: #::415 - WSAENETDOWN #::14", false},
    {Kind::Reset, "sockHaveData: #::415 - #::451", true},
    {Kind::NotStarted, "sockHaveData: #::415 - #::417 #::14", false},
};

}  // namespace

uint32_t sockReportTransfer(SockTransfer transfer, int error) {
    const Kind kind = osSocketErrorKind(error);
    const bool sends = transfer == kSockSends;
    LocalString line;
    stringAppendView(&line, sends ? "sockSend: #::412 - " : "sockReceive: #::400 - ");
    stringAppendView(&line, transferText(transfer, kind));
    stringAppendView(&line, " #::14");
    sockLog(kLogError, stringText(&line), error);
    if (kind == Kind::Reset) return kSockReset;
    sockLog(kLogError, sends ? "sockSend: #::412 #::14" : "sockReceive: #::400 #::14", error);
    if (sends) return kSockFailed;
    return kind == Kind::Aborted ? kSockAborted : kSockError;
}

bool sockReportLook(int error) {
    const Kind kind = osSocketErrorKind(error);
    for (const auto& row : kLookLines) {
        if (row.kind != kind) continue;
        sockLog(kLogError, row.line, error);
        return row.isBroken;
    }
    sockLog(kLogError, "sockHaveData: #::415 #::14", error);
    return false;
}
