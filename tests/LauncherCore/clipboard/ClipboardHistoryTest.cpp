#include "LauncherCore/clipboard/ClipboardHistory.h"

#include "tests/LauncherCore/clipboard/Clippings.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <numeric>
#include <random>

namespace tessarine {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr double day = 86400;
constexpr std::size_t all = 1000;

/// A clipping as the model of `record` sees it.
struct Modelled {
    std::string id;
    bool pinned = false;
    std::int64_t count = 1;

    bool operator==(const Modelled&) const = default;
};

std::vector<Modelled> modelled(const ClipboardHistory& history) {
    std::vector<Modelled> result;
    for (const auto& entry : history.entries)
        result.push_back({entry.id, entry.pinned, entry.count});
    return result;
}

/// What a copy does to a list, told as simply as can be; gives what went.
std::vector<std::string> recordInto(std::vector<Modelled>& list, const std::string& id) {
    const auto old = std::ranges::find(list, id, &Modelled::id);
    Modelled head{id};
    if (old != list.end()) {
        head = {id, old->pinned, old->count + 1};
        list.erase(old);
    }
    list.insert(list.begin(), head);
    std::vector<std::string> gone;
    for (std::size_t i = list.size(); i-- > 0 && list.size() > 500;) {
        if (list[i].pinned)
            continue;
        gone.push_back(list[i].id);
        list.erase(list.begin() + static_cast<std::ptrdiff_t>(i));
    }
    return gone;
}

TEST(ClipboardHistory, recordsAsASimpleListDoes) {
    std::mt19937 random(20260101);
    for (const unsigned pinsOf100 : {0u, 2u, 40u, 98u}) {
        SCOPED_TRACE(pinsOf100);
        ClipboardHistory history;
        std::vector<Modelled> model;
        for (int step = 0; step < 3000; ++step) {
            const auto id = std::to_string(random() % 900);
            const auto gone = recordInto(model, id);
            EXPECT_EQ(idsOf(history.record(clipping(id, step))), gone);
            if (random() % 100 >= pinsOf100)
                continue;
            const auto pin = std::to_string(random() % 900);
            history.togglePin(pin);
            for (auto& each : model)
                each.pinned = each.pinned != (each.id == pin);
        }
        EXPECT_EQ(modelled(history), model);
    }
}

TEST(ClipboardHistory, dropsANewClippingAmongPinnedOnesAtOnce) {
    ClipboardHistory history;
    for (int i = 0; i < 500; ++i)
        history.entries.push_back(pinned(clipping(std::to_string(i))));
    EXPECT_THAT(idsOf(history.record(clipping("new", 1))), ElementsAre("new"));
    EXPECT_EQ(history.entries.size(), 500u);

    history.entries.push_back(pinned(clipping("one more")));
    EXPECT_THAT(history.record(clipping("0", 2)), IsEmpty()); // there already, and pinned
    EXPECT_EQ(history.entries.size(), 501u);                  // pinned ones stay over the cap
}

TEST(ClipboardHistory, keepsWhatIsKnownOfAClippingThatIsCopiedAgain) {
    ClipboardHistory history;
    auto first = ClipboardEntry::make({.id = "a",
                                       .kind = ClipKind::image,
                                       .imageFile = "a.png",
                                       .fullFile = "a-full.png",
                                       .at = 1,
                                       .sourceApp = "Editor"});
    first.pinned = true;
    first.syncOrigin = "desk";
    first.pastedInto = {{"Mail"}};
    history.record(first);
    history.record(clipping("b", 2));

    history.record(clipping("a", 3)); // by an application without a name
    auto expected = first;
    expected.lastSeen = 3;
    expected.count = 2;
    EXPECT_EQ(history.entries.front(), expected);

    auto again = clipping("a", 2); // and the clock was set back
    again.sourceApp = "Viewer";
    history.record(again);
    expected.lastSeen = 2;
    expected.count = 3;
    expected.sourceApp = "Viewer";
    EXPECT_EQ(history.entries.front(), expected);
}

TEST(ClipboardHistory, changesNothingForAnUnknownId) {
    TaughtGroups groups;
    ClipboardHistory history{{clipping("a", 1), clipping("b", 2)}};
    const auto before = history;
    history.bump("x", 5);
    history.touch("x", 5);
    history.togglePin("x");
    history.notePaste("x", "Mail", groups.runtime);
    EXPECT_THAT(history.remove("x"), IsEmpty());
    EXPECT_EQ(history, before);
    EXPECT_EQ(history.entry("x"), nullptr);
}

TEST(ClipboardHistory, removesEveryEntryOfAnIdEvenByItsOwn) {
    ClipboardHistory history{{clipping("twice"), clipping("b"), clipping("twice")}};
    EXPECT_THAT(idsOf(history.remove(history.entries.front().id)), ElementsAre("twice", "twice"));
    EXPECT_THAT(idsOf(history.entries), ElementsAre("b"));
}

TEST(ClipboardHistory, countsACopyInPlaceAndAUseNotAtAll) {
    ClipboardHistory history{{clipping("a", 1), clipping("b", 2)}};
    history.bump("b", 9);
    history.touch("a", 10);
    EXPECT_THAT(idsOf(history.entries), ElementsAre("a", "b"));
    EXPECT_EQ(history.entry("b")->count, 2);
    EXPECT_EQ(history.entry("b")->lastSeen, 9);
    EXPECT_EQ(history.entry("a")->count, 1);
    EXPECT_EQ(history.entry("a")->lastSeen, 10);
}

TEST(ClipboardHistory, marksEachPlaceOnceTheMostRecentLast) {
    TaughtGroups groups;
    ClipboardHistory history{{clipping("a")}};
    EXPECT_EQ(history.entry("a")->pasteCount(), 0u);
    for (const auto* place : {"Mail", "Notes", "Mail"})
        history.notePaste("a", place, groups.runtime);
    EXPECT_THAT(*history.entry("a")->pastedInto, ElementsAre("Notes", "Mail"));
}

TEST(ClipboardHistory, letsClippingsAgeByTheirKind) {
    const double now = 100 * day;
    const ClipRetention retention{.textDays = 2, .fileDays = 0, .imageDays = -1};
    auto copiedAgain = clipping("again", 0);
    copiedAgain.lastSeen = now;

    const struct {
        ClipboardEntry entry;
        bool stays;
        const char* reason;
    } cases[] = {
        {clipping("a", now - 2 * day), true, "exactly as old as may be"},
        {clipping("a", now - 2 * day - 1), false, "older"},
        {pinned(clipping("a", 0)), true, "pinned"},
        {copiedAgain, true, "first seen long ago and copied today"},
        {clipping("a", now + day), true, "of a clock that was set back"},
        {clipping("a", 0, "/x", ClipKind::file), true, "0 days: for ever"},
        {clipping("a", 0, "Image", ClipKind::image), true, "days below 0: for ever"},
    };

    for (const auto& [entry, stays, reason] : cases) {
        SCOPED_TRACE(reason);
        ClipboardHistory history{{entry}};
        const auto dropped = history.prune(now, retention);
        EXPECT_EQ(history.entries.size(), stays ? 1u : 0u);
        EXPECT_EQ(dropped.size(), stays ? 0u : 1u);
    }
}

TEST(ClipboardHistory, reportsTheAgedBeforeTheCapped) {
    const double now = 100 * day;
    ClipboardHistory history{{clipping("new", now),
                              clipping("old", 0),
                              clipping("file", 0, "/x", ClipKind::file),
                              pinned(clipping("pin", 0)),
                              clipping("older", 0),
                              clipping("last", now)}};
    EXPECT_THAT(idsOf(history.prune(now, {.textDays = 1, .keep = 2})),
                ElementsAre("old", "older", "last", "file"));
    EXPECT_THAT(idsOf(history.entries), ElementsAre("new", "pin"));

    EXPECT_THAT(history.prune(now, {}), IsEmpty());
    EXPECT_THAT(idsOf(history.prune(now, {.keep = -5})), ElementsAre("new"));
    EXPECT_THAT(idsOf(history.entries), ElementsAre("pin"));
}

TEST(ClipboardHistory, clearsWhatIsNewAndUnpinned) {
    const ClipboardHistory history{{clipping("old", 39),
                                    clipping("edge", 40),
                                    pinned(clipping("pin", 99)),
                                    clipping("ahead", 200)}};

    const struct {
        std::optional<ClipboardHistory::Seconds> newerThan;
        std::vector<std::string> cleared;
        std::vector<std::string> kept;
    } cases[] = {
        {std::nullopt, {"old", "edge", "ahead"}, {"pin"}},
        {ClipboardHistory::Seconds(60), {"edge", "ahead"}, {"old", "pin"}},
    };

    for (const auto& [newerThan, cleared, kept] : cases) {
        auto left = history;
        EXPECT_EQ(idsOf(left.clear(100, newerThan)), cleared);
        EXPECT_EQ(idsOf(left.entries), kept);
    }
}

TEST(ClipboardHistory, findsTextHoweverItIsWritten) {
    TaughtGroups groups;

    const struct {
        const char* query;
        const char* text;
        bool found;
    } cases[] = {
        {"cafe", "a Café", true},
        {"MÜNCHENER", "Münchener", true},
        {"ｃａｆé", "cafe", true},
        {"\u0301", "anything", true}, // folds to nothing
        {"tea", "Café", false},
        {"long needle", "needle", false},
    };

    for (const auto& [query, text, found] : cases) {
        const ClipboardHistory history{{clipping("a", 0, text)}};
        EXPECT_EQ(history.search(query, all, {}, groups.runtime).size(), found ? 1u : 0u) << query;
    }
}

TEST(ClipboardHistory, ordersByTheLastUseAloneAndKeepsTies) {
    TaughtGroups groups;
    ClipboardHistory history{{clipping("old", 1, "word"),
                              clipping("tie 1", 2, "word"),
                              pinned(clipping("pin", 0, "word")),
                              clipping("tie 2", 2, "other word"),
                              clipping("new", 3, "nothing")}};
    EXPECT_THAT(idsOf(history.search("", all, {}, groups.runtime)),
                ElementsAre("new", "tie 1", "tie 2", "old", "pin"));
    EXPECT_THAT(idsOf(history.search("word", 3, {}, groups.runtime)),
                ElementsAre("tie 1", "tie 2", "old"));
    history.touch("old", 4);
    EXPECT_THAT(idsOf(history.search("word", 1, {}, groups.runtime)), ElementsAre("old"));
    EXPECT_THAT(history.search("", 0, {}, groups.runtime), IsEmpty());
}

TEST(ClipboardHistory, countsEveryEntryUnderTheFilterThatFindsIt) {
    TaughtGroups groups;
    groups.runtime.setCurrent({{{.name = "Receipts", .match = {.contains = "receipt"}},
                                {.name = "Pictures", .match = {.kind = ClipKind::image}}}});
    std::mt19937 random(20260101);
    const std::vector<std::string> texts = {
        "https://a", "A RECEIPT", "https://receipt", "plain", "Image 1×1", ""};
    ClipboardHistory history;
    for (int i = 0; i < 300; ++i)
        history.record(clipping(std::to_string(i),
                                random() % 50,
                                texts[random() % texts.size()],
                                static_cast<ClipKind>(random() % 3)));

    std::int64_t total = 0;
    for (const auto& [key, count] : history.counts(groups.runtime)) {
        const auto found = history.search("", all, key, groups.runtime);
        EXPECT_GT(count, 0);
        EXPECT_EQ(std::ssize(found), count);
        total += count;
    }
    EXPECT_EQ(total, std::ssize(history.entries));
    // A group comes before what its clippings are otherwise.
    EXPECT_THAT(
        history.search("", all, ClipFilterKey::builtin(ClipCategory::image), groups.runtime),
        IsEmpty());
    for (const auto& entry :
         history.search("", all, ClipFilterKey::builtin(ClipCategory::link), groups.runtime))
        EXPECT_EQ(entry.text.string(), "https://a");
}

} // namespace
} // namespace tessarine
