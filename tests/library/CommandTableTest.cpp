#include "ScriptEngine3/CommandTable.h"

#include <gtest/gtest.h>

#include <string_view>

#include "AppCommands.h"
#include "ScriptEngine3/CommandFamilies.h"

TEST(CommandTable, HasEveryCommandOnceAndNoneWithoutAHandler) {
    ParseTables tables;
    for (const CommandFamily& family : commandFamilies())
        for (const CommandRow& row : family.rows)
            EXPECT_TRUE(scriptEngineRegisterFunction(&tables, &row)) << row.name;
    EXPECT_EQ(235u, tables.commandDefs.size());
    for (const CommandRow& row : applicationCommands())
        EXPECT_TRUE(scriptEngineRegisterFunction(&tables, &row)) << row.name;
    EXPECT_EQ(237u, tables.commands.count());
    for (const char* name : {"eval", "connect", "service", "signature", "setperiod"})
        EXPECT_EQ(std::string_view(name), scriptEngineFindFunction(&tables, name)->name);
}
