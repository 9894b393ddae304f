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

TEST(ScriptBlock, ALiteralIsSharedUntilAnInstanceOwnsIt) {
    const Owned<ScriptBlock> body(scriptBlockCreate());
    ScriptObject* literal = scriptObjectCreateNumber(5);
    const uint32_t slot = scriptBlockAddLiteral(body.get(), literal);
    VarPlace place;
    place.kind = kPlaceLiteral;
    place.slot = slot;
    ScriptBlock* first = scriptBlockInstantiate(body.get(), nullptr);
    ScriptBlock* second = scriptBlockInstantiate(body.get(), first);
    EXPECT_EQ(literal, scriptBlockSearchPlace(first, &place, nullptr));
    ScriptObject* own = scriptBlockOwnLiteral(first, literal);
    ASSERT_NE(literal, own);
    own->number = 6;
    EXPECT_EQ(own, scriptBlockOwnLiteral(first, literal));
    EXPECT_EQ(own, scriptBlockSearchPlace(first, &place, nullptr));
    EXPECT_EQ(literal, scriptBlockSearchPlace(second, &place, nullptr));
    EXPECT_EQ(5, literal->number);
    scriptBlockRenew(first);
    EXPECT_EQ(literal, scriptBlockSearchPlace(first, &place, nullptr));
    EXPECT_EQ(nullptr, scriptBlockOwnLiteral(nullptr, literal));
    memFailAfter(0, true);
    EXPECT_EQ(nullptr, scriptBlockOwnLiteral(second, literal));
    memFailAfter(-1, false);
    scriptBlockRetire(second);
    scriptBlockRetire(first);
}

// An instance that is used again has the address of the one before.
TEST(ScriptBlock, APointerIntoAnEndedInstanceIsDead) {
    for (const bool renewed : {false, true}) {
        const Owned<ScriptBlock> body = templateWith(kName);
        ScriptBlock* instance = scriptBlockInstantiate(body.get(), nullptr);
        const Owned<ScriptObject> pointer(scriptObjectCreate(kTypePointer));
        const Owned<ScriptObject> behind(scriptObjectCreate(kTypePointer));
        ScriptObject* target = declare(instance, kName, 1);
        scriptPointerAim(pointer.get(), target, instance);
        scriptPointerAim(behind.get(), pointer.get(), instance);
        EXPECT_EQ(target, scriptObjectResolveRef(pointer.get()));
        EXPECT_EQ(nullptr, scriptObjectResolveRef(behind.get())) << "the pointer has no name";
        pointer->nameId = kOther;
        EXPECT_EQ(target, scriptObjectResolveRef(behind.get())) << "it travelled, and is alive";
        if (renewed) {
            scriptBlockRenew(instance);
        } else {
            scriptBlockRetire(instance);
            ASSERT_EQ(instance, scriptBlockInstantiate(body.get(), nullptr));
        }
        ASSERT_EQ(target, declare(instance, kName, 2)) << "and so has the variable";
        EXPECT_EQ(nullptr, scriptPointerTarget(pointer.get()));
        EXPECT_EQ(nullptr, scriptPointerBlock(pointer.get()));
        EXPECT_EQ(nullptr, scriptObjectResolveRef(pointer.get()));
        EXPECT_EQ(nullptr, scriptObjectResolveRef(behind.get()));
        scriptBlockRetire(instance);
    }
}

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
