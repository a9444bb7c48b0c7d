#include "launcherapp/sources/ZoneStore.h"

#include "LauncherCore/data/Tables.h"
#include "launcherapp/operations/Diagnostics.h"
#include "launcherapp/shell/Prefs.h"
#include "tests/fakes/FakePlatform.h"

#include <gmock/gmock.h>

namespace tessarine {
namespace {

using testing::ElementsAre;

using testing::SizeIs;

class ZoneStoreTest : public testing::Test {
protected:
    void letMinutesPass(int minutes) { platform.time.advance(Seconds(minutes * 60)); }

    std::string homeNow() const { return store.context(0).home.identifier; }

    FakePlatform platform;
    Diagnostics diagnostics{platform.queue,
                            platform.work,
                            platform.files,
                            [] { return "/data"; },
                            Diagnostics::Run::oneShot};
    DefaultsStore defaults{platform.queue,
                           StateFile(platform.files,
                                     platform.work.serial("preferences"),
                                     diagnostics,
                                     "/config/preferences.json",
                                     StateFile::Failures::logged),
                           diagnostics};
    Environment environment{.home = "/home/u"};
    Prefs prefs{defaults, environment};
    std::string zoneHere = "Europe/Berlin";
    std::string storedHome;
    int reads = 0;
    ZoneStore store{platform.queue,
                    prefs,
                    {.read = [this] { return storedHome; },
                     .write = [this](const std::string& identifier) { storedHome = identifier; }},
                    [this] {
                        ++reads;
                        return zoneHere;
                    }};
};

TEST_F(ZoneStoreTest, theFirstStartMakesTheZoneOfThatDayTheHome) {
    store.start();
    EXPECT_EQ(storedHome, "Europe/Berlin");
    zoneHere = "Asia/Tokyo";
    letMinutesPass(2);
    const auto context = store.context(17);
    EXPECT_EQ(context.home, (ZoneClock{"Berlin", "Europe/Berlin"}));
    EXPECT_EQ(context.here, (ZoneClock{"Tokyo", "Asia/Tokyo"}));
    EXPECT_EQ(context.now, 17);
}

TEST_F(ZoneStoreTest, aStoredHomeStaysAndABrokenOneIsReplaced) {
    storedHome = "America/Denver";
    store.start();
    EXPECT_EQ(homeNow(), "America/Denver");
    storedHome = "Mars/Olympus";
    ZoneStore later(platform.queue,
                    prefs,
                    {.read = [this] { return storedHome; },
                     .write = [this](const std::string& identifier) { storedHome = identifier; }},
                    [] { return "Asia/Tokyo"; });
    later.start();
    EXPECT_EQ(later.context(0).home.identifier, "Asia/Tokyo");
    EXPECT_EQ(storedHome, "Asia/Tokyo");
}

TEST_F(ZoneStoreTest, homeFollowsTheComputerWhileTheUserWantsThat) {
    store.start();
    zoneHere = "Asia/Tokyo";
    prefs.timeHomeFollowsMac.set(true); // reads the zone at once
    EXPECT_EQ(homeNow(), "Asia/Tokyo");
    EXPECT_EQ(store.clocks().front().identifier, "Asia/Tokyo"); // the home in force comes first
    prefs.timeHomeFollowsMac.set(false);
    EXPECT_EQ(homeNow(), "Europe/Berlin");
    EXPECT_EQ(store.clocks().front().identifier, "Europe/Berlin");
}

TEST_F(ZoneStoreTest, homeIsTheFirstOfTheWatchedClocks) {
    store.start();
    const auto builtIn = Tables::rows("clocks");
    EXPECT_THAT(store.clocks(), SizeIs(builtIn.size() + 1));
    EXPECT_EQ(store.clocks().front(), (ZoneClock{"Berlin", "Europe/Berlin"}));
    storedHome = "Asia/Tokyo"; // is in the list already
    store.reload();
    EXPECT_THAT(store.clocks(), SizeIs(builtIn.size()));
    EXPECT_EQ(store.clocks().front(), (ZoneClock{"Tokyo", "Asia/Tokyo"}));
    EXPECT_EQ(store.context(0).primary, store.clocks());
}

TEST_F(ZoneStoreTest, theListSaysWhereItComesFrom) {
    store.start();
    EXPECT_EQ(store.sourceText(), "Perchbar's built-in list (Perchbar is not installed)");
    prefs.zonesFollowPerchbar.set(false);
    EXPECT_EQ(store.sourceText(), "Tessarine's copy of Perchbar's built-in list");
}

TEST_F(ZoneStoreTest, aQuestionReadsNoFile) {
    store.start();
    const int before = reads;
    for (int i = 0; i < 100; ++i)
        store.context(i);
    EXPECT_EQ(reads, before);
    letMinutesPass(10);
    EXPECT_GE(reads - before, 6);
}

} // namespace
} // namespace tessarine
