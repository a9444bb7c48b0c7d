#include "launcherapp/query/UsageStore.h"

#include "LauncherCore/query/UsageJson.h"
#include "launcherapp/operations/Diagnostics.h"
#include "tests/fakes/FakePlatform.h"

#include <gmock/gmock.h>

namespace tessarine {
namespace {

using testing::HasSubstr;

class UsageStoreTest : public testing::Test {
protected:
    /// Loaded at once.
    std::unique_ptr<UsageStore> start() {
        auto store = make();
        store->load();
        return store;
    }

    std::unique_ptr<UsageStore> make() {
        const auto file = [this](const std::string& name) {
            return StateFile(platform.files,
                             platform.work.serial("usage"),
                             diagnostics,
                             "/data/" + name,
                             StateFile::Failures::silent);
        };
        return std::make_unique<UsageStore>(
            platform.queue,
            diagnostics,
            UsageStore::Files{.own = file("usage.json"), .synced = file("synced-usage.json")},
            [this] { return learns; },
            [this](std::string_view id) { return id == usersCommand; });
    }

    std::string text(const std::string& name) {
        platform.time.settle();
        return platform.files.read("/data/" + name, 1 << 20).value_or("(absent)");
    }

    FakePlatform platform;
    Diagnostics diagnostics{platform.queue,
                            platform.work,
                            platform.files,
                            [] { return "/data"; },
                            Diagnostics::Run::oneShot};
    bool learns = true;
    std::string usersCommand;
};

TEST_F(UsageStoreTest, whatIsPickedInOneRunRanksInTheNext) {
    auto store = start();
    store->record("a");
    store->recordChoice("term", "a");
    store->recordChoice("term", "a");
    platform.time.settle();
    store = start();
    EXPECT_EQ(store->ranking().frecency("a", platform.queue.now()), 100);
    EXPECT_EQ(store->ranking().affinity("term", "a", 0), 1200);
    EXPECT_EQ(store->log().items.at("a").launches.front(), platform.queue.epoch);
}

TEST_F(UsageStoreTest, learningThatIsOffForgetsNothing) {
    auto store = start();
    store->record("a");
    learns = false;
    store->record("b");
    store->recordChoice("term", "b");
    EXPECT_EQ(store->ranking(), UsageLog{});
    EXPECT_TRUE(store->log().items.contains("a"));
    EXPECT_FALSE(store->log().items.contains("b"));
    EXPECT_THAT(text("usage.json"), HasSubstr("\"a\""));
    learns = true;
    EXPECT_TRUE(store->ranking().items.contains("a"));
}

TEST_F(UsageStoreTest, otherComputersCountAndSurviveAReset) {
    auto store = start();
    store->record("a");
    UsageLog other;
    other.record("a", platform.queue.now());
    other.record("b", platform.queue.now());
    store->setOtherDevices({{"d2", other}});
    EXPECT_EQ(store->ranking().items.at("a").total, 2);
    store->record("a"); // and what comes later too
    EXPECT_EQ(store->ranking().items.at("a").total, 3);
    platform.time.settle();
    store = start();
    EXPECT_EQ(store->ranking().items.at("a").total, 3);
    store->reset();
    EXPECT_EQ(store->ranking().items.at("a").total, 1);
    EXPECT_EQ(text("usage.json"), "(absent)");
    EXPECT_THAT(text("synced-usage.json"), HasSubstr("\"d2\""));
    store->restoreLocal(other);
    EXPECT_EQ(store->ranking().items.at("b").total, 2);
    EXPECT_EQ(text("usage.json"), UsageJson::encoded(other));
}

TEST_F(UsageStoreTest, historyOfRetiredIdsIsCarriedOver) {
    UsageLog log;
    log.record("cmd:wispr", 1);
    platform.files.file("/data/usage.json", UsageJson::encoded(log));
    usersCommand = "wispr"; // somebody's own command of that name keeps its history
    EXPECT_TRUE(start()->log().items.contains("cmd:wispr"));
    EXPECT_EQ(text("tessarine.log"), "(absent)");
    usersCommand = "";
    EXPECT_TRUE(start()->log().items.contains("cmd:sys.fixWispr"));
    EXPECT_THAT(text("tessarine.log"),
                HasSubstr(" usage: carried history to replaced rows: cmd:wispr -> "
                          "cmd:sys.fixWispr\n"));
    EXPECT_THAT(text("usage.json"), testing::Not(HasSubstr("cmd:wispr")));
}

TEST_F(UsageStoreTest, aDocumentThatIsNoneIsKept) {
    platform.files.file("/data/usage.json", R"({"items":{"a")");
    auto store = start();
    EXPECT_EQ(store->log(), UsageLog{});
    EXPECT_EQ(text("usage.json"), R"({"items":{"a")"); // until something is learned
    store->record("b");
    EXPECT_THAT(text("usage.json"), HasSubstr("\"b\""));
    EXPECT_EQ(text("usage.json.damaged"), R"({"items":{"a")");

    platform.files.forbid("/data/usage.json");
    store = start();
    store->record("c"); // no message, no exception, and the log goes on
    EXPECT_TRUE(store->ranking().items.contains("c"));
}

TEST_F(UsageStoreTest, whatIsRecordedBeforeTheFileIsReadIsAddedToIt) {
    UsageLog before;
    before.record("a", 1);
    before.recordChoice("term", "a", 1);
    UsageLog other;
    other.record("a", 2);
    platform.files.file("/data/usage.json", UsageJson::encoded(before));
    platform.files.file("/data/synced-usage.json", UsageJson::encoded({{"d2", other}}));
    auto store = make();
    store->loadLater();
    int loads = 0;
    const auto watch = store->onLoaded([&] { ++loads; });
    EXPECT_EQ(store->ranking(), UsageLog{}) << "the disk is not waited for";
    store->record("a");
    store->recordChoice("term", "a");
    EXPECT_EQ(store->ranking().items.at("a").total, 1);
    platform.time.settle();
    EXPECT_EQ(loads, 2);
    EXPECT_EQ(store->log().items.at("a").total, 2);
    EXPECT_EQ(store->log().items.at("a").launches.back(), platform.queue.epoch);
    EXPECT_EQ(store->log().affinity("term", "a", 0), 1200);
    EXPECT_EQ(store->ranking().items.at("a").total, 3);
    EXPECT_EQ(text("usage.json"), UsageJson::encoded(store->log()));
}

TEST_F(UsageStoreTest, whatReplacesTheFileBeforeItIsReadReplacesIt) {
    UsageLog before;
    before.record("a", 1);
    platform.files.file("/data/usage.json", UsageJson::encoded(before));
    platform.files.file("/data/synced-usage.json", UsageJson::encoded({{"d2", before}}));
    auto store = make();
    store->loadLater();
    store->reset();
    store->setOtherDevices({});
    platform.time.settle();
    EXPECT_EQ(store->ranking(), UsageLog{});
    EXPECT_EQ(text("usage.json"), "(absent)");
    EXPECT_EQ(text("synced-usage.json"), "{}");
}

TEST_F(UsageStoreTest, aDocumentThatIsNoneIsKeptWhoeverReadsIt) {
    platform.files.file("/data/usage.json", "{broken");
    auto store = make();
    store->loadLater();
    store->record("b");
    EXPECT_THAT(text("usage.json"), HasSubstr("\"b\""));
    EXPECT_EQ(text("usage.json.damaged"), "{broken");
    make()->loadLater(); // and one that goes before its documents come is not told of them
    platform.time.settle();
}

} // namespace
} // namespace tessarine
