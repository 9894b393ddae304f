#pragma once

#include <cstdint>
#include <string_view>

// The manager of the machine's services. Functions give the system's error
// number, 0 for success. What both systems can meet has the numbers of
// `OsServiceError` on both; a number of the system's own never reads as one of them.

// The open manager, and one service of it, which does not need the manager's
// handle any longer.
struct OsServiceManager;
struct OsService;

enum OsServiceError : uint32_t {
    kOsServiceNoBinary = 3,
    kOsServiceNoAccess = 5,
    kOsServiceBadName = 123,
    kOsServiceDependentsRun = 1051,
    kOsServiceNoResponse = 1053,
    kOsServiceNoThread = 1054,
    kOsServiceRunsAlready = 1056,
    kOsServiceDisabled = 1058,
    kOsServiceUnknown = 1060,
    kOsServiceNotNow = 1061,  // its state forbids what is asked for
    kOsServiceNotStarted = 1062,
    kOsServiceNoDatabase = 1065,
    kOsServiceDependencyFailed = 1068,
    kOsServiceNoLogon = 1069,
    kOsServiceDeleted = 1072,
    kOsServiceNoDependency = 1075,
    kOsServiceShuttingDown = 1115,
    kOsServiceOther = 1359,  // a failure that the system has no number for
};

enum OsServiceState : uint32_t {
    kOsServiceStopped = 1,
    kOsServiceStartPending = 2,
    kOsServiceStopPending = 3,
    kOsServiceRunning = 4,
    kOsServiceContinuePending = 5,
    kOsServicePausePending = 6,
    kOsServicePaused = 7,
};

// Reaches the manager of this machine. On failure `*manager` is null.
uint32_t osServiceManagerOpen(OsServiceManager** manager);
void osServiceManagerClose(OsServiceManager** manager);

// Finds a service by its name, which holds no zero byte. On failure `*service` is null.
uint32_t osServiceOpen(OsServiceManager* manager, std::string_view name, OsService** service);
void osServiceClose(OsService** service);

// One of `OsServiceState`, or another number for a state that is none of them.
uint32_t osServiceQuery(OsService* service, uint32_t* state);

// Asks the service to stop, and gives its state after that; does not wait for the end.
uint32_t osServiceStop(OsService* service, uint32_t* state);

// Asks for a start; does not wait until the service runs.
uint32_t osServiceStart(OsService* service);
