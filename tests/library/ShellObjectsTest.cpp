#include "PathFolder.h"
#include "paths/Paths.h"

// Runs where the stand-in for the library of shell objects can be loaded.

namespace {

TEST(ShellObjects, ResolveWhatTheDiskDoesNotKnow) {
    const struct {
        const char* path;
        const char* becomes;
        uint32_t code;
    } cases[] = {
        {"box", "opened", kPathDone},
        {"box\\in\\it", "opened\\in\\it", kPathDone},
        {"no\\such", "no\\such", kPathDone},
    };
    for (const auto& row : cases) {
        Owned<String> path(stringFromText(row.path));
        EXPECT_TRUE(pathTrueCase(path.get()));
        EXPECT_EQ(row.becomes, stringView(path.get()));
        EXPECT_EQ(row.code, pathLastErrorCode()) << row.path;
    }
    // Longer than the buffer that the library is promised.
    const std::string longer = std::string(5000, 'y') + "box";
    Owned<String> path(stringFromView(longer));
    EXPECT_TRUE(pathTrueCase(path.get()));
    EXPECT_EQ("opened", stringView(path.get()));
}

}  // namespace
