#include "launcherapp/platform/linux/pasteboard/ChangeCounter.h"

#include <gtest/gtest.h>

#include <string>

namespace tessarine {
namespace {

TEST(ChangeCounter, theLastOwnersCountIsTheBoards) {
    const struct {
        const char* reason;
        std::string events; ///< w: we write, o: another program, a and r: our last write's fate
        std::uint64_t count;
    } cases[] = {
        {"each of another's changes counts", "ooo", 4},
        {"our own counts once, when it is written", "wa", 2},
        {"another's before ours arrived has been replaced by it", "woa", 2},
        {"so have several", "wooa", 2},
        {"another's after ours arrived counts", "wao", 3},
        {"another's that kept ours out has a count of its own", "wor", 3},
        {"an earlier write of ours is settled by the last", "wwa", 3},
        {"what comes after a refusal counts on", "wroo", 5},
    };

    for (const auto& [reason, events, count] : cases) {
        ChangeCounter counter;
        std::uint64_t written = 0;
        for (const auto event : events) {
            if (event == 'w')
                written = counter.writes();
            else if (event == 'o')
                counter.othersChange();
            else if (event == 'a')
                counter.arrived(written);
            else
                counter.refused(written);
        }
        EXPECT_EQ(counter.value(), count) << reason;
    }
}

TEST(ChangeCounter, anEarlierWritesFateLeavesTheLastOnItsWay) {
    ChangeCounter counter;
    const auto first = counter.writes();
    const auto second = counter.writes();
    counter.arrived(first);
    EXPECT_FALSE(counter.othersChange());
    EXPECT_FALSE(counter.refused(first));
    counter.arrived(second);
    EXPECT_EQ(counter.othersChange(), second + 1);
}

} // namespace
} // namespace tessarine
