#include "launcherapp/catalog/RunningApps.h"

#include "launcherapp/catalog/RecentApps.h"
#include "tests/fakes/FakeServices.h"

#include <gmock/gmock.h>

namespace tessarine {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class RunningAppsTest : public testing::Test {
protected:
    RunningAppsTest() {
        for (const auto* id : {"a", "b", "c"})
            services.install(id, std::string("App ") + id);
        windows.open = {{.id = 1, .className = "b", .processID = 20},
                        {.id = 2, .className = "stranger"},
                        {.id = 3, .className = "a", .hidden = true},
                        {.id = 4, .className = "b", .ordinary = false},
                        {.id = 5, .className = "b", .processID = 20, .hidden = true},
                        {.id = 9, .className = "b", .processID = 19}};
        windows.activeID = 3;
    }

    FakeServices services;
    FakeWindowList& windows = services.platform.windows;
    RunningApps& running = services.running;
};

TEST_F(RunningAppsTest, windowsAreGatheredByTheirApplication) {
    EXPECT_THAT(running.running(), IsEmpty()); // before the first scan nothing is known
    services.startCatalog();
    EXPECT_THAT(
        running.running(),
        ElementsAre(
            RunningApp{.bundleID = "b", .windows = {1, 5, 9}, .hidden = {5}, .processes = {20, 19}},
            RunningApp{.bundleID = "a", .windows = {3}, .hidden = {3}}));
    EXPECT_EQ(running.running("c"), std::nullopt);
    EXPECT_EQ(running.frontmost(), "a");
    windows.activeID = 2;
    EXPECT_EQ(running.frontmost(), std::nullopt);
}

TEST_F(RunningAppsTest, activationsAreToldById) {
    services.startCatalog();
    std::vector<std::string> activated;
    const auto subscription =
        running.onActivated([&](const std::string& id) { activated.push_back(id); });
    windows.bringForward(1);
    windows.bringForward(2); // not installed
    windows.bringForward(3);
    EXPECT_THAT(activated, ElementsAre("b", "a"));
}

class RecentAppsTest : public RunningAppsTest {
protected:
    std::vector<std::string> recentIDs() const {
        std::vector<std::string> result;
        for (const auto& app : recent.recent(services.catalog.apps()))
            result.push_back(*app.bundleID);
        return result;
    }

    RecentApps recent{services.running, services.catalog};
};

TEST_F(RecentAppsTest, beginsWithTheRunningTheOneInFrontFirst) {
    services.startCatalog();
    EXPECT_THAT(recentIDs(), ElementsAre("a", "b"));
    services.catalog.rescan(); // a later scan changes no order
    windows.bringForward(1);
    services.platform.time.settle();
    EXPECT_THAT(recentIDs(), ElementsAre("b", "a"));
}

TEST_F(RecentAppsTest, whatEndsIsLeftOutAndRemembered) {
    services.startCatalog();
    windows.open.push_back({.id = 6, .className = "c"});
    windows.bringForward(6);
    EXPECT_THAT(recentIDs(), ElementsAre("c", "a", "b"));
    windows.open.pop_back();
    EXPECT_THAT(recentIDs(), ElementsAre("a", "b"));
    EXPECT_THAT(recent.order(), ElementsAre("c", "a", "b"));
    windows.open.push_back({.id = 7, .className = "c"});
    EXPECT_THAT(recentIDs(), ElementsAre("c", "a", "b"));
}

TEST_F(RecentAppsTest, ofEqualIdsTheLastCounts) {
    services.startCatalog();
    const std::vector<CatalogApp> apps{{.id = "1", .bundleID = "a"},
                                       {.id = "2", .bundleID = "a"},
                                       {.id = "3", .bundleID = std::nullopt}};
    const auto result = recent.recent(apps);
    ASSERT_EQ(result.size(), 1u);
    EXPECT_EQ(result[0].id, "2");
}

} // namespace
} // namespace tessarine
