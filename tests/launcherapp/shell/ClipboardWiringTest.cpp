#include "launcherapp/shell/ClipboardWiring.h"

#include "LauncherCore/clipboard/ClipGroups.h"
#include "LauncherCore/clipboard/ClipIdentity.h"
#include "launcherapp/clipboard/ClipImages.h"
#include "launcherapp/clipboard/ClipboardPaster.h"
#include "launcherapp/query/SearchModel.h"
#include "tests/fakes/FakeKeyInjector.h"
#include "tests/launcherapp/clipboard/ClipboardFixture.h"

#include <gmock/gmock.h>

namespace tessarine {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

/// The panel's model over the services of the clipboard, with a window in front.
class ClipboardWiringTest : public testing::Test {
protected:
    ClipboardWiringTest() {
        clipboard.services.platform.windows.open = {editor};
        clipboard.services.platform.windows.activeID = editor.id;
        model->previousApp = editor;
        model->dismiss = [this] { ++hidings; };
        clipboard.start();
    }

    std::vector<std::string> titles() const {
        std::vector<std::string> titles;
        for (const auto& row : model->rows())
            titles.push_back(row.title);
        return titles;
    }

    void teach(const std::string& name, const std::string& contained) {
        auto groups = *clipboard.runtime.current();
        groups.upsert({.name = name, .symbol = "cart", .match = {.contains = contained}});
        clipboard.runtime.setCurrent(std::move(groups));
    }

    const AppWindow editor{.id = 7, .className = "Editor", .processID = 70};
    ClipboardFixture clipboard;
    std::unique_ptr<SearchModel> model = clipboard.services.makeModel();
    FakeKeyInjector keys{clipboard.services.platform.queue};
    ClipboardPaster paster{{.queue = clipboard.services.platform.queue,
                            .work = clipboard.services.platform.work,
                            .prefs = clipboard.services.prefs,
                            .diagnostics = clipboard.services.diagnostics,
                            .windows = clipboard.services.platform.windows,
                            .keys = keys,
                            .store = clipboard.store,
                            .watcher = clipboard.watcher,
                            .pictures = clipboard.pictures,
                            .target = [](const AppWindow& window) {
                                return ClipboardPaster::Target{.name = window.className};
                            }}};
    ClipImages images{clipboard.services.platform.work, clipboard.pictures};
    int hidings = 0;
    ClipboardWiring wiring{{.model = *model,
                            .queue = clipboard.services.platform.queue,
                            .prefs = clipboard.services.prefs,
                            .store = clipboard.store,
                            .groups = clipboard.runtime,
                            .paster = paster,
                            .images = images,
                            .typing = [this] { return keys.ability(); },
                            .copying = [this] { return clipboard.board.ability(); },
                            .home = "/home/u"}};
};

TEST_F(ClipboardWiringTest, theWordAloneShowsTheHistoryAndReturnPastesIt) {
    clipboard.copyText("first");
    clipboard.copyText("second");
    model->setQuery("clip ");
    EXPECT_TRUE(model->clipboardMode());
    EXPECT_THAT(titles(), ElementsAre("second", "first"));

    model->moveDown();
    model->runSelected();
    clipboard.time.advance(Seconds{1});
    EXPECT_EQ(hidings, 1) << "the keys are for the application";
    EXPECT_EQ(clipboard.board.content("UTF8_STRING"), "first");
    EXPECT_EQ(keys.pasted.size(), 1u);
    EXPECT_THAT(*clipboard.store.history().entry(ClipIdentity::ofText("first"))->pastedInto,
                ElementsAre("Editor"));
}

TEST_F(ClipboardWiringTest, aTaughtGroupIsAFilterAtOnce) {
    clipboard.copyText("order no. 12");
    clipboard.copyText("https://a.example");
    clipboard.copyText("plain");
    model->enterClipboardMode();
    const auto before = model->filterMenuItems();
    teach("Receipts", "order no.");
    model->recompute();
    std::vector<std::string> filters;
    for (const auto& item : model->filterMenuItems())
        filters.push_back(item.title + " " + std::to_string(item.count));
    EXPECT_THAT(filters, ElementsAre("Everything 3", "Links 1", "Text 1", "Receipts 1"));
    EXPECT_EQ(before.size(), 3u);

    model->filterMenuTab(SearchModel::TabDirection::forward);
    model->commitFilterMenu(3);
    EXPECT_THAT(titles(), ElementsAre("order no. 12"));
    clipboard.runtime.setCurrent({});
    model->recompute();
    EXPECT_EQ(model->filterTitle(), "Receipts") << "not the key's own spelling";
}

TEST_F(ClipboardWiringTest, aWordAfterTheKeywordNarrowsOrOffersWhatItMayMean) {
    clipboard.copyText("order no. 12");
    clipboard.copyText("order nr. 13");
    clipboard.copyText("receipts");
    teach("Paid receipts", "no.");
    teach("Open receipts", "nr.");

    const struct {
        const char* query;
        std::vector<std::string> titles;
        bool isMenuOpen;
        const char* reason;
    } cases[] = {
        {"clip paid", {"order no. 12"}, false, "the only group with that word"},
        {"clip TEXT", {"receipts"}, false, "a category by its label"},
        {"clip receipts", {"receipts", "order nr. 13", "order no. 12"}, true, "two groups"},
        {"clip order", {"order nr. 13", "order no. 12"}, false, "no filter: it is searched for"},
    };

    for (const auto& [query, expected, isMenuOpen, reason] : cases) {
        SCOPED_TRACE(reason);
        model->reset();
        model->setQuery(query);
        EXPECT_EQ(titles(), expected);
        EXPECT_EQ(model->filterMenuOpen(), isMenuOpen);
        model->closeMenus();
    }
}

TEST_F(ClipboardWiringTest, copyingPinningDeletingAndClearing) {
    for (const auto* text : {"a", "b", "c"})
        clipboard.copyText(text);
    clipboard.time.advance(Seconds{1});
    model->enterClipboardMode();
    model->select(2);
    EXPECT_TRUE(model->copySelected());
    clipboard.time.settle();
    EXPECT_EQ(clipboard.board.content("UTF8_STRING"), "a");
    model->recompute();
    EXPECT_THAT(titles(), ElementsAre("a", "c", "b"));

    model->select(1);
    EXPECT_TRUE(model->deleteSelected());
    EXPECT_THAT(titles(), ElementsAre("a", "b"));

    model->select(1);
    model->openActions();
    std::vector<std::string> actions;
    for (const auto& action : model->actions())
        actions.push_back(action.title);
    EXPECT_THAT(actions, Contains("Copy back to the top"));
    const auto pin = std::ranges::find(actions, "Pin this clipping");
    ASSERT_NE(pin, actions.end());
    model->runAction(static_cast<std::size_t>(pin - actions.begin()),
                     SearchModel::ActionDriver::keyboard);

    model->reset();
    EXPECT_FALSE(model->showsClippings());
    model->setQuery("clear ");
    EXPECT_TRUE(model->showsClippings()) << "they count what there is";
    model->runSelected();
    EXPECT_THAT(clipboard.texts(), ElementsAre("b")) << "what is pinned stays";
}

TEST_F(ClipboardWiringTest, aPictureShowsOnceItIsRead) {
    clipboard.copyPicture(0xff336699, 100);
    int arrivals = 0;
    const auto subscription = images.onArrival([&] { ++arrivals; });
    model->enterClipboardMode();
    ASSERT_EQ(model->rows().size(), 1u);
    EXPECT_FALSE(model->rows()[0].image);
    clipboard.time.settle();
    EXPECT_EQ(arrivals, 1);
    model->recompute();
    ASSERT_TRUE(model->rows()[0].image);
    EXPECT_EQ(model->rows()[0].image->widthPixels, ClipImages::iconPixels);
    clipboard.time.settle();
    EXPECT_EQ(arrivals, 1) << "it is read once";
}

TEST_F(ClipboardWiringTest, whereNoKeysCanBeSentReturnSaysThatItCopies) {
    clipboard.copyText("a");
    model->enterClipboardMode();
    EXPECT_EQ(model->rows()[0].primaryLabel, "paste");
    keys.trusted = Ability::missing("no keys here");
    model->recompute();
    EXPECT_EQ(model->rows()[0].primaryLabel, "copy");
    EXPECT_THAT(model->families.preview(model->rows()[0])->facts, Contains("no keys here"));
    model->runSelected();
    clipboard.time.advance(Seconds{1});
    EXPECT_EQ(clipboard.board.content("UTF8_STRING"), "a");
    EXPECT_THAT(keys.pasted, IsEmpty());
    clipboard.board.supported = Ability::missing("no clipboard here");
    model->enterClipboardMode();
    EXPECT_EQ(model->rows()[0].subtitle, "can't be copied: no clipboard here");
}

} // namespace
} // namespace tessarine
