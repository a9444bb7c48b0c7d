#include "launcherapp/shell/FreshRows.h"

#include "launcherapp/catalog/RecentApps.h"
#include "launcherapp/panel/PanelController.h"
#include "tests/fakes/FakePanelDesk.h"

#include <gmock/gmock.h>

namespace tessarine {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class FreshRowsTest : public testing::Test {
protected:
    FreshRowsTest() {
        services.prefs.emptyMode.set(EmptyMode::mostUsed);
        panel.start();
    }

    void installAndScan(const std::string& name) {
        services.install(name, name);
        services.catalog.rescan();
        time.settle();
    }

    std::vector<std::string> titles() const {
        std::vector<std::string> result;
        for (const auto& row : model.rows())
            result.push_back(row.title);
        return result;
    }

    std::string selected() const { return model.selectedRow()->title; }

    FakeServices services;
    VirtualTime& time = services.platform.time;
    FakePanelDesk desk{services};
    std::unique_ptr<SearchModel> owned = services.makeModel();
    SearchModel& model = *owned;
    PanelController panel{desk.controls(model)};
    FreshRows fresh{services.platform.queue, model, [this] { return panel.isVisible(); }};
    Subscription publications = services.catalog.onPublished([this] { fresh.published(); });
};

TEST_F(FreshRowsTest, aListMadeBeforeTheFirstScanIsMadeAnewForTheFirstShow) {
    time.settle(); // the warm pass finds no program yet
    ASSERT_TRUE(model.isAtRest());
    ASSERT_THAT(titles(), IsEmpty());
    installAndScan("Alpha");
    installAndScan("Alpine"); // and so is one that is installed while nobody looks
    int rebuilds = 0;
    const auto changes = model.onChange([&] { ++rebuilds; });
    panel.show();
    EXPECT_THAT(titles(), ElementsAre("Alpha", "Alpine"));
    EXPECT_EQ(rebuilds, 0) << "the show itself waits for no recompute";
}

TEST_F(FreshRowsTest, whatRunsAndInWhichOrderIsRightBeforeTheShow) {
    RecentApps recent(services.running, services.catalog);
    model.families.recentApps = [&] { return recent.recent(services.catalog.apps()); };
    const auto came = services.running.onActivated([&](const auto&) { fresh.windowsChanged(); });
    const auto went = services.running.onChanged([&] { fresh.windowsChanged(); });
    services.prefs.emptyMode.set(EmptyMode::recents);
    auto& windows = services.platform.windows;
    windows.open = {{.id = 1, .className = "Alpha"}, {.id = 2, .className = "Beta"}};
    windows.activeID = 1;
    services.install("Alpha", "Alpha");
    installAndScan("Beta");
    panel.show();
    panel.hide();
    ASSERT_THAT(titles(), ElementsAre("Alpha", "Beta"));
    windows.bringForward(2);
    EXPECT_THAT(titles(), ElementsAre("Beta", "Alpha"));
    windows.close(2); // asked to at the last hide, and ended now
    EXPECT_THAT(titles(), ElementsAre("Alpha"));
    panel.show();
    model.setQuery("be");
    windows.bringForward(1);
    EXPECT_EQ(model.query(), "be") << "what the user types is not taken away";
}

TEST_F(FreshRowsTest, whatIsPublishedUnderTheUsersEyesAppears) {
    panel.show();
    model.setQuery("alp");
    installAndScan("Alpine");
    EXPECT_EQ(selected(), "Alpine");
    time.advance(FreshRows::shortestPause);
    installAndScan("Alp");
    EXPECT_EQ(selected(), "Alp") << "Return means the best row";
    EXPECT_EQ(model.query(), "alp");
}

TEST_F(FreshRowsTest, theRowThatTheUserWentToStaysSelected) {
    for (const auto* name : {"Alpha", "Alpine"})
        installAndScan(name);
    panel.show();
    model.setQuery("alp");
    model.moveDown();
    ASSERT_EQ(selected(), "Alpine");
    installAndScan("Alp"); // comes before both
    EXPECT_EQ(titles().front(), "Alp");
    EXPECT_EQ(selected(), "Alpine");
}

TEST_F(FreshRowsTest, aMenuKeepsTheRowsThatItWasOpenedOn) {
    installAndScan("Alpine");
    panel.show();
    model.setQuery("alp");
    model.openActions();
    const auto before = titles();
    installAndScan("Alp");
    EXPECT_EQ(titles(), before);
}

TEST_F(FreshRowsTest, oftenPublishedIsSeldomShown) {
    panel.show();
    int rebuilds = 0;
    const auto changes = model.onChange([&] { ++rebuilds; });
    for (int tenth = 0; tenth < 25; ++tenth) {
        fresh.published();
        time.advance(Seconds{0.1});
    }
    EXPECT_EQ(rebuilds, 3) << "one at once, and one for each second";
    time.advance(Seconds{5});
    EXPECT_EQ(rebuilds, 4) << "the last is not forgotten";

    fresh.published();
    fresh.published(); // waits
    rebuilds = 0;
    panel.hide();
    EXPECT_EQ(rebuilds, 1);
    time.advance(FreshRows::shortestPause);
    EXPECT_EQ(rebuilds, 1) << "a hidden panel has what it needs";
}

} // namespace
} // namespace tessarine
