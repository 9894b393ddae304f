#include "PathFolder.h"
#include "paths/Paths.h"

// Runs where the stand-in for the library of shell objects can be loaded.
TEST(ShellObjects, ResolveWhatTheDiskDoesNotKnow) {
    // The last is longer than the buffer that the library is promised.
    const std::string cases[][2] = {{"box", "opened"},
                                    {"box\\in\\it", "opened\\in\\it"},
                                    {"no\\such", "no\\such"},
                                    {std::string(5000, 'y') + "box", "opened"}};
    for (const auto& [given, becomes] : cases) {
        Owned<String> path(stringFromView(given));
        EXPECT_TRUE(pathTrueCase(path.get()));
        EXPECT_EQ(becomes, stringView(path.get()));
        EXPECT_EQ(kPathDone, pathLastErrorCode()) << given;
    }
}
