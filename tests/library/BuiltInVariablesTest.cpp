#include "ScriptEngine3/BuiltInVariables.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "ScriptEngine3/ScriptEngine.h"
#include "paths/ConfiguredDirectories.h"
#include "platform/machine.h"
#include "platform/registry.h"
#include "system/SystemInfo.h"

namespace {

constexpr char kStoreFile[] = "BuiltInVariablesTest.db";
constexpr char kSettings[] = "SOFTWARE\\Quorel\\version6\\";

class BuiltInVariables : public testing::Test {
  protected:
    void SetUp() override {
        osSetEnvironment("QUOREL_REGISTRY", kStoreFile);
        forget();
        engine_ = scriptEngineCreate();
        ASSERT_NE(nullptr, engine_);
    }
    void TearDown() override {
        scriptEngineDestroy(&engine_);
        forget();
    }

    void forget() {
        remove(kStoreFile);
        for (const char* section : {"directories", "network"})
            osRegistryDeleteKey(kOsLocalMachine, std::string(kSettings) + section);
        pathReleaseConfiguredDirectories();
        sysReleaseCache();
    }

    void set(const char* section, const char* name, const char* value) {
        ASSERT_EQ(OsRegistryResult::Done,
                  osRegistrySet(kOsLocalMachine, std::string(kSettings) + section, name,
                                kOsRegString, value));
    }

    const ScriptObject* variable(const char* name) {
        uint32_t id = scriptVarNameToId(engine_->parseTables, name);
        return scriptBlockOwnVar(engine_->globalBlock, id);
    }

    std::string stringOf(const char* name) {
        const ScriptObject* object = variable(name);
        if (object == nullptr) return "<no variable>";
        if (object->type == kTypeUndef) return "<undefined>";
        return object->type == kTypeString ? std::string(stringView(&object->string)) : "<other>";
    }

    double numberOf(const char* name) {
        const ScriptObject* object = variable(name);
        return object != nullptr && object->type == kTypeNumber ? object->number : -1;
    }

    ScriptEngine* engine_ = nullptr;
};

TEST_F(BuiltInVariables, WithoutSettings) {
    ASSERT_TRUE(scriptEngineAddBuiltInVariables(engine_));
    EXPECT_EQ(1, numberOf("true"));
    EXPECT_EQ(0, numberOf("false"));
    EXPECT_EQ("\n", stringOf("endl"));
    EXPECT_EQ("HKEY_LOCAL_MACHINE\\SOFTWARE\\Quorel", stringOf("regkey"));
    EXPECT_EQ(osPlatformName(), stringOf("opsys"));
    EXPECT_EQ(osPlatformName(), stringOf("platform"));
    EXPECT_EQ(sysGetOsBits(), numberOf("localosbits"));
    for (const char* name : {"localhost", "localos", "localarch", "user", "systemdir"}) {
        EXPECT_LT(1u, stringOf(name).size()) << name;
        EXPECT_NE('<', stringOf(name)[0]) << name;
    }
    for (const char* name :
         {"installdir", "bindir", "scriptsdir", "configdir", "debugdir", "workdir", "tempdir"}) {
        EXPECT_EQ("<undefined>", stringOf(name)) << name;
    }
    for (const char* name : {"localgroup", "localsubsite", "localsite", "localrouterhost"})
        EXPECT_EQ("", stringOf(name)) << name;
    EXPECT_EQ(0, numberOf("localrouterport"));
    EXPECT_EQ("none", stringOf("role"));
    EXPECT_LE(0, numberOf("timezone"));
    EXPECT_GT(1440, numberOf("timezone"));
    for (const char* name : {"error", "success", "invalid_args", "out_of_memory"})
        EXPECT_EQ(0, numberOf(name)) << name;
    EXPECT_EQ(variable("error")->nameId, engine_->errorVar);
    EXPECT_EQ(variable("out_of_memory")->nameId, engine_->outOfMemoryVar);
    EXPECT_LT(engine_->errorVar, engine_->successVar);
    EXPECT_LT(engine_->successVar, engine_->invalidArgsVar);
}

TEST_F(BuiltInVariables, WithSettings) {
    for (const char* name :
         {"installdir", "bin", "scripts", "config", "debug", "work", "temp", "sandbox"}) {
        EXPECT_EQ(nullptr, pathConfiguredDirectory(kConfigDirectory)) << "only all together count";
        pathReleaseConfiguredDirectories();
        set("directories", name, name);
    }
    set("network", "role", "subsite");
    set("network", "router-host", "gate");
    ASSERT_TRUE(scriptEngineAddBuiltInVariables(engine_));
    EXPECT_EQ("installdir\\", stringOf("installdir"));
    EXPECT_EQ("bin\\", stringOf("bindir"));
    EXPECT_EQ("temp\\", stringOf("tempdir"));
    EXPECT_EQ("subsite", stringOf("role"));
    EXPECT_EQ("gate", stringOf("localrouterhost"));
}

}  // namespace
