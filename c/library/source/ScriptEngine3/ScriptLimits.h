#pragma once

#include <string_view>

#include "containers/GrowArray.h"
#include "containers/Vector.h"
#include "strings/String.h"
#include "time/Time.h"

// Who may run a script, and when.

// The present user and the local groups that the user is in.
struct ScriptUser {
    ScriptUser();
    ~ScriptUser();
    ScriptUser(const ScriptUser&) = delete;
    ScriptUser& operator=(const ScriptUser&) = delete;

    // Asks the system. False when it cannot tell the name, or the groups.
    bool readName();
    bool readGroups();

    Owned<String> name;
    Vector* groups = nullptr;  // of Strings; null when they could not be read
};

// Whether a name, or one of the user's groups, is among the arguments, exactly.
bool scriptUserIsNamed(const ScriptUser& user, const GrowArray<std::string_view>& args);
bool scriptGroupIsNamed(const ScriptUser& user, const GrowArray<std::string_view>& args);

enum class LimitCheck : int { None = 0, Applies = 1, Failed = 2 };

// Whether a condition of a `limit` statement does not hold. The arguments are
// tokens of sign, letter, colon and text; a token of another form is passed over.
LimitCheck scriptEngineCheckLimits(const GrowArray<std::string_view>& args);

// The same for a given user at a given time.
LimitCheck scriptCheckLimitsFor(const ScriptUser& user, Time now,
                                const GrowArray<std::string_view>& args);
