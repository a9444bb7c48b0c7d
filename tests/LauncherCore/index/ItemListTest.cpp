#include "LauncherCore/index/ItemList.h"

#include "LauncherCore/query/Matcher.h"

#include <gmock/gmock.h>

#include <map>
#include <random>

namespace tessarine {
namespace {

using testing::ElementsAreArray;

IndexedItem item(const std::string& id, bool isFolder) {
    const auto name = id.substr(id.rfind('/') + 1);
    return {.id = id,
            .name = name,
            .norm = Matcher::normalize(name),
            .isFolder = isFolder,
            .ext =
                isFolder ? "" : Matcher::normalize(std::string(IndexRules::pathExtension(name)))};
}

std::vector<IndexedItem> itemsOf(const ItemList& list) {
    std::vector<IndexedItem> items;
    for (std::size_t i = 0; i < list.size(); ++i)
        items.push_back(list.item(i));
    return items;
}

std::uint64_t plainDigest(const std::vector<IndexedItem>& items) {
    std::uint64_t sum = 0;
    for (const auto& each : items)
        sum += IndexRules::itemHash(each);
    return sum;
}

/// Items as a walk gives them, and some in no order at all.
std::vector<IndexedItem> randomItems(std::mt19937& random, std::size_t count) {
    const std::vector<std::string> names{
        "a", "B.TXT", "plain.tar.gz", "é", "bad\xff", "new\nline", "x y", std::string(255, 'n')};
    std::vector<IndexedItem> items;
    std::string directory = "/home/u";
    while (items.size() < count) {
        if (random() % 4 == 0)
            directory += "/" + names[random() % 4];
        else if (random() % 5 == 0 && directory.size() > 7)
            directory.resize(directory.rfind('/'));
        items.push_back(item(directory + "/" + names[random() % names.size()], random() % 3 == 0));
        if (random() % 20 == 0) {
            items.back().name = "Backup Drive";
            items.back().norm = "backup drive";
            items.back().isFolder = true;
            items.back().ext = "";
        }
    }
    return items;
}

TEST(IndexRules, digestsMatchPublishedFnvVectors) {
    EXPECT_EQ(IndexRules::fnv1a(""), 0xcbf29ce484222325U);
    EXPECT_EQ(IndexRules::fnv1a("a"), 0xaf63dc4c8601ec8cU);
    EXPECT_EQ(IndexRules::fnv1a("foobar"), 0x85944171f73967e8U);
    // One more step with the kind, written out.
    const auto stepped = (0x85944171f73967e8U ^ 1) * 0x100000001b3U;
    EXPECT_EQ(IndexRules::itemHash({.id = "foobar", .isFolder = true}), stepped);
}

TEST(IndexRules, extensionsAndPackagesFollowTheLastFullStop) {
    const struct {
        std::string name;
        std::string extension;
        bool isPackage;
    } cases[] = {
        {"plain.tar.gz", "gz", false},
        {"Thing.app", "app", true},
        {"Thing.APP", "APP", true}, // drives are often without case
        {"Thing.app.bak", "bak", false},
        {"app", "", false},
        {".app", "", false}, // a hidden name, no extension
        {"ends.", "", false},
        {"v1.2", "2", false},
    };

    for (const auto& [name, extension, isPackage] : cases) {
        SCOPED_TRACE(name);
        EXPECT_EQ(IndexRules::pathExtension(name), extension);
        EXPECT_EQ(IndexRules::isPackage(name), isPackage);
    }
}

TEST(ItemList, givesBackWhatItWasGiven) {
    std::mt19937 random(20260201);
    for (int round = 0; round < 200; ++round) {
        const auto items = randomItems(random, random() % 60);
        ItemList list;
        list.reserve(random() % 40);
        for (const auto& each : items)
            list.add(each);
        EXPECT_THAT(itemsOf(list), ElementsAreArray(items));
        EXPECT_EQ(list.digest(), plainDigest(items));
        for (std::size_t i = 0; i < items.size(); ++i)
            EXPECT_EQ(list.slashes(i), std::ranges::count(items[i].id, '/'));

        ItemList copied;
        for (std::size_t i = 0; i < list.size(); ++i)
            copied.addFrom(list, i);
        copied.shrink();
        EXPECT_EQ(copied, list);
    }
}

TEST(ItemList, leavesOutWhatIsRemovedAndItsDirectories) {
    std::mt19937 random(20260202);
    for (int round = 0; round < 200; ++round) {
        const auto items = randomItems(random, 1 + random() % 60);
        ItemList list;
        for (const auto& each : items)
            list.add(each);
        std::vector<bool> removed(items.size());
        std::vector<IndexedItem> rest;
        std::set<std::string> directories;
        for (std::size_t i = 0; i < items.size(); ++i) {
            removed[i] = random() % 3 == 0;
            if (removed[i])
                continue;
            rest.push_back(items[i]);
            directories.emplace(list.directoryPath(list.directory(i)));
        }
        auto left = list.without(removed);
        EXPECT_THAT(itemsOf(left), ElementsAreArray(rest));
        EXPECT_EQ(left.digest(), plainDigest(rest));
        for (std::uint32_t i = 0; i < left.directoryCount(); ++i)
            EXPECT_TRUE(directories.contains(std::string(left.directoryPath(i))));

        // What it gave is a list like any other, to be added to.
        rest.push_back(item("/home/u/late.txt", false));
        left.add(rest.back());
        EXPECT_THAT(itemsOf(left), ElementsAreArray(rest));
    }
}

TEST(ItemList, storesEachDirectoryOfAWalkOnce) {
    ItemList list;
    for (int i = 0; i < 100; ++i) {
        list.add(item("/r/d" + std::to_string(i), true));
        list.add(item("/r/d" + std::to_string(i) + "/file", false));
    }
    EXPECT_EQ(list.directoryCount(), 101u);
}

} // namespace
} // namespace tessarine
