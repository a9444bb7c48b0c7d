#include "launcherapp/shell/Demonstration.h"

#include "tests/fakes/FakeServices.h"

#include <gmock/gmock.h>

namespace tessarine {
namespace {

TEST(Demonstration, keepsEverythingOfTheUsersInAFolderOfItsOwn) {
    const auto users = FakeServices().environment;
    const auto shown = Demonstration::surroundings(users, "/run/demo");
    for (const auto& path : {shown.dataHome,
                             shown.configHome,
                             shown.userFolders.downloads,
                             shown.userFolders.desktop,
                             shown.userFolders.documents})
        EXPECT_THAT(path, testing::StartsWith("/run/demo/"));
    EXPECT_EQ(shown.dataDirs, users.dataDirs) << "the desktop stays the user's";
}

} // namespace
} // namespace tessarine
