#include "launcherapp/catalog/DemonstrationApps.h"

#include "launcherapp/sources/DemonstrationAnswers.h"
#include "tests/fakes/FakeServices.h"

#include <gmock/gmock.h>

namespace tessarine {
namespace {

using testing::ElementsAre;

TEST(DemonstrationApps, areWhatADemonstrationIsAbout) {
    FakeServices services;
    DemonstrationWindows windows(services.platform.windows);
    RunningApps running(windows);
    AppCatalog catalog({.queue = services.platform.queue,
                        .work = services.platform.work,
                        .files = services.platform.files,
                        .watcher = services.platform.watcher,
                        .icons = services.platform.icons,
                        .launcher = services.launcher,
                        .running = running,
                        .diagnostics = services.diagnostics},
                       services.environment,
                       AppCatalog::Content::demonstration,
                       [] { return std::vector<std::string>(); });
    catalog.start();
    EXPECT_THAT(catalog.runningBundleIDs(), testing::Contains("demo.tessarine.Firewheel"));
    std::set<std::string_view> symbols;
    for (const auto& app : catalog.apps()) {
        symbols.insert(demonstrationSymbol(app));
        catalog.launch(app);
    }
    EXPECT_EQ(symbols.size(), catalog.apps().size()) << "each looks different without a theme";
    services.platform.time.settle();
    EXPECT_TRUE(services.platform.processes.started.empty());

    services.usage.restoreLocal(DemonstrationAnswers::usage(services.platform.queue.now()));
    services.prefs.emptyMode.set(EmptyMode::mostUsed);
    SearchModel model({.queue = services.platform.queue,
                       .diagnostics = services.diagnostics,
                       .catalog = catalog,
                       .prefs = services.prefs,
                       .usage = services.usage});
    model.setQuery("");
    std::vector<std::string> titles;
    for (const auto& row : model.rows())
        titles.push_back(row.title);
    ASSERT_GE(titles.size(), 3u);
    titles.resize(3);
    EXPECT_THAT(titles, ElementsAre("Firewheel", "Bluebird Mail", "Teletype"));
}

TEST(DemonstrationApps, endWithoutTouchingTheUsersWindows) {
    FakeWindowList desktop;
    DemonstrationWindows windows(desktop);
    DemonstrationControl control(windows);
    const auto before = windows.windows();
    ASSERT_GE(before.size(), 3u);
    control.close(before[0].id);
    EXPECT_TRUE(control.kill(before[2].id));
    auto left = before;
    left.erase(left.begin() + 2);
    left.erase(left.begin());
    EXPECT_EQ(windows.windows(), left);
    EXPECT_FALSE(control.ability().available);
    EXPECT_TRUE(desktop.calls.empty());
}

} // namespace
} // namespace tessarine
