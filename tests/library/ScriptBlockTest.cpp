#include "ScriptEngine3Defs/ScriptBlock.h"

#include <gtest/gtest.h>

#include <vector>

#include "containers/Memory.h"

namespace {

constexpr uint32_t kName = 1;
constexpr uint32_t kOther = 2;
constexpr uint32_t kUnplanned = 3;  // has no slot in any template

Owned<ScriptBlock> templateWith(uint32_t id) {
    Owned<ScriptBlock> made(scriptBlockCreate());
    scriptBlockReserve(made.get(), id);
    return made;
}

ScriptObject* declare(ScriptBlock* block, uint32_t id, double value) {
    ScriptObject* object = scriptObjectCreateNumber(value);
    EXPECT_TRUE(scriptBlockAddVar(block, id, object));
    return object;
}

}  // namespace

// A place finds what the search by name finds, whatever was declared where
// and when, in short chains and in long ones, with memory and without.
TEST(ScriptBlock, APlaceFindsTheNearestVariable) {
    for (const size_t length : {1u, 2u, 5u, 40u, 300u})
        for (const size_t literalAt : {0u, 1u, 30u, 1000u})
            for (const bool starved : {false, true}) {
                std::vector<Owned<ScriptBlock>> templates;
                std::vector<ScriptBlock*> chain;
                for (size_t at = 0; at < length; ++at) {
                    templates.push_back(templateWith(at == literalAt ? kOther : kName));
                    if (at == literalAt) {
                        ScriptObject* literal = scriptObjectCreateNumber(-1);
                        scriptBlockAddLiteral(templates.back().get(), literal);
                        templates.back()->shape->slots.add(kName, {0, true});
                    }
                    chain.push_back(scriptBlockInstantiate(templates.back().get(),
                                                           at == 0 ? nullptr : chain.back()));
                }
                VarPlace place;
                place.id = kName;
                VarPlace unplanned;
                unplanned.id = kUnplanned;
                const auto check = [&] {
                    ScriptBlock* found = nullptr;
                    ScriptBlock* expected = nullptr;
                    if (starved) memFailAfter(0, true);
                    const ScriptObject* object =
                        scriptBlockSearchPlace(chain.back(), &place, &found);
                    memFailAfter(-1, false);
                    EXPECT_EQ(scriptBlockSearch(chain.back(), kName, &expected), object);
                    if (object != nullptr) {
                        EXPECT_EQ(expected, found);
                    }
                    EXPECT_EQ(scriptBlockSearch(chain.back(), kUnplanned, nullptr),
                              scriptBlockSearchPlace(chain.back(), &unplanned, nullptr));
                };
                check();
                for (size_t at = 0; at < length; at += 1 + length / 7) {
                    if (at != literalAt) declare(chain[at], kName, static_cast<double>(at));
                    declare(chain[at], kUnplanned, static_cast<double>(at));
                    check();
                }
                while (!chain.empty()) {
                    scriptBlockRetire(chain.back());
                    chain.pop_back();
                }
            }
}

TEST(ScriptBlock, AVariableIsAddedOnce) {
    const Owned<ScriptBlock> body = templateWith(kName);
    ScriptBlock* block = scriptBlockInstantiate(body.get(), nullptr);
    for (const uint32_t id : {kName, kUnplanned}) {
        const ScriptObject* object = declare(block, id, 1);
        EXPECT_EQ(id, object->nameId);
        const Owned<ScriptObject> again(scriptObjectCreateNumber(2));
        EXPECT_FALSE(scriptBlockAddVar(block, id, again.get()));
        EXPECT_EQ(object, scriptBlockDeclareVar(block, id, kTypeString));
    }
    const Owned<ScriptObject> nameless(scriptObjectCreateNumber(2));
    EXPECT_FALSE(scriptBlockAddVar(block, kNoVariable, nameless.get()));
    EXPECT_FALSE(scriptBlockAddVar(block, kOther, nullptr));
    scriptBlockRetire(block);
}
