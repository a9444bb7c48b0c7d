#include "launcherapp/query/rows/ClipRows.h"

#include "LauncherCore/clipboard/ClipGroupsRuntime.h"
#include "launcherapp/query/rows/ClearClipRows.h"

#include <gmock/gmock.h>

namespace tessarine {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr double now = 1'000'000'000;
constexpr double minute = 60;
constexpr double hour = 60 * minute;

std::vector<std::string> titles(const Rows& rows) {
    std::vector<std::string> result;
    for (const auto& row : rows)
        result.push_back(row.title);
    return result;
}

class ClipRowsTest : public testing::Test {
protected:
    ClipRowsTest() {
        groups.setCurrent(
            {{{.name = "Receipts", .symbol = "cart", .match = {.contains = "receipt"}},
              {.name = "Recipes", .symbol = "book", .match = {.contains = "dough"}},
              {.name = "Red", .symbol = "flag", .match = {.contains = "nothing"}}}});
    }

    ClipboardEntry& add(const std::string& id, ClipKind kind, const std::string& text, double age) {
        history.entries.push_back(ClipboardEntry::make(
            {.id = id, .kind = kind, .text = ClipText(text), .at = now - age}));
        return history.entries.back();
    }

    void addOneOfEach() {
        auto& letter = add("a", ClipKind::text, "Dear Wren,\nthe mooring\n", 30);
        letter.sourceApp = "Bluebird Mail";
        letter.count = 3;
        letter.pastedInto = {{"Teletype", "Notebook"}};
        auto& picture = add("b", ClipKind::image, "Image 480×300", 5 * minute);
        picture.sourceApp = "Darkroom";
        add("c", ClipKind::file, "/home/u/Documents/Kite.pdf", 3 * hour);
        auto& files = add("d", ClipKind::file, "/a/One\n/a/Two\n/a/Three", 50 * hour);
        files.pinned = true;
        files.fromOtherDevice = true;
        add("e", ClipKind::text, "https://tidewater.example", 51 * hour);
        add("f", ClipKind::text, "A receipt for rope", 52 * hour);
    }

    ClipRowSources sources() {
        const auto note = [this](const char* what) {
            return [this, what](const std::string& id) { done.push_back(what + (" " + id)); };
        };
        return {.history = history,
                .groups = groups,
                .now = now,
                .home = "/home/u",
                .thumbnail = [this](const ClipboardEntry&) { return thumbnail; },
                .picture = {},
                .paste = note("paste"),
                .copyToTop = note("top"),
                .togglePin = note("pin"),
                .remove = note("remove"),
                .clear =
                    [this](std::optional<std::chrono::duration<double>> newerThan) {
                        done.push_back(newerThan
                                           ? std::to_string(static_cast<int>(newerThan->count()))
                                           : "all");
                    },
                .pastes = pastes};
    }

    ResultRow row(const std::string& id) { return {.id = "clip:" + id}; }

    ClipboardHistory history;
    ClipGroupsRuntime groups{[] { return now; },
                             [](const std::string&) { return ClipFileBeginning(); }};
    std::optional<Image> thumbnail;
    bool pastes = true;
    std::vector<std::string> done;
};

TEST_F(ClipRowsTest, aRowSaysWhatWasCopiedWhereAndWhen) {
    addOneOfEach();

    const struct {
        const char* title;
        const char* subtitle;
        const char* symbol;
        const char* glyph;
    } expected[] = {
        {"Dear Wren,", "Bluebird Mail · just now", "textformat", ""},
        {"Image 480×300", "Darkroom · 5 min ago", "photo", ""},
        {"Kite.pdf", "3 h ago · ~/Documents", "doc", ""},
        {"One and 2 more", "from another device · 2 days ago · pinned", "doc", "3"},
        {"https://tidewater.example", "2 days ago", "link", ""},
        {"A receipt for rope", "2 days ago", "cart", ""}, // of its group
    };

    const auto rows = clippingRows(sources(), "", std::nullopt);
    ASSERT_EQ(rows.size(), std::size(expected));
    for (std::size_t i = 0; i < rows.size(); ++i) {
        EXPECT_EQ(rows[i].title, expected[i].title);
        EXPECT_EQ(rows[i].subtitle, expected[i].subtitle);
        EXPECT_EQ(rows[i].symbol, expected[i].symbol);
        EXPECT_EQ(rows[i].glyph.value_or(""), expected[i].glyph);
        EXPECT_EQ(rows[i].primaryLabel, "paste");
    }
    EXPECT_EQ(rows[0].id, "clip:a");
    EXPECT_EQ(rows[0].pasteCount, 2);
    EXPECT_EQ(rows[2].url, "file:///home/u/Documents/Kite.pdf");
    rows[4].primary();
    EXPECT_THAT(done, ElementsAre("paste e"));
    pastes = false; // Return must not promise what it doesn't do
    EXPECT_EQ(clippingRows(sources(), "", std::nullopt).front().primaryLabel, "copy");
}

TEST_F(ClipRowsTest, saysBeforeReturnWhatTheDesktopCantDo) {
    addOneOfEach();
    auto hindered = sources();
    hindered.onlyCopies = "no keys, Ctrl+V pastes";
    EXPECT_THAT(clippingPreview(hindered, row("a"))->facts, Contains("no keys, Ctrl+V pastes"));
    hindered.unusable = "no clipboard";
    EXPECT_EQ(clippingRows(hindered, "", std::nullopt).front().subtitle,
              "can't be copied: no clipboard");
}

TEST_F(ClipRowsTest, aListIsBoundedAndTheNewestLead) {
    for (int i = 0; i < 100; ++i)
        add(std::to_string(i), ClipKind::text, "copy " + std::to_string(i), 1000 - i);
    const auto rows = clippingRows(sources(), "copy", std::nullopt);
    EXPECT_EQ(rows.size(), 60u);
    EXPECT_EQ(rows.front().title, "copy 99");
}

TEST_F(ClipRowsTest, theFilterMenuHasWhatThereIs) {
    addOneOfEach();
    using Item = FilterMenuItem;
    const auto menu = clipFilterMenu(sources());
    EXPECT_THAT(menu,
                ElementsAre(Item{"__all", "Everything", 6},
                            Item{"link", "Links", 1},
                            Item{"image", "Images", 1},
                            Item{"file", "Files", 2},
                            Item{"text", "Text", 1},
                            Item{"group:Receipts", "Receipts", 1}));
    // Each item leads to as many rows as it says.
    for (const auto& item : menu) {
        const auto rows = clippingRows(sources(), "", clipFilterOfToken(item.key));
        EXPECT_EQ(static_cast<std::int64_t>(rows.size()), item.count) << item.title;
    }
    EXPECT_EQ(clipFilterOfToken("made up"), std::nullopt);
}

TEST_F(ClipRowsTest, aFilterIsNamedAlsoWhenNothingHasIt) {
    EXPECT_THAT(partialClipFilters(sources(), "REC"),
                ElementsAre("group:Receipts", "group:Recipes"));
    EXPECT_THAT(partialClipFilters(sources(), ""), IsEmpty());

    const struct {
        const char* token;
        const char* title;
    } cases[] = {
        {"image", "Images"},
        {"group:Receipts", "Receipts"},
        {"group:Removed", "Removed"}, // from the command line, while it was the filter
    };

    for (const auto& [token, title] : cases)
        EXPECT_EQ(clipFilterTitle(sources(), token), title);
}

TEST_F(ClipRowsTest, thePreviewShowsTheContentAndWhatIsKnownOfIt) {
    addOneOfEach();
    const auto letter = clippingPreview(sources(), row("a"));
    ASSERT_TRUE(letter);
    EXPECT_EQ(std::get<PreviewText>(letter->content).text, "Dear Wren,\nthe mooring\n");
    EXPECT_THAT(letter->facts,
                ElementsAre("23 characters",
                            "2 lines",
                            "copied from Bluebird Mail just now",
                            "copied 3 times",
                            "pasted: Teletype, Notebook"));
    const auto files = clippingPreview(sources(), row("d"));
    EXPECT_THAT(std::get<PreviewFiles>(files->content).paths,
                ElementsAre("/a/One", "/a/Two", "/a/Three"));
    EXPECT_THAT(files->facts,
                ElementsAre("3 files", "copied from another device 2 days ago", "not pasted yet"));
    // Until the picture is read, and when its file is gone.
    EXPECT_EQ(std::get<PreviewText>(clippingPreview(sources(), row("b"))->content).text,
              "Image 480×300");
    thumbnail = Image{.widthPixels = 1, .heightPixels = 1};
    EXPECT_TRUE(
        std::holds_alternative<PreviewPicture>(clippingPreview(sources(), row("b"))->content));
    EXPECT_EQ(clippingRows(sources(), "480", std::nullopt).front().image->widthPixels, 1);
    EXPECT_FALSE(clippingPreview(sources(), row("gone")));
    EXPECT_FALSE(clippingPreview(sources(), {.id = "a"}));
}

TEST_F(ClipRowsTest, ofALongTextOnlyTheBeginningIsCopied) {
    std::string text;
    while (text.size() < 100000)
        text += "ä";
    add("a", ClipKind::text, "x" + text, 1);
    const auto preview = clippingPreview(sources(), row("a"));
    const auto& shown = std::get<PreviewText>(preview->content).text;
    EXPECT_EQ(shown.size(), 19999u); // no character is cut in two
    EXPECT_EQ(preview->facts[0], "50001 characters");
    EXPECT_EQ(preview->facts[1], "only the beginning is shown");
}

TEST_F(ClipRowsTest, theActionsMenuOffersWhatCanBeDone) {
    addOneOfEach();
    const auto actions = clippingActions(sources(), row("a"));
    ASSERT_EQ(actions.size(), 6u);
    EXPECT_EQ(actions[0].title, "Copy back to the top");
    EXPECT_EQ(actions[0].symbol, "arrow.up.to.line");
    EXPECT_EQ(actions[1].title, "Pin this clipping");
    EXPECT_TRUE(actions[2].destructive);
    for (const auto& action : actions) {
        if (action.canBeChosen())
            action.run();
    }
    EXPECT_TRUE(actions[3].isSeparator());
    EXPECT_EQ(actions[4].title, "copied 3 times");
    EXPECT_EQ(actions[5].title, "pasted: Teletype, Notebook");
    EXPECT_THAT(done, ElementsAre("top a", "pin a", "remove a"));
    const auto ofPinned = clippingActions(sources(), row("d"));
    EXPECT_EQ(ofPinned[1].title, "Unpin this clipping");
    EXPECT_EQ(ofPinned.back().title, "not pasted yet");
    auto readOnly = sources();
    readOnly.copyToTop = readOnly.togglePin = readOnly.remove = {};
    EXPECT_TRUE(clippingActions(readOnly, row("a"))[0].isSeparator());
    EXPECT_THAT(clippingActions(sources(), {.id = "/a/One"}), IsEmpty());
}

TEST_F(ClipRowsTest, clearingSaysWhatGoes) {
    addOneOfEach();
    const auto rows = clearClipboardRows(sources(), "");
    EXPECT_THAT(titles(rows),
                ElementsAre("Clear clipboard history",
                            "Clear the last 5 minutes",
                            "Clear the last 15 minutes",
                            "Clear the last hour"));
    EXPECT_EQ(rows[0].subtitle, "5 clippings · 1 pinned stays");
    EXPECT_EQ(rows[1].subtitle, "2 clippings · 1 pinned stays"); // five minutes old to the second
    rows[0].primary();
    rows[1].primary();
    EXPECT_THAT(done, ElementsAre("all", "300"));
}

TEST_F(ClipRowsTest, clearingTakesAnAge) {
    addOneOfEach();

    const struct {
        const char* argument;
        const char* first;
    } cases[] = {
        {"1", "Clear the last minute"},
        {" 10 min ", "Clear the last 10 minutes"},
        {"2h", "Clear the last 2 hours"},
        {"3 Days", "Clear the last 72 hours"},
        {"60", "Clear the last hour"},
        {"0", "Clear clipboard history"},
        {"-5", "Clear clipboard history"},
        {"ten", "Clear clipboard history"},
        {"10 miles", "Clear clipboard history"},
        {"99999999999999999999", "Clear clipboard history"},
        {"9223372036854775807 h", "Clear clipboard history"},
    };

    for (const auto& [argument, first] : cases)
        EXPECT_EQ(clearClipboardRows(sources(), argument).front().title, first) << argument;
    EXPECT_EQ(clearClipboardRows(sources(), "15").size(), 4u); // not the same row twice
    history.entries.erase(history.entries.begin());
    const auto hint = clearClipboardRows(sources(), "2").front();
    EXPECT_EQ(hint.kind, RowKind::hint);
    EXPECT_EQ(hint.title, "Nothing was copied in the last 2 minutes");
}

TEST_F(ClipRowsTest, nothingToClearIsSaid) {
    EXPECT_EQ(clearClipboardRows(sources(), "5").front().subtitle,
              "The clipboard history is empty");
    add("a", ClipKind::text, "kept", 1).pinned = true;
    const auto rows = clearClipboardRows(sources(), "");
    EXPECT_THAT(titles(rows), ElementsAre("Nothing to clear"));
    EXPECT_EQ(rows.front().subtitle, "Only pinned clippings are left");
}

} // namespace
} // namespace tessarine
