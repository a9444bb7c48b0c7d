#include "launcherapp/sources/CalcStore.h"

#include "LauncherCore/answers/CalcHistoryJson.h"
#include "launcherapp/operations/Diagnostics.h"
#include "tests/fakes/FakePlatform.h"

#include <gmock/gmock.h>

#include <limits>
#include <memory>

namespace tessarine {
namespace {

using testing::HasSubstr;
using testing::Pair;
using testing::UnorderedElementsAre;

class CalcStoreTest : public testing::Test {
protected:
    /// Loaded at once.
    std::unique_ptr<CalcStore> start() {
        auto store = make();
        store->load();
        return store;
    }

    std::unique_ptr<CalcStore> make() {
        return std::make_unique<CalcStore>(platform.queue,
                                           StateFile(platform.files,
                                                     platform.work.serial("calculations"),
                                                     diagnostics,
                                                     path,
                                                     StateFile::Failures::silent),
                                           [this] { return isEnabled; });
    }

    std::string text(const std::string& suffix = "") {
        platform.time.settle();
        return platform.files.read(path + suffix, 1 << 20).value_or("(absent)");
    }

    const std::string path = "/data/calc-history.json";
    FakePlatform platform;
    Diagnostics diagnostics{platform.queue,
                            platform.work,
                            platform.files,
                            [] { return "/data"; },
                            Diagnostics::Run::oneShot};
    bool isEnabled = true;
};

TEST_F(CalcStoreTest, whatIsKeptInOneRunIsThereInTheNext) {
    auto store = start();
    int changes = 0;
    const auto subscription = store->onChange([&] { ++changes; });
    store->record({.expression = "rent = 800",
                   .formatted = "800",
                   .value = 800,
                   .detail = "rent is now 800",
                   .assignedName = "rent"});
    store->record({.expression = "5 km in miles",
                   .formatted = "3.11",
                   .value = 3.11,
                   .kind = CalcEntry::Kind::unit});
    const auto first = store->history().entries().back();
    EXPECT_EQ(first.at, platform.queue.epoch);
    EXPECT_NE(first.id, store->history().entries().front().id);
    store->pin(first.id);
    EXPECT_EQ(changes, 3);
    const auto before = store->history();
    platform.time.settle();

    store = start();
    EXPECT_EQ(store->history(), before);
    EXPECT_TRUE(store->history().entries().back().pinned);
    EXPECT_THAT(store->variables(), UnorderedElementsAre(Pair("ans", 3.11), Pair("rent", 800)));
    store->unpin(first.id);
    store->clear(CalcHistoryStore::Pinned::kept);
    EXPECT_TRUE(store->variables().empty());
    EXPECT_EQ(text(), R"({"entries":[]})");
}

TEST_F(CalcStoreTest, filesNothingThatItMustNot) {
    auto store = start();
    store->record({.expression = "1+1", .formatted = "2", .value = 2});
    const auto before = text();
    int changes = 0;
    const auto subscription = store->onChange([&] { ++changes; });
    isEnabled = false;
    store->record({.expression = "2+2", .formatted = "4", .value = 4});
    isEnabled = true;
    store->record({.expression = "1/0", .value = std::numeric_limits<double>::infinity()});
    store->remove("no such id");
    store->pin("no such id");
    EXPECT_EQ(changes, 0);
    EXPECT_EQ(text(), before);
    EXPECT_EQ(store->variables().at("ans"), 2);
}

TEST_F(CalcStoreTest, aHistoryThatCannotBeReadIsKept) {
    const std::string foreign = R"({"entries":[{"id":"a"}]})";
    platform.files.file(path, foreign);
    auto store = start();
    EXPECT_TRUE(store->history().entries().empty());
    EXPECT_EQ(text(), foreign) << "until something is calculated";
    store->record({.expression = "1+1", .formatted = "2", .value = 2});
    EXPECT_THAT(text(), HasSubstr("1+1"));
    EXPECT_EQ(text(".damaged"), foreign);

    platform.files.forbid(path);
    store = start();
    store->record({.expression = "3+3", .formatted = "6", .value = 6});
    platform.time.settle();
    EXPECT_EQ(store->variables().at("ans"), 6) << "the history in memory goes on";
}

TEST_F(CalcStoreTest, whatIsDoneBeforeTheFileIsReadIsDoneToIt) {
    start()->record({.expression = "rent = 800", .value = 800, .assignedName = "rent"});
    platform.time.settle();
    auto store = make();
    store->loadLater();
    int changes = 0;
    const auto subscription = store->onChange([&] { ++changes; });
    EXPECT_TRUE(store->variables().empty()) << "the disk is not waited for";
    store->record({.expression = "1+1", .formatted = "2", .value = 2});
    store->pin(store->history().entries().front().id);
    const auto before = text(); // which lets the file arrive, and saves
    EXPECT_EQ(changes, 3);
    EXPECT_THAT(store->variables(), UnorderedElementsAre(Pair("ans", 2), Pair("rent", 800)));
    EXPECT_TRUE(store->history().entries().front().pinned);
    EXPECT_EQ(before, CalcHistoryJson::encoded(store->history()));
}

} // namespace
} // namespace tessarine
