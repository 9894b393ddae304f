#include "ServiceWorld.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <string>

namespace {

constexpr const char* kServices[][3] = {
    {"QuorelServiceTest", PLAINCAST_SERVICE, "demand"},
    {"QuorelServiceOff", PLAINCAST_SERVICE, "disabled"},
    {"QuorelServiceLost", "c:\\no\\such.exe", "demand"},
    {"QuorelServiceElse", "c:\\windows\\system32\\hostname.exe", "demand"},
};

int tool(const std::string& command) {
    return system(("sc " + command + " >nul").c_str());
}

}  // namespace

ServiceWorld::ServiceWorld() {
    for (const auto& [name, path, start] : kServices)
        EXPECT_EQ(
            0, tool("create " + std::string(name) + " binPath= \"" + path + "\" start= " + start));
}

ServiceWorld::~ServiceWorld() {
    for (const auto& [name, path, start] : kServices) tool("delete " + std::string(name));
}

const char ServiceWorld::kCases[] =
    R"(QuorelServiceLost start -> 0Failed to start service "QuorelServiceLost". (Error code=2)
QuorelServiceElse start
  -> 0The service "QuorelServiceElse" process was started, but it did not report successful start
)";
