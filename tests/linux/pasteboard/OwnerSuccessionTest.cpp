#include "launcherapp/platform/linux/pasteboard/OwnerSuccession.h"

#include <gmock/gmock.h>

namespace tessarine {
namespace {

using namespace std::chrono_literals;

TEST(OwnerSuccession, whatComesAfterAnEmptyingMayBeWhatWasThereBefore) {
    const OwnerSuccession::Time begun;
    OwnerSuccession succession;
    succession.taken(5, begun);
    EXPECT_FALSE(succession.current());
    succession.emptied(5, begun + 1s);
    EXPECT_FALSE(succession.current());
    succession.taken(7, begun + 1200ms);
    ASSERT_TRUE(succession.current());
    EXPECT_EQ(succession.current()->first, 5U);
    EXPECT_EQ(succession.current()->last, 5U);
    EXPECT_EQ(succession.current()->pause, 200ms);
    EXPECT_FALSE(succession.current()->isSameOwner);
    // Whoever took it puts it there again; it may still be the first one's.
    succession.takenAgain(8);
    EXPECT_EQ(succession.current()->first, 5U);
    EXPECT_EQ(succession.current()->last, 7U);
    EXPECT_TRUE(succession.current()->isSameOwner);
    succession.taken(9, begun + 2s);
    EXPECT_FALSE(succession.current());
    succession.emptied(9, begun + 3s);
    succession.ended();
    succession.taken(12, begun + 3s);
    EXPECT_FALSE(succession.current()) << "ours was there in between";
}

} // namespace
} // namespace tessarine
