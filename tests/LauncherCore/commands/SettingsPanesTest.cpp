#include "LauncherCore/commands/SettingsPanes.h"

#include <gmock/gmock.h>

#include <set>

namespace tessarine {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::Not;

const std::vector<std::string> german{"de"};

std::optional<CommandSpec> pane(const std::string& id,
                                const std::string& lines,
                                const std::vector<std::string>& desktops = {"GNOME"},
                                const std::vector<std::string>& languages = {}) {
    SettingsPanes::Found found{.entryID = id, .path = "/a/" + id + ".desktop"};
    found.entry =
        DesktopEntry::parse("[Desktop Entry]\nType=Application\n" + lines, languages).value();
    return SettingsPanes::command(
        found, languages, {.currentDesktops = desktops, .canExecute = [](std::string_view program) {
                               return !program.starts_with("kcmshell");
                           }});
}

TEST(SettingsPanes, anEntryThatStartsAControlCentreAtAPageIsOne) {
    const struct {
        const char* exec;
        bool opens;
        const char* reason;
    } cases[] = {
        {"gnome-control-center wifi", true, "GNOME"},
        {"systemsettings kcm_kscreen", true, "KDE"},
        {"\"/opt/my settings/systemsettings\" kcm_kscreen", true, "a path with a blank"},
        {"systemsettings --args x kcm_mouse", true, "options before the page"},
        {"gnome-control-center", false, "the control centre itself"},
        {"gnome-control-center --verbose %U", false, "options and field codes name no page"},
        {"gnome-control-center-helper wifi", false, "another program of nearly that name"},
        {"env X=1 gnome-control-center wifi", false, "the program is what counts, and it is env"},
        {"gnome-control-center \"wifi", false, "unbalanced"},
        {"", false, "only the bus starts it"},
    };

    for (const auto& [exec, opens, reason] : cases)
        EXPECT_EQ(SettingsPanes::opensPage(exec), opens) << exec << ": " << reason;
}

TEST(SettingsPanes, aPaneIsOfferedWhereItsControlCentreRuns) {
    const std::string panel = "Name=X\nExec=gnome-control-center x\n";

    const struct {
        std::string lines;
        std::vector<std::string> desktops;
        bool offered;
        const char* reason;
    } cases[] = {
        {panel, {"GNOME"}, true, "no desktops named"},
        {panel + "NoDisplay=true\nOnlyShowIn=GNOME;Unity;\n", {"ubuntu", "GNOME"}, true, "its own"},
        {panel + "OnlyShowIn=GNOME;Unity;\n", {"KDE"}, false, "it refuses to run there"},
        {panel + "OnlyShowIn=GNOME;\n", {}, false, "no desktop is none of its own"},
        {panel + "NotShowIn=KDE;\n", {"KDE"}, false, "not there"},
        {panel + "Hidden=true\n", {"GNOME"}, false, "removed by the user"},
        {"Name=X\nExec=kcmshell6 kcm_x\n", {"KDE"}, false, "its program is missing"},
        {"Exec=gnome-control-center x\n", {"GNOME"}, false, "no name"},
        {"Name=X\nExec=x wifi\n", {"GNOME"}, false, "an application"},
    };

    for (const auto& [lines, desktops, offered, reason] : cases)
        EXPECT_EQ(pane("x", lines, desktops).has_value(), offered) << reason;
}

TEST(SettingsPanes, aKnownPaneIsCalledAsPeopleKnowIt) {
    const auto wifi = pane("gnome-wifi-panel", "Name=WLAN\nExec=gnome-control-center wifi\n");
    ASSERT_TRUE(wifi);
    EXPECT_EQ(wifi->id, "sys.pane.gnome-wifi-panel");
    EXPECT_EQ(wifi->name, "Wi-Fi");
    EXPECT_EQ(wifi->kind, CommandKind::app);
    EXPECT_EQ(wifi->path, "/a/gnome-wifi-panel.desktop");
    EXPECT_THAT(wifi->aliases.value(), Contains("wireless"));
    EXPECT_THAT(wifi->aliases.value(), Contains("WLAN")) << "its entry's name finds it too";

    const auto about =
        pane("kcm_about-distro", "Name=About this System\nExec=systemsettings kcm_about-distro\n");
    EXPECT_EQ(about->name, "About This Computer");
    EXPECT_THAT(about->aliases.value(), Contains("system information"));

    const auto camera = pane("gnome-camera-panel", "Name=Camera\nExec=gnome-control-center camera");
    EXPECT_THAT(camera->aliases.value(), Not(Contains("Camera"))) << "an application's name";
}

TEST(SettingsPanes, anUnknownPaneIsCalledAsItsEntrySays) {
    const std::string lines = "Name=Tomorrow\nName[de]=Morgen\nExec=gnome-control-center tomorrow";
    const auto pane_ = pane("new-panel", lines, {"GNOME"}, german);
    ASSERT_TRUE(pane_);
    EXPECT_EQ(pane_->name, "Morgen");
    EXPECT_THAT(pane_->aliases.value(), ElementsAre("Tomorrow"));
}

TEST(SettingsPanes, theTableHasEachPaneOnce) {
    std::set<std::string_view> ids;
    for (const auto& known : SettingsPanes::paneNames()) {
        EXPECT_TRUE(ids.insert(known.entryID).second) << known.entryID;
        EXPECT_FALSE(known.name.empty()) << known.entryID;
        EXPECT_EQ(known.words.find(", "), std::string_view::npos) << known.entryID;
        EXPECT_EQ(known.words.find(",,"), std::string_view::npos) << known.entryID;
    }
}

} // namespace
} // namespace tessarine
