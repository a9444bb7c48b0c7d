#include "launcherapp/query/PanelKeys.h"

#include "tests/fakes/FakeServices.h"

#include <gmock/gmock.h>

namespace tessarine {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using enum FieldCommand;

TEST(PanelKeys, chordsAreMatchedWholeAndWhateverTheCase) {
    const KeyModifiers command{.command = true};

    const struct {
        KeyModifiers modifiers;
        std::uint16_t keyCode;
        std::string characters;
        std::optional<PanelKeyAction> action;
        const char* reason;
    } cases[] = {
        {{.shift = true}, 49, " ", PanelKeyAction::previewShift, "Shift-Space by its key"},
        {command, 16, "y", PanelKeyAction::preview, "by its character"},
        {command, 0, "Y", PanelKeyAction::preview, "through Caps Lock, on any layout"},
        {command, 36, "\r", PanelKeyAction::secondary, "Command-Return"},
        {command, 40, "k", PanelKeyAction::actions, ""},
        {command, 2, "d", PanelKeyAction::favorite, ""},
        {command, 8, "c", PanelKeyAction::copy, ""},
        {{.command = true, .control = true}, 8, "c", PanelKeyAction::copyField, "not a mere copy"},
        {command, 43, ",", PanelKeyAction::settings, ""},
        {command, 44, "/", PanelKeyAction::shortcuts, ""},
        {command, 25, "9", PanelKeyAction::digit, ""},
        {command, 29, "0", std::nullopt, "there is no row 0"},
        {{}, 8, "c", std::nullopt, "a mere letter"},
        {{.command = true, .shift = true}, 8, "c", std::nullopt, "one modifier more"},
        {{.option = true}, 8, "c", std::nullopt, "another modifier"},
        {{}, 49, " ", std::nullopt, "a mere blank"},
        {command, 49, " ", std::nullopt, "another chord with the same key"},
    };

    for (const auto& [modifiers, keyCode, characters, action, reason] : cases) {
        const auto* chord = PanelKeys::match(modifiers, keyCode, characters);
        ASSERT_EQ(chord != nullptr, action.has_value()) << characters << ": " << reason;
        if (chord) {
            EXPECT_EQ(chord->action, *action) << characters << ": " << reason;
        }
    }
}

class PanelKeysTest : public testing::Test {
protected:
    PanelKeysTest() {
        for (const auto* id : {"a", "b", "c"})
            services.install(id, std::string("App ") + id);
        services.platform.processes.programs = {"a", "b", "c"};
        services.startCatalog();
        // Their names hold "app" too.
        services.prefs.disableKeyword(BuiltinKeyword::quit);
        services.prefs.disableKeyword(BuiltinKeyword::forceQuit);
        model.dismiss = [this] { ++dismissals; };
        model.verbs.copyText = [this](const std::string& text) { copied.push_back(text); };
        model.families.commands = [] {
            static const std::vector<CommandSpec> commands{{.id = "find",
                                                            .name = "App finder",
                                                            .keyword = "af",
                                                            .kind = CommandKind::search,
                                                            .url = "https://x/{query}"}};
            return std::span<const CommandSpec>(commands);
        };
        model.families.personID = [](const ResultRow& row) {
            return row.id.starts_with("person:") ? std::optional(row.id.substr(7)) : std::nullopt;
        };
        model.families.folderPath = [](const ResultRow& row) {
            return row.id.starts_with("/home") ? std::optional(row.id) : std::nullopt;
        };
        model.families.personCard = [](const std::string& person, std::string_view) {
            return Rows{{.id = "field:" + person, .kind = RowKind::command, .title = "Phone"}};
        };
        model.families.browse = [](const std::string& folder, std::string_view) {
            return Rows{{.id = folder + "/sub", .kind = RowKind::file, .title = "sub"}};
        };
        model.families.clipboard = [](std::string_view query, const auto&) {
            return Rows{
                {.id = "clip:1", .kind = RowKind::calc, .title = "one" + std::string(query)}};
        };
        model.families.filterMenu = [] {
            return std::vector<FilterMenuItem>{
                {std::string(FilterMenuItem::everything), "Everything", 3},
                {"text", "Text", 2},
                {"image", "Images", 1}};
        };
    }

    bool press(FieldCommand command, CaretPlace caret = CaretPlace::atEnd) {
        return model.perform(command, caret);
    }

    /// A person and a folder, found by any text.
    void addPersonAndFolder() {
        model.families.people = [](std::string_view, ListMode) {
            return Rows{{.id = "person:7", .kind = RowKind::command, .title = "Mabel", .score = 9}};
        };
        model.families.files = [](std::string_view) {
            return Rows{{.id = "/home/u/docs",
                         .kind = RowKind::file,
                         .title = "docs",
                         .url = "file:///home/u/docs",
                         .group = "files",
                         .score = 5}};
        };
    }

    std::string selectedTitle() const {
        return model.selectedRow() ? model.selectedRow()->title : "(none)";
    }

    void selectRow(const std::string& id) {
        for (std::size_t i = 0; i < model.rows().size(); ++i) {
            if (model.rows()[i].id == id)
                model.select(i);
        }
        ASSERT_EQ(model.selectedRow()->id, id);
    }

    FakeServices services;
    std::unique_ptr<SearchModel> owned = services.makeModel();
    SearchModel& model = *owned;
    std::vector<std::string> copied;
    int dismissals = 0;
};

TEST_F(PanelKeysTest, theSelectionStopsAtBothEnds) {
    press(down);
    EXPECT_EQ(model.selection(), 0u); // of an empty list
    model.setQuery("app");
    ASSERT_EQ(model.rows().size(), 4u);
    press(up);
    EXPECT_EQ(model.selection(), 0u);
    for (int i = 0; i < 9; ++i)
        press(down);
    EXPECT_EQ(model.selection(), 3u);
    press(up);
    EXPECT_EQ(model.selection(), 2u);
    model.setQuery("app a");
    EXPECT_EQ(model.selection(), 0u);
}

TEST_F(PanelKeysTest, returnRunsAndLearns) {
    EXPECT_TRUE(press(enter)); // nothing to run
    model.setQuery("app");
    press(down);
    press(enter);
    services.platform.time.settle();
    ASSERT_EQ(services.platform.processes.started.size(), 1u);
    const auto started = services.platform.processes.started[0].name;
    const auto id = "/usr/share/applications/" + started + ".desktop";
    EXPECT_EQ(services.usage.log().choices.at("app").at(id), 1);
    EXPECT_EQ(services.usage.log().items.at(id).total, 1);
    model.setQuery("app");
    EXPECT_EQ(model.rows().front().id, id); // it leads now
    model.runDigit(2);
    model.runDigit(9);
    model.runDigit(0);
    services.platform.time.settle();
    EXPECT_EQ(services.platform.processes.started.size(), 2u);
}

TEST_F(PanelKeysTest, hintsAreRunButNeverLearned) {
    bool ran = false;
    model.families.windows = [&](std::string_view) {
        return Rows{{.id = "hint",
                     .kind = RowKind::hint,
                     .title = "Turn it on",
                     .primary = [&] { ran = true; },
                     .group = "answers"}};
    };
    model.setQuery("zz");
    press(enter);
    EXPECT_TRUE(ran);
    EXPECT_THAT(services.usage.log().items, IsEmpty());
    EXPECT_THAT(services.usage.log().choices, IsEmpty());
}

TEST_F(PanelKeysTest, theSecondActionRunsWhereThereIsOne) {
    int ran = 0;
    model.families.windows = [&](std::string_view) {
        return Rows{{.id = "w",
                     .kind = RowKind::command,
                     .title = "W",
                     .secondary = [&] { ++ran; },
                     .group = "answers"}};
    };
    model.setQuery("app");
    model.runSecondary();
    EXPECT_EQ(ran, 1);
    EXPECT_EQ(services.usage.log().items.at("w").total, 1);
    press(down);
    model.runSecondary(); // an application has none
    EXPECT_EQ(services.usage.log().items.size(), 1u);
}

TEST_F(PanelKeysTest, tabCompletesACommandsWord) {
    model.setQuery("app");
    EXPECT_TRUE(press(tab)); // an application: nothing, but the field keeps the keyboard
    EXPECT_EQ(model.query(), "app");
    EXPECT_FALSE(press(backTab));
    selectRow("cmd:find");
    press(tab);
    EXPECT_EQ(model.query(), "af ");
    EXPECT_EQ(model.engaged()->id, "find");

    const std::vector<CommandSpec> others{{.id = "other",
                                           .name = "App other",
                                           .keyword = "two words",
                                           .kind = CommandKind::search,
                                           .url = "https://x.example/{query}",
                                           .aliases = {{"ao"}}}};
    model.families.commands = [&] { return std::span<const CommandSpec>(others); };
    model.setQuery("app");
    selectRow("cmd:other");
    press(tab);
    EXPECT_EQ(model.query(), "ao ") << "the first word that can be typed";
}

TEST_F(PanelKeysTest, favoritesLeadAndFallBack) {
    model.setQuery("app");
    const auto before = model.rows().back().id;
    model.select(model.rows().size() - 1);
    model.toggleFavorite();
    EXPECT_EQ(model.rows().front().id, before);
    EXPECT_THAT(services.prefs.favorites(), ElementsAre(before));
    EXPECT_TRUE(services.prefs.favoriteTitles().contains(before));
    model.select(0);
    model.toggleFavorite();
    EXPECT_EQ(model.rows().back().id, before);
    EXPECT_THAT(services.prefs.favorites(), IsEmpty());
}

TEST_F(PanelKeysTest, copyingTakesWhatTheRowStandsFor) {
    addPersonAndFolder();
    model.families.answers = [](std::string_view) {
        return AnswerRows{.main = ResultRow{.id = "answer", .kind = RowKind::calc, .title = "42"}};
    };
    EXPECT_FALSE(model.copySelected()); // nothing is selected
    model.setQuery("6*7");
    selectRow("answer");
    EXPECT_TRUE(model.copySelected());
    model.families.answers = nullptr;
    model.setQuery("docs");
    selectRow("/home/u/docs");
    EXPECT_TRUE(model.copySelected());
    EXPECT_THAT(copied, ElementsAre("42", "/home/u/docs"));
    EXPECT_THAT(services.log(), HasSubstr(" 2 characters from a calc row\n"));

    model.enterClipboardMode();
    std::string toTop;
    model.families.copyClippingToTop = [&](const std::string& id) {
        toTop = id;
        return true;
    };
    EXPECT_TRUE(model.copySelected());
    EXPECT_EQ(toTop, "1");
    EXPECT_EQ(copied.size(), 2u);
}

TEST_F(PanelKeysTest, arrowsGoInAndOut) {
    addPersonAndFolder();
    model.families.isBrowseRoot = [](const std::string& folder) { return folder == "/home/u"; };
    model.setQuery("docs");
    selectRow("/home/u/docs");
    EXPECT_FALSE(press(right, CaretPlace::inside)); // the caret moves
    EXPECT_FALSE(press(left));                      // and so it does with text in the field
    EXPECT_TRUE(press(right));
    EXPECT_EQ(model.browsePath(), "/home/u/docs");
    EXPECT_EQ(model.query(), "");
    EXPECT_EQ(selectedTitle(), "sub");
    EXPECT_TRUE(press(left));
    EXPECT_EQ(model.browsePath(), "/home/u");
    EXPECT_TRUE(press(left)); // from a root browsing ends
    EXPECT_EQ(model.browsePath(), std::nullopt);
    EXPECT_FALSE(press(left));

    model.setQuery("app a");
    selectRow("/usr/share/applications/a.desktop");
    EXPECT_FALSE(press(right)); // an application is nothing to go into
    selectRow("person:7");
    EXPECT_TRUE(press(right));
    EXPECT_EQ(model.personPath(), "7");
    EXPECT_TRUE(press(left));
    EXPECT_EQ(model.personPath(), std::nullopt);
}

TEST_F(PanelKeysTest, returnOnAPersonOpensTheCardInPlace) {
    addPersonAndFolder();
    model.setQuery("mab");
    selectRow("person:7");
    press(enter);
    EXPECT_EQ(model.personPath(), "7");
    EXPECT_EQ(model.query(), "");
    EXPECT_EQ(selectedTitle(), "Phone");
    EXPECT_EQ(dismissals, 0);
    EXPECT_EQ(services.usage.log().choices.at("mab").at("person:7"), 1);
}

TEST_F(PanelKeysTest, escapeTakesOneStepAtATime) {
    model.enterClipboardMode();
    model.setQuery("text");
    press(tab);
    model.openActions();
    ASSERT_TRUE(model.filterMenuOpen());
    ASSERT_FALSE(model.actions().empty());
    press(escape);
    EXPECT_THAT(model.actions(), IsEmpty());
    EXPECT_TRUE(model.filterMenuOpen());
    press(escape);
    EXPECT_FALSE(model.filterMenuOpen());
    EXPECT_EQ(model.query(), "text");
    press(escape);
    EXPECT_EQ(model.query(), "");
    EXPECT_TRUE(model.clipboardMode());
    press(escape);
    EXPECT_FALSE(model.clipboardMode());
    EXPECT_EQ(dismissals, 0);
    model.setQuery("app");
    press(escape);
    EXPECT_EQ(dismissals, 1);
    EXPECT_EQ(model.query(), "app"); // hiding resets the model, not Escape

    addPersonAndFolder();
    model.setQuery("mab");
    selectRow("person:7");
    press(enter);
    model.setQuery("x");
    press(escape); // a card is left at once, text or none
    EXPECT_EQ(model.personPath(), std::nullopt);
    EXPECT_EQ(dismissals, 1);
}

TEST_F(PanelKeysTest, theFilterMenuGoesRoundByTabAndStopsByArrows) {
    model.enterClipboardMode();
    press(tab);
    EXPECT_TRUE(model.filterMenuOpen());
    EXPECT_EQ(model.filterMenuSelection(), 0u);
    press(backTab);
    EXPECT_EQ(model.filterMenuSelection(), 2u);
    press(down);
    EXPECT_EQ(model.filterMenuSelection(), 2u);
    press(enter);
    EXPECT_EQ(model.clipFilter(), "image");
    EXPECT_FALSE(model.filterMenuOpen());
    press(tab);
    EXPECT_EQ(model.filterMenuSelection(), 2u); // where the filter is
    press(tab);
    EXPECT_EQ(model.filterMenuSelection(), 0u);
    press(up);
    EXPECT_EQ(model.filterMenuSelection(), 0u);
    press(enter);
    EXPECT_EQ(model.clipFilter(), std::nullopt);
    model.families.filterMenu = [] {
        return std::vector<FilterMenuItem>{{"__all", "Everything", 0}};
    };
    model.recompute();
    press(tab); // nothing to choose between
    EXPECT_FALSE(model.filterMenuOpen());
}

TEST_F(PanelKeysTest, theOpenFilterMenuKeepsItsItemWhileClippingsComeAndGo) {
    const auto offer = [&](std::vector<FilterMenuItem> items) {
        model.families.filterMenu = [items] { return items; };
    };
    const FilterMenuItem all{"__all", "Everything", 9};
    const FilterMenuItem link{"link", "Links", 1};
    const FilterMenuItem image{"image", "Images", 1};
    offer({all, image});
    model.enterClipboardMode();
    press(tab);
    press(down);
    offer({all, link, image});
    press(enter); // what is shown still is the menu of before
    EXPECT_EQ(model.clipFilter(), "image");

    press(tab);
    model.recompute();
    EXPECT_EQ(model.filterMenuSelection(), 2u);
    offer({all, link});
    model.recompute();
    EXPECT_EQ(model.filterMenuSelection(), 0u) << "no other kind was chosen";
}

TEST_F(PanelKeysTest, onlyClippingsAreDeleted) {
    std::string removed;
    model.families.removeClipping = [&](const std::string& id) { removed = id; };
    model.setQuery("app");
    EXPECT_FALSE(press(deleteToStart));
    model.enterClipboardMode();
    EXPECT_TRUE(press(deleteToStart));
    EXPECT_EQ(removed, "1");
}

TEST_F(PanelKeysTest, aLineToReadInTheActionsMenuIsNeverChosen) {
    int runs = 0;
    model.families.menuActions = [&](const ResultRow&) {
        return std::vector{RowAction::make("Pin", [&] { ++runs; }),
                           RowAction::separator(),
                           RowAction::note("not pasted yet")};
    };
    model.setQuery("app");
    model.openActions();
    const auto note = model.actions().size() - 1;
    press(down);
    while (model.actions()[model.actionSelection()].title != "Pin")
        press(down);
    press(down);
    EXPECT_EQ(model.actionSelection(), 0u) << "past the divider and the line, back to the top";
    model.runAction(note, SearchModel::ActionDriver::click);
    EXPECT_FALSE(model.actions().empty()) << "a click on it is no answer";
    press(up);
    press(enter);
    EXPECT_EQ(runs, 1);
}

TEST_F(PanelKeysTest, theActionsMenuOffersWhatCanBeDone) {
    const auto titles = [&] {
        std::vector<std::string> result;
        for (const auto& action : model.actions())
            result.push_back(action.title);
        return result;
    };
    model.setQuery("app a");
    selectRow("/usr/share/applications/a.desktop");
    model.openActions();
    EXPECT_THAT(titles(),
                ElementsAre("Add to Favorites", "Open", "Copy path", "Hide from results"));
    model.verbs.trashPath = [](const std::string&) {};
    model.verbs.revealPath = [](const std::string&) {};
    model.verbs.openTerminal = [](const std::string&) {};
    model.verbs.openPath = [](const std::string&) {};
    addPersonAndFolder();
    model.setQuery("docs");
    selectRow("/home/u/docs");
    model.toggleFavorite();
    selectRow("/home/u/docs");
    model.openActions();
    EXPECT_THAT(titles(),
                ElementsAre("Remove from Favorites",
                            "Open",
                            "Reveal in Finder",
                            "Open in Terminal",
                            "Copy path",
                            "Move to Trash"));
    EXPECT_TRUE(model.actions().back().destructive);
    EXPECT_EQ(model.actions().front().symbol, "star.slash");
}

TEST_F(PanelKeysTest, theActionsMenuWrapsRunsAndCloses) {
    model.setQuery("app a");
    selectRow("/usr/share/applications/a.desktop");
    model.openActions();
    press(up);
    EXPECT_EQ(model.actionSelection(), 3u);
    press(down);
    EXPECT_EQ(model.actionSelection(), 0u);
    press(up);
    bool closedFirst = false;
    const auto subscription =
        services.prefs.onChange([&](std::string_view) { closedFirst = model.actions().empty(); });
    press(enter); // Hide from results
    EXPECT_TRUE(closedFirst);
    EXPECT_THAT(services.prefs.hiddenApps(), ElementsAre("/usr/share/applications/a.desktop"));
    EXPECT_NE(model.rows().front().id, "/usr/share/applications/a.desktop");
    EXPECT_THAT(services.log(),
                HasSubstr(" action: Hide from results (index 3 of 4, selection 3, by keyboard)\n"));
}

} // namespace
} // namespace tessarine
