#include "LauncherCore/index/NameIndex.h"

#include "LauncherCore/query/Matcher.h"
#include "LauncherCore/query/UsageLog.h"
#include "LauncherCore/text/Folding.h"

#include <gmock/gmock.h>

#include <cstring>
#include <map>
#include <random>
#include <set>

namespace tessarine {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr double now = 1.8e9;

struct Named {
    std::string name;
    bool isFolder = false;
};

std::shared_ptr<const ItemList> listOf(const std::string& folder, const std::vector<Named>& items) {
    auto list = std::make_shared<ItemList>();
    const auto directory = list->addDirectory(folder);
    for (const auto& [name, isFolder] : items)
        list->add(directory, name, Matcher::normalize(name), isFolder);
    return list;
}

NameIndex indexOf(const std::vector<std::string>& names) {
    std::vector<Named> items;
    for (const auto& name : names)
        items.push_back({name});
    return NameIndex({listOf("/h", items)});
}

std::vector<std::string>
found(const NameIndex& index, std::string_view query, std::size_t limit = 6) {
    std::vector<std::string> names;
    for (const auto& each : index.search({.query = query, .limit = limit}, {}, now))
        names.push_back(each.item.name);
    return names;
}

/// The rules of a search as they read, item by item, with none of the structures.
class PlainSearch {
public:
    PlainSearch(const NameIndex& index, const UsageLog& usage) : usage_(usage) {
        for (NameIndex::Position i = 0; i < index.size(); ++i)
            items_.push_back(index.item(i));
    }

    std::vector<NameIndex::Found> search(const NameIndex::Question& question) const {
        const auto needle = Matcher::normalize(question.query);
        if (needle.empty())
            return {};
        std::vector<std::size_t> words;
        std::vector<std::size_t> plains;
        collectHits(needle, question.limit * 8, words, plains);
        std::vector<NameIndex::Found> results;
        for (const auto i : words)
            consider(i, question, results);
        if (words.size() < question.limit * 8) {
            for (std::size_t i = 0; i < std::min<std::size_t>(plains.size(), 400); ++i)
                consider(plains[i], question, results);
        }
        if (results.size() < question.limit && needle.size() >= 2)
            addFuzzy(needle, question, words, plains, results);
        std::ranges::stable_sort(results, [](const auto& left, const auto& right) {
            return std::pair(-left.score, left.item.name) <
                   std::pair(-right.score, right.item.name);
        });
        std::set<std::string> shown;
        std::erase_if(results, [&](const NameIndex::Found& result) {
            const auto name = Folding::lowercase(result.item.name);
            if (!shown.contains(name) && shown.size() == question.limit)
                return true;
            shown.insert(name);
            return false;
        });
        return results;
    }

private:
    void collectHits(const std::string& needle,
                     std::size_t wanted,
                     std::vector<std::size_t>& words,
                     std::vector<std::size_t>& plains) const {
        for (std::size_t i = 0; i < items_.size(); ++i) {
            const auto text = "\n" + items_[i].norm;
            for (auto at = text.find(needle, 1); at != std::string::npos;
                 at = text.find(needle, at + 1)) {
                if (words.size() >= 1500 || plains.size() >= 20000)
                    return;
                const bool atWord = std::strchr("\n (-.[_", text[at - 1]) != nullptr;
                if (!atWord && words.size() >= wanted)
                    continue;
                (atWord ? words : plains).push_back(i);
                break;
            }
        }
    }

    void consider(std::size_t index,
                  const NameIndex::Question& question,
                  std::vector<NameIndex::Found>& results) const {
        const auto& item = items_[index];
        if (question.foldersOnly && !item.isFolder)
            return;
        if (!question.extensions.empty() && std::ranges::count(question.extensions, item.ext) == 0)
            return;
        const auto match = Matcher::score(question.query, item.name);
        if (!match)
            return;
        results.push_back({.item = item,
                           .score = match->score - 6 * std::ranges::count(item.id, '/') +
                                    usage_.frecency(item.id, now) +
                                    usage_.affinity(question.query, item.id, now)});
    }

    void addFuzzy(const std::string& needle,
                  const NameIndex::Question& question,
                  const std::vector<std::size_t>& words,
                  const std::vector<std::size_t>& plains,
                  std::vector<NameIndex::Found>& results) const {
        for (std::size_t i = 0; i < items_.size(); ++i) {
            if (items_[i].norm.empty() || items_[i].norm.front() != needle.front() ||
                std::ranges::count(words, i) > 0 || std::ranges::count(plains, i) > 0 ||
                !NameScan::couldMatch(needle, items_[i].norm))
                continue;
            consider(i, question, results);
            if (results.size() >= 401)
                return;
        }
    }

    const UsageLog& usage_;
    std::vector<IndexedItem> items_;
};

/// Names of few letters, so that queries hit, repeat, and run across words.
std::string randomName(std::mt19937& random) {
    static const std::vector<std::string> parts{"a", "b", "ab", "B", "A",  "aB",  "Ab", " ",
                                                "-", ".", "_",  "(", "[",  "é",   "ß",  "日",
                                                "1", "S", "c",  "T", "\n", "\xff"};
    std::string name;
    const auto count = 1 + random() % 7;
    for (std::size_t i = 0; i < count; ++i)
        name += parts[random() % parts.size()];
    return name;
}

TEST(NameIndex, findsWhatThePlainReadingOfItsRulesFinds) {
    std::mt19937 random(20261121);
    for (int round = 0; round < 60; ++round) {
        SCOPED_TRACE(round);
        std::vector<Named> near;
        std::vector<Named> far;
        const auto count = round < 50 ? 300 : 4000; // the last are beyond the scan's limits
        for (int i = 0; i < count; ++i)
            (random() % 3 == 0 ? far : near).push_back({randomName(random), random() % 4 == 0});
        const NameIndex index({listOf("/h", near), listOf("/h/deep/er", far)});
        UsageLog usage;
        for (int i = 0; i < 20; ++i) {
            const auto id =
                index.item(static_cast<NameIndex::Position>(random() % index.size())).id;
            usage.record(id, now - 3600);
            usage.recordChoice("ab", id, now);
        }
        const PlainSearch plain(index, usage);
        const std::vector<std::string> extensions{"ab", "b"};
        for (int i = 0; i < 25; ++i) {
            const auto query = randomName(random);
            const NameIndex::Question question{.query = query,
                                               .foldersOnly = random() % 5 == 0,
                                               .extensions = random() % 5 == 0
                                                                 ? std::span(extensions)
                                                                 : std::span<const std::string>(),
                                               .limit = random() % 4 == 0 ? 500U : 6U};
            ASSERT_EQ(index.search(question, usage, now), plain.search(question)) << query;
        }
    }
}

TEST(NameIndex, ordersByWordThenDepthThenName) {
    const NameIndex index({listOf("/a/b/c/d", {{"report.pdf"}}),
                           listOf("/a", {{"report.pdf"}, {"Annual report"}, {"unreported"}})});
    const auto results = index.search({.query = "report", .limit = 6}, {}, now);
    std::vector<std::string> ids;
    for (const auto& each : results)
        ids.push_back(each.item.id);
    EXPECT_THAT(ids, ElementsAre("/a/report.pdf", "/a/b/c/d/report.pdf", "/a/Annual report"));
}

TEST(NameIndex, theLimitCountsNames) {
    const NameIndex index({listOf("/a", {{"notes"}, {"Notes"}, {"notes 2"}, {"notes 3"}})});
    EXPECT_THAT(found(index, "notes", 2), ElementsAre("Notes", "notes", "notes 2"));
}

TEST(NameIndex, findsAtTheEdges) {
    const auto index = indexOf({"first", "two\nlines", "tail"});
    EXPECT_THAT(found(index, "tail"), ElementsAre("tail")); // the very end of the buffer
    EXPECT_THAT(found(index, "lines"), IsEmpty()); // a line feed is dropped, so no word begins
    EXPECT_THAT(found(index, "twol"), ElementsAre("two\nlines"));
    EXPECT_THAT(found(index, "first\ntwo"), IsEmpty()); // no needle reaches into the next name
    EXPECT_THAT(found(index, std::string(100, 'x')), IsEmpty());
    EXPECT_THAT(found(index, ""), IsEmpty());
    EXPECT_THAT(found(index, "\u200b"), IsEmpty()); // normalises to nothing
    EXPECT_THAT(found(NameIndex(), "a"), IsEmpty());
    EXPECT_THAT(found(indexOf({"Some Common Text", "sct"}), "sct"),
                ElementsAre("sct", "Some Common Text"));
}

TEST(NameScan, everyMethodFindsEveryPlace) {
    std::mt19937 random(7);
    for (int round = 0; round < 300; ++round) {
        std::string text;
        const auto size = random() % 400;
        for (std::size_t i = 0; i < size; ++i)
            text += "aab \n"[random() % 5];
        std::string needle;
        for (std::size_t i = 0, length = 1 + random() % 40; i < length; ++i)
            needle += "aab "[random() % 4];
        if (round % 2 == 0 && text.size() > 80) // one that certainly stands there
            needle = text.substr(random() % 40, 1 + random() % 40);
        for (const auto method : {NameScan::Method::best, NameScan::Method::horspool}) {
            const NameScan::Finder finder(needle, method);
            std::vector<std::size_t> places;
            for (auto at = finder.next(text, 0); at; at = finder.next(text, *at + 1))
                places.push_back(*at);
            std::vector<std::size_t> expected;
            for (auto at = text.find(needle); at != std::string::npos;
                 at = text.find(needle, at + 1))
                expected.push_back(at);
            ASSERT_EQ(places, expected) << needle << " in " << text;
        }
    }
}

TEST(NameScan, thePreFilterPassesEveryMatch) {
    std::mt19937 random(3);
    int rejected = 0;
    for (int i = 0; i < 20000; ++i) {
        const auto query = randomName(random);
        const auto name = randomName(random);
        const bool passes =
            NameScan::couldMatch(Matcher::normalize(query), Matcher::normalize(name));
        rejected += passes ? 0 : 1;
        ASSERT_TRUE(passes || !Matcher::score(query, name)) << query << " in " << name;
    }
    EXPECT_GT(rejected, 1000);
    EXPECT_TRUE(NameScan::couldMatch("ab b", "ab")); // both words begin in "aB"
    EXPECT_TRUE(NameScan::couldMatch("", "ab"));
    EXPECT_FALSE(NameScan::couldMatch("ba", "ab"));
}

} // namespace
} // namespace tessarine
