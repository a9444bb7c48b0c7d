#include "launcherapp/platform/DesktopTable.h"

#include <gmock/gmock.h>

#include <fstream>
#include <map>
#include <sstream>

namespace tessarine {
namespace {

using testing::HasSubstr;
using testing::Not;
using State = DesktopCell::State;

constexpr std::array families{
    DesktopFamily::x11, DesktopFamily::wlroots, DesktopFamily::kwin, DesktopFamily::mutter};

std::vector<std::string> cellsOf(const std::string& line) {
    std::vector<std::string> cells;
    std::istringstream rest(line);
    for (std::string cell; std::getline(rest, cell, '|');) {
        const auto first = cell.find_first_not_of(' ');
        const auto last = cell.find_last_not_of(' ');
        cells.push_back(first == std::string::npos ? "" : cell.substr(first, last - first + 1));
    }
    if (!cells.empty())
        cells.erase(cells.begin()); // before the first bar
    return cells;
}

/// By the ability's name, the cells of the page's first table.
std::map<std::string, std::vector<std::string>> documented() {
    std::map<std::string, std::vector<std::string>> rows;
    std::ifstream page(TESSARINE_SOURCE_DIR "/docs/desktops.md");
    bool isInTable = false;
    for (std::string line; std::getline(page, line);) {
        if (!line.starts_with('|')) {
            if (isInTable)
                break;
            continue;
        }
        isInTable = true;
        auto cells = cellsOf(line);
        const auto name = cells.front();
        cells.erase(cells.begin());
        rows[name] = std::move(cells);
    }
    return rows;
}

TEST(DesktopTable, theDocumentationSaysTheSame) {
    const auto rows = documented();
    ASSERT_EQ(rows.size(), DesktopTable::abilities.size() + 2) << "a line each, and the heading";
    for (const auto ability : DesktopTable::abilities) {
        const std::string name(DesktopTable::name(ability));
        ASSERT_TRUE(rows.contains(name)) << name;
        std::vector<std::string> expected;
        for (const auto family : families)
            expected.push_back(
                DesktopTable::inWords(DesktopTable::cell(DesktopTable::usual(family), ability)));
        EXPECT_EQ(rows.at(name), expected) << name;
    }
}

TEST(DesktopTable, knowsTheFamilyByWhatItOffers) {
    for (const auto family : families)
        EXPECT_EQ(DesktopTable::family(DesktopTable::usual(family)), family);

    const struct {
        DesktopSurroundings found;
        DesktopFamily family;
    } cases[] = {
        {{.hasX11 = true, .desktops = {"KDE"}}, DesktopFamily::x11}, // KDE on X11
        {{.hasWayland = true, .globals = {"zwlr_layer_shell_v1", "org_kde_plasma_shell"}},
         DesktopFamily::kwin}, // which has the layer shell too
        {{.hasWayland = true,
          .globals = {"org_kde_kwin_server_decoration_manager", "zwlr_output_manager_v1"}},
         DesktopFamily::wlroots},
        {{.hasWayland = true, .globals = {"wl_compositor"}}, DesktopFamily::otherWayland},
        {{}, DesktopFamily::none},
    };

    for (const auto& [found, family] : cases)
        EXPECT_EQ(DesktopTable::family(found), family) << DesktopTable::name(family);
}

TEST(DesktopTable, goesByWhatIsThereNotByTheDesktopsName) {
    auto found = DesktopTable::usual(DesktopFamily::wlroots);
    const auto stateOf = [&](DesktopAbility ability) {
        return DesktopTable::cell(found, ability).state;
    };
    found.portals.insert("GlobalShortcuts"); // as Hyprland's
    EXPECT_EQ(stateOf(DesktopAbility::hotkey), State::works);
    found.portals.clear();
    found.hasSessionBus = false;
    EXPECT_EQ(stateOf(DesktopAbility::hotkey), State::absent);
    EXPECT_EQ(DesktopTable::cell({.hasX11 = true, .isX11Compositors = true}, DesktopAbility::hotkey)
                  .state,
              State::absent);
    found.globals.erase("zwlr_data_control_manager_v1");
    EXPECT_EQ(stateOf(DesktopAbility::clipboardHistory), State::degraded);
    found.globals.erase("zwp_virtual_keyboard_manager_v1");
    EXPECT_THAT(DesktopTable::reason(found, DesktopAbility::typing), HasSubstr("Ctrl+V"));
    found.hasSway = false; // as river, labwc
    EXPECT_EQ(stateOf(DesktopAbility::windowVerbs), State::absent);
    EXPECT_EQ(stateOf(DesktopAbility::runningApplications), State::works);
    found.globals.erase("zwlr_foreign_toplevel_manager_v1");
    EXPECT_EQ(stateOf(DesktopAbility::windowVerbs), State::degraded);
    EXPECT_EQ(stateOf(DesktopAbility::runningApplications), State::degraded);
    found.isShownOnX11 = true; // the layer shell is there, and Qt is not on Wayland
    EXPECT_EQ(stateOf(DesktopAbility::panel), State::degraded);
    found.hasX11 = false;
    EXPECT_EQ(stateOf(DesktopAbility::clipboardHistory), State::absent);
    EXPECT_EQ(stateOf(DesktopAbility::runningApplications), State::absent);
    EXPECT_EQ(stateOf(DesktopAbility::windowVerbs), State::absent);
    // Where nothing can be copied from here, nothing is promised to be.
    EXPECT_THAT(DesktopTable::reason(found, DesktopAbility::typing), Not(HasSubstr("Ctrl+V")));
}

TEST(DesktopTable, takesTheClipboardOfMuttersDisplayForX11ProgramsForItsOwn) {
    auto found = DesktopTable::usual(DesktopFamily::mutter);
    EXPECT_EQ(DesktopTable::cell(found, DesktopAbility::clipboardHistory), DesktopCell());
    found.hasX11 = false;
    EXPECT_EQ(DesktopTable::cell(found, DesktopAbility::clipboardHistory).state, State::absent);
}

TEST(DesktopTable, tellsADisplayThatIsOfNoUse) {
    const struct {
        DesktopSurroundings found;
        DesktopAbility ability;
        const char* words;
    } cases[] = {
        {{}, DesktopAbility::panel, "no display"},
        {{.hasWayland = true}, DesktopAbility::panel, "does not answer"},
        {{.hasX11 = true, .hasWayland = true}, DesktopAbility::panel, "does not answer"},
        {{.hasX11 = true, .isX11Compositors = true}, DesktopAbility::typing, "kept off"},
    };

    for (const auto& [found, ability, words] : cases)
        EXPECT_THAT(DesktopTable::reason(found, ability), HasSubstr(words));
    // Sway is asked over a connection of its own.
    const DesktopSurroundings asked{.hasWayland = true, .hasSway = true};
    EXPECT_EQ(DesktopTable::cell(asked, DesktopAbility::windowVerbs), DesktopCell());
}

} // namespace
} // namespace tessarine
