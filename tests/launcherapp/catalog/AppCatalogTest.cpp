#include "launcherapp/catalog/AppCatalog.h"

#include "launcherapp/catalog/AppCatalogSelftest.h"
#include "tests/fakes/FakeServices.h"

#include <gmock/gmock.h>

namespace tessarine {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class AppCatalogTest : public testing::Test {
protected:
    AppCatalogTest() { services.platform.processes.programs = {"files", "top", "xterm"}; }

    std::vector<std::string> names() const {
        std::vector<std::string> result;
        for (const auto& app : catalog.apps())
            result.push_back(app.name);
        return result;
    }

    void settleAfter(double seconds) { platform.time.advance(Seconds{seconds}); }

    CatalogApp app(const std::string& name) const {
        for (const auto& each : catalog.apps()) {
            if (each.name == name)
                return each;
        }
        ADD_FAILURE() << name;
        return {};
    }

    std::string log() {
        platform.time.settle();
        return platform.files.read("/home/u/.local/share/tessarine/tessarine.log", 10000)
            .value_or("");
    }

    FakeServices services;
    FakePlatform& platform = services.platform;
    AppCatalog& catalog = services.catalog;
};

TEST_F(AppCatalogTest, isEmptyUntilTheFirstScanHasPublished) {
    services.install("files", "Files");
    platform.work.duration = Seconds{0.25};
    int published = 0;
    const auto subscription = catalog.onPublished([&] { ++published; });
    catalog.start();
    EXPECT_EQ(platform.work.lastPriority, WorkPriority::userInitiated);
    settleAfter(0.2);
    EXPECT_THAT(names(), IsEmpty());
    EXPECT_EQ(catalog.lastScan(), std::nullopt);
    settleAfter(0.1);
    EXPECT_THAT(names(), ElementsAre("Files"));
    EXPECT_EQ(catalog.lastScan(), platform.queue.epoch + 0.25);
    EXPECT_EQ(published, 1);
}

TEST_F(AppCatalogTest, aChangeIsSeenOneScanLater) {
    services.startCatalog();
    const auto path = services.install("files", "Files");
    platform.watcher.fire("/usr/share/applications");
    platform.watcher.fire("/usr/share/applications");
    settleAfter(1.4);
    EXPECT_THAT(names(), IsEmpty());
    settleAfter(0.2);
    EXPECT_THAT(names(), ElementsAre("Files"));
    EXPECT_EQ(platform.work.submitted, 2); // many changes, one scan
    platform.files.remove(path);
    platform.watcher.fire("/usr/share/applications");
    settleAfter(1.6);
    EXPECT_THAT(names(), IsEmpty());
}

TEST_F(AppCatalogTest, theRootsAreWatchedFromTheStartAndWhatLiesBelowAfterwards) {
    services.install("kde/tool", "Tool");
    platform.work.duration = Seconds{1};
    catalog.start();
    const auto watched = [&] {
        EXPECT_EQ(platform.watcher.watches.size(), 1u);
        return platform.watcher.watches.begin()->second.directories;
    };
    EXPECT_EQ(platform.watcher.watches.begin()->second.latency, AppCatalog::watchLatency);
    EXPECT_THAT(watched(), Contains("/usr/share/applications"));
    settleAfter(1);
    EXPECT_THAT(watched(), Contains("/usr/share/applications/kde"));
    const auto id = platform.watcher.watches.begin()->first;
    catalog.rescan();
    settleAfter(1);
    EXPECT_EQ(platform.watcher.watches.begin()->first, id); // nothing new, so the watch stays
}

TEST_F(AppCatalogTest, aScanThatIsOvertakenIsDropped) {
    platform.work.duration = Seconds{2};
    catalog.start();
    settleAfter(1);
    platform.work.duration = Seconds{0.1};
    services.install("files", "Files");
    catalog.rescan();
    settleAfter(0.2);
    const auto first = catalog.lastScan();
    settleAfter(2);
    EXPECT_EQ(catalog.lastScan(), first);
    EXPECT_THAT(names(), ElementsAre("Files"));
}

TEST_F(AppCatalogTest, iconsAreDrawnOnceAndDroppedWithTheirApplication) {
    services.install("files", "Files", "Icon=folder\n");
    services.install("plain", "Plain", "Icon=unknown\n");
    platform.icons.known = {"folder"};
    services.startCatalog();
    const auto files = app("Files");
    EXPECT_FALSE(catalog.hasIcon(files));
    EXPECT_FALSE(catalog.icon(files).isEmpty());
    catalog.icon(files);
    catalog.icon(app("Plain"));
    EXPECT_TRUE(catalog.hasIcon(files));
    EXPECT_THAT(platform.icons.drawn, ElementsAre("folder"));
    EXPECT_THAT(platform.icons.symbols, ElementsAre("app"));
    EXPECT_THAT(platform.icons.sizes, testing::Each(32));
    platform.files.remove(files.path);
    catalog.rescan();
    platform.time.settle();
    EXPECT_FALSE(catalog.hasIcon(files));
    EXPECT_TRUE(catalog.hasIcon(app("Plain")));
}

TEST_F(AppCatalogTest, theRunningSetIsAskedForOnceASecond) {
    services.install("files", "Files");
    services.startCatalog();
    platform.windows.open = {{.id = 1, .className = "files"}};
    EXPECT_THAT(catalog.runningBundleIDs(), ElementsAre("files"));
    platform.windows.open.clear();
    settleAfter(0.9);
    EXPECT_THAT(catalog.runningBundleIDs(), ElementsAre("files"));
    EXPECT_EQ(platform.windows.listings, 1);
    settleAfter(0.2);
    EXPECT_THAT(catalog.runningBundleIDs(), IsEmpty());
    // Nor is it kept when a window is told to go, or is another application's by a new scan.
    platform.windows.open = {{.id = 1, .className = "files"}, {.id = 2, .className = "late"}};
    settleAfter(1);
    EXPECT_THAT(catalog.runningBundleIDs(), ElementsAre("files"));
    platform.windows.close(1);
    EXPECT_THAT(catalog.runningBundleIDs(), IsEmpty());
    services.install("late", "Late");
    catalog.rescan();
    platform.time.settle();
    EXPECT_THAT(catalog.runningBundleIDs(), ElementsAre("late"));
}

TEST_F(AppCatalogTest, launchingStartsWhatDoesNotRun) {
    services.install("files", "Files");
    services.startCatalog();
    catalog.launch(app("Files"));
    platform.time.settle();
    ASSERT_EQ(platform.processes.started.size(), 1u);
    EXPECT_THAT(platform.processes.started[0].arguments, ElementsAre("files"));
    EXPECT_EQ(platform.processes.started[0].name, "files");
    EXPECT_EQ(log(), "");
}

TEST_F(AppCatalogTest, launchingWhatRunsBringsItForward) {
    services.install("files", "Files");
    services.startCatalog();
    platform.windows.open = {{.id = 1, .className = "files", .hidden = true},
                             {.id = 2, .className = "other"},
                             {.id = 3, .className = "Files"},
                             {.id = 4, .className = "files", .ordinary = false, .hidden = true}};
    catalog.launch(app("Files"));
    platform.time.settle();
    EXPECT_THAT(platform.windows.calls,
                ElementsAre(std::pair("unhide", 1u), std::pair("activate", 3u)));
    EXPECT_THAT(platform.processes.started, IsEmpty());
}

TEST_F(AppCatalogTest, whatCantBeBroughtForwardIsLaunched) {
    services.install("files", "Files");
    services.startCatalog();
    platform.windows.open = {{.id = 1, .className = "files"}};
    platform.windows.supported = Ability::missing("the desktop doesn't answer");
    catalog.launch(app("Files"));
    platform.time.settle();
    EXPECT_EQ(platform.processes.started.size(), 1u);
}

TEST_F(AppCatalogTest, whatTheBusActivatesIsAskedAndThenBroughtForwardWhereNothingElseWas) {
    services.install("org.x.Bus", "Bus", "DBusActivatable=true\n");
    services.install("files", "Files");
    services.startCatalog();

    const struct {
        const char* what;
        std::optional<std::string> problem;
        std::uint64_t before;    ///< the window in front
        std::uint64_t meanwhile; ///< the one that comes forward by itself
        bool isBroughtForward;
    } cases[] = {
        {"the compositor only marks it", std::nullopt, 3, 3, true},
        {"its own choice of its windows", std::nullopt, 3, 1, false},
        {"the user has gone elsewhere", std::nullopt, 3, 4, false},
        {"it was in front", std::nullopt, 1, 1, false},
        {"it doesn't answer, and can't be started", "gone", 3, 3, false},
    };

    for (const auto& each : cases) {
        SCOPED_TRACE(each.what);
        platform.bus.answers["org.x.Bus"] = each.problem;
        platform.bus.requests.clear();
        auto& windows = platform.windows;
        windows.calls.clear();
        windows.open = {{.id = 1, .className = "org.x.Bus", .hidden = true},
                        {.id = 2, .className = "org.x.Bus"},
                        {.id = 3, .className = "stranger"},
                        {.id = 4, .className = "files"}};
        windows.activeID = each.before;
        catalog.launch(app("Bus"));
        windows.activeID = each.meanwhile;
        platform.time.advance(AppCatalog::forwardPatience);
        EXPECT_EQ(platform.bus.requests.size(), 1u);
        std::vector<std::pair<std::string, std::uint64_t>> expected{{"unhide", 1}};
        if (each.isBroughtForward)
            expected.emplace_back("activate", 2);
        EXPECT_EQ(windows.calls, expected);
    }
}

TEST_F(AppCatalogTest, aFailedLaunchIsLogged) {
    services.install("gone", "Gone");
    services.startCatalog();
    catalog.launch(app("Gone"));
    EXPECT_THAT(log(), HasSubstr(" launch failed for Gone: gone could not be started"));
    catalog.launch({.id = "/x", .name = "Never", .path = "/x"});
    EXPECT_THAT(log(), HasSubstr(" launch failed for Never: it is not installed"));
}

TEST_F(AppCatalogTest, aDemonstrationTouchesNothing) {
    AppCatalog demonstration({.queue = platform.queue,
                              .work = platform.work,
                              .files = platform.files,
                              .watcher = platform.watcher,
                              .icons = platform.icons,
                              .launcher = services.launcher,
                              .running = services.running,
                              .diagnostics = services.diagnostics},
                             services.environment,
                             AppCatalog::Content::demonstration,
                             [] { return std::vector<std::string>(); });
    demonstration.start();
    demonstration.rescan();
    EXPECT_GT(demonstration.apps().size(), 10u);
    EXPECT_TRUE(demonstration.lastScan());
    EXPECT_EQ(platform.work.submitted, 0);
    EXPECT_THAT(platform.watcher.watches, IsEmpty());
}

TEST(AppCatalogSelftest, provesItsRuleAndCleansUp) {
    MemoryFileStore files;
    const Environment environment{.dataHome = "/data", .temporaryDir = "/tmp"};
    files.folder("/tmp");
    const auto result = appCatalogSelftest(files, environment);
    EXPECT_EQ(result.verdict, SelftestResult::Verdict::proved) << result.report;
    EXPECT_THAT(result.report,
                HasSubstr("live: NOT MEASURED, Parsec is not installed on this Mac"));
    EXPECT_THAT(*files.entries("/tmp"), IsEmpty());

    files.file("/data/applications/parsec.desktop",
               "[Desktop Entry]\nType=Application\nName=Parsec\nExec=x\nNoDisplay=true\nIcon=p\n");
    EXPECT_THAT(appCatalogSelftest(files, environment).report,
                HasSubstr("live: /data/applications/parsec.desktop is listed"));
    files.file("/data/applications/parsec.desktop",
               "[Desktop Entry]\nType=Application\nName=Parsec\nExec=x\nNoDisplay=true\n");
    const auto dropped = appCatalogSelftest(files, environment);
    EXPECT_EQ(dropped.verdict, SelftestResult::Verdict::refuted);
    EXPECT_THAT(dropped.report,
                HasSubstr("FAIL live: /data/applications/parsec.desktop is still "
                          "dropped"));
    EXPECT_THAT(dropped.report,
                testing::EndsWith("selftest-app-catalog: FAILED, see the lines above"));
}

TEST(AppCatalogSelftest, withoutAPlaceToWriteNothingIsMeasured) {
    MemoryFileStore files;
    files.folder("/tmp");
    files.forbid("/tmp");
    const auto result = appCatalogSelftest(files, Environment{.temporaryDir = "/tmp"});
    EXPECT_EQ(result.verdict, SelftestResult::Verdict::notMeasured);
    EXPECT_THAT(result.report,
                HasSubstr("selftest-app-catalog: NOT MEASURED, /tmp/tsr-app-catalog-"));
}

} // namespace
} // namespace tessarine
