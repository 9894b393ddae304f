#include "ScriptEngine3Defs/ScriptObject.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "ScriptEngine3Defs/ScriptBlock.h"
#include "ScriptEngine3Defs/ScriptContainers.h"
#include "containers/PathTree.h"

namespace {

using Object = Owned<ScriptObject>;

constexpr ScriptType kHolders[] = {kTypeList, kTypeVector, kTypeSet, kTypeMap, kTypeTree};
constexpr char kNoText[] = "<none>";

Object number(double value) {
    return Object(scriptObjectCreateNumber(value));
}

Object text(std::string_view value) {
    return Object(scriptObjectCreateString(value));
}

// Puts a value into a container of any kind; of a map it is the value of its
// only key, of a tree that of the root.
void put(ScriptObject* holder, Object element) {
    void* value = element.release();
    switch (holder->type) {
        case kTypeList:
            listPushBack(holder->list.list, value);
            break;
        case kTypeVector:
            vectorAppend(holder->vector.vector, value);
            break;
        case kTypeSet:
            setInsert(holder->set.set, value);
            break;
        case kTypeMap:
            mapInsert(holder->map.map, text("k").release(), value);
            break;
        default:
            holder->tree->root->value = value;
            break;
    }
}

Object holding(ScriptType type, Object element) {
    Object holder(scriptObjectCreate(type));
    put(holder.get(), std::move(element));
    return holder;
}

Object listOf(std::vector<Object> elements) {
    Object list(scriptObjectCreate(kTypeList));
    for (Object& element : elements) put(list.get(), std::move(element));
    return list;
}

template <typename... Elements>
Object list(Elements... elements) {
    std::vector<Object> values;
    (values.push_back(std::move(elements)), ...);
    return listOf(std::move(values));
}

Object pointerTo(ScriptObject* target, ScriptBlock* block = nullptr) {
    Object pointer(scriptObjectCreate(kTypePointer));
    scriptPointerAim(pointer.get(), target, block);
    return pointer;
}

Object undef() {
    return Object(scriptObjectCreate(kTypeUndef));
}

std::string textOf(const ScriptObject* object) {
    Owned<String> made(scriptObjectGetString(nullptr, object));
    return made ? std::string(stringView(made.get())) : kNoText;
}

// 100,000 values, each in the next.
Object nested(ScriptType type) {
    Object value = number(1);
    for (int depth = 0; depth < 100000; ++depth) value = holding(type, std::move(value));
    return value;
}

}  // namespace

TEST(ScriptObject, ContainersJoinTheTextsOfWhatTheyHold) {
    const auto map = [](Object key, Object value) {
        Object made(scriptObjectCreate(kTypeMap));
        mapInsert(made->map.map, key.release(), value.release());
        return made;
    };
    const struct {
        Object value;
        const char* text;
        ScriptTruth truth;
    } cases[] = {{list(), "", kFalse},
                 {list(text("")), "", kTrue},
                 {list(text(""), number(1.5), text(""), text("b")), "1.5;;b", kTrue},
                 {list(list(number(1), number(2)), list(), text("x")), "1;2;;x", kTrue},
                 {list(undef(), number(1), undef()), "1", kTrue},
                 {list(Object(scriptObjectCreate(kTypeTree)), text("x")), "x", kTrue},
                 {map(text("k"), list(number(1), number(2))), "k=1;2", kTrue},
                 {map(text("k"), undef()), "k", kTrue},
                 {map(undef(), text("v")), "", kTrue},
                 {Object(scriptObjectCreate(kTypeTree)), kNoText, kFalse},
                 {Object(scriptObjectCreate(kTypeConfig)), kNoText, kTrue},
                 {undef(), kNoText, kNoTruth},
                 {Object(scriptObjectCreate(kTypePointer)), kNoText, kNoTruth}};
    for (const auto& [value, expected, truth] : cases) {
        EXPECT_EQ(expected, textOf(value.get()));
        EXPECT_EQ(truth, scriptObjectGetBool(nullptr, value.get())) << expected;
    }
}

// A holder that takes over one of its own elements must not read what it ends.
TEST(ScriptObject, AHolderTakesTheValueOfWhatItHolds) {
    const struct {
        Object (*make)();
        bool assigned;
        const char* text;
    } cases[] = {{[] { return number(5); }, true, "5"},
                 {[] { return text("a text that lies in memory of its own"); }, true,
                  "a text that lies in memory of its own"},
                 {[] { return list(number(1), text("x")); }, true, "1;x"},
                 {[] { return holding(kTypeVector, text("y")); }, true, "y"},
                 {[] { return holding(kTypeMap, text("y")); }, true, "k=y"},
                 {[] { return holding(kTypeTree, text("y")); }, true, kNoText},
                 {[] { return Object(scriptObjectCreate(kTypeTree)); }, true, kNoText},
                 {[] { return Object(scriptObjectCreate(kTypeExpr)); }, true, kNoText},
                 {[] { return undef(); }, false, kNoText},
                 {[] { return list(undef()); }, false, ""}};
    for (const ScriptType type : kHolders)
        for (const auto& [make, assigned, expected] : cases) {
            Object element = make();
            ScriptObject* inside = element.get();
            const ScriptType wanted = inside->type;
            Object holder = holding(type, std::move(element));
            const bool done = scriptObjectAssign(nullptr, holder.get(), inside);
            // A tree takes a tree's value or none; the assignment stands either way.
            EXPECT_EQ(assigned, done) << type << " " << expected;
            EXPECT_EQ(wanted, holder->type) << type << " " << expected;
            if (!done && type == wanted) continue;
            EXPECT_EQ(expected, textOf(holder.get())) << type;
        }
}

// What cannot be copied leaves a container without its payload: every
// operation has to live with that.
TEST(ScriptObject, AContainerWithoutPayloadStaysUsable) {
    for (const ScriptType type : {kTypeList, kTypeVector, kTypeSet, kTypeMap}) {
        const Object whole = holding(type, undef());
        const Object broken(scriptObjectClone(whole.get()));
        ASSERT_TRUE(broken);
        EXPECT_EQ(nullptr, broken->payload);
        EXPECT_EQ("", textOf(broken.get()));
        EXPECT_EQ(0u, scriptObjectGetSize(broken.get()));
        EXPECT_EQ(kFalse, scriptObjectGetBool(nullptr, broken.get()));
        EXPECT_EQ(0, scriptObjectCompare(nullptr, broken.get(), broken.get()));
        const Object again(scriptObjectClone(broken.get()));
        const Object good = holding(type, text("x"));
        scriptObjectAssign(nullptr, good.get(), broken.get());
        const Object other = holding(type, text("x"));
        EXPECT_TRUE(scriptObjectAssign(nullptr, broken.get(), other.get()));
        EXPECT_EQ(textOf(other.get()), textOf(broken.get()));
    }
}

TEST(ScriptObject, APointerKnowsThatItsTargetHasGone) {
    Object target = text("old");
    ScriptObject* place = target.get();
    const Object pointer = pointerTo(place);
    EXPECT_EQ("old", textOf(pointer.get()));
    target.reset();
    const Object next = text("new");
    ASSERT_EQ(place, next.get()) << "the record is used again";
    EXPECT_EQ(nullptr, scriptPointerTarget(pointer.get()));
    EXPECT_TRUE(scriptPointerIsAimed(pointer.get()));
    EXPECT_EQ(kNoText, textOf(pointer.get()));
    const Object value = number(1);
    EXPECT_FALSE(scriptObjectAssign(nullptr, pointer.get(), value.get()));
    EXPECT_EQ("new", textOf(next.get()));
    const Object copy(scriptObjectClone(pointer.get()));
    EXPECT_EQ(nullptr, scriptPointerTarget(copy.get()));
}

TEST(ScriptObject, PointersInCirclesHaveNoValue) {
    const Object self = pointerTo(nullptr);
    scriptPointerAim(self.get(), self.get(), nullptr);
    const Object one = pointerTo(nullptr);
    const Object two = pointerTo(one.get());
    scriptPointerAim(one.get(), two.get(), nullptr);
    Object holder = list();
    put(holder.get(), pointerTo(holder.get()));
    const Object other = list(text("x"));
    put(other.get(), pointerTo(holder.get()));
    std::vector<Object> chain;
    chain.push_back(pointerTo(nullptr));
    for (int at = 0; at < 20000; ++at) chain.push_back(pointerTo(chain.back().get()));
    for (const ScriptObject* value :
         {self.get(), one.get(), holder.get(), other.get(), chain.back().get()}) {
        const Object plain = text("plain");
        const bool isPointer = value->type == kTypePointer;
        EXPECT_EQ(kNoText, textOf(value));
        EXPECT_EQ(isPointer ? kNoTruth : kTrue, scriptObjectGetBool(nullptr, value));
        EXPECT_EQ(isPointer, scriptObjectGetSize(value) == kNoSize);
        EXPECT_EQ(kCompareFailed, scriptObjectCompare(nullptr, value, plain.get()));
        EXPECT_EQ(nullptr, isPointer ? scriptObjectResolveRef(value) : nullptr);
        const Object copy(scriptObjectClone(value));
        EXPECT_TRUE(copy);
        const Object target = number(1);
        scriptObjectAssign(nullptr, target.get(), const_cast<ScriptObject*>(value));
        EXPECT_EQ("plain", textOf(plain.get()));
    }
}

TEST(ScriptObject, ValuesNestedBeyondReasonFailAsAWhole) {
    for (const ScriptType type : kHolders) {
        // An ordered container asks for the text of its first element only with a second.
        const Object deep = nested(type);
        EXPECT_EQ(kNoText, textOf(deep.get())) << type;
        EXPECT_FALSE(Object(scriptObjectClone(deep.get()))) << type;
        const Object plain = text("plain");
        EXPECT_EQ(kCompareFailed, scriptObjectCompare(nullptr, deep.get(), plain.get())) << type;
        const Object same(scriptObjectCreate(type));
        scriptObjectAssign(nullptr, same.get(), deep.get());
        scriptObjectAssign(nullptr, plain.get(), deep.get());
        EXPECT_TRUE(scriptObjectRetype(deep.get(), kTypeNumber)) << type;
        // The depth is forgotten: the next value is copied again.
        const Object shallow = list(list(number(1)));
        EXPECT_EQ("1", textOf(Object(scriptObjectClone(shallow.get())).get()));
    }
}
