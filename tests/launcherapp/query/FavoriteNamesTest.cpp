#include "launcherapp/query/FavoriteNames.h"

#include "tests/fakes/FakePlatform.h"

#include <gtest/gtest.h>

namespace tessarine {
namespace {

TEST(FavoriteNames, eachNameIsLookedUpOnceAndAFailureMayBeTriedAgain) {
    FakePlatform platform;
    int lookups = 0;
    int changes = 0;
    FavoriteNames names(
        platform.work,
        [&](const std::string& identifier) -> std::optional<std::string> {
            ++lookups;
            return identifier == "7" ? std::optional<std::string>("Mabel") : std::nullopt;
        },
        [&] { ++changes; });
    names.warm({"cmd:x", "person:7", "person:8", "person:7"});
    EXPECT_EQ(names.name("7"), std::nullopt); // under way: nothing more is started
    EXPECT_EQ(platform.work.submitted, 2);
    platform.time.settle();
    EXPECT_EQ(names.name("7"), "Mabel");
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(names.name("8"), std::nullopt);
    platform.time.settle();
    EXPECT_EQ(lookups, 3);
}

} // namespace
} // namespace tessarine
