#include "LauncherCore/catalog/Launchable.h"

#include <gtest/gtest.h>

namespace tessarine {
namespace {

using Launchable::Verdict;

DesktopEntry entry(const std::string& lines) {
    return DesktopEntry::parse("[Desktop Entry]\n" + lines, {}).value();
}

TEST(Launchable, whatAsksForNoDisplayNeedsAnIconOrACategory) {
    const struct {
        std::string lines;
        bool launchable;
    } cases[] = {
        {"", true},
        {"NoDisplay=false", true},
        {"NoDisplay=true", false},
        {"NoDisplay=1", false},
        {"NoDisplay=true\nIcon=x", true},
        {"NoDisplay=1\nCategories=Game;", true},
        {"NoDisplay=true\nIcon=\nCategories=;", false},
        {"NoDisplay=true\nMimeType=x-scheme-handler/x;", false},
    };

    for (const auto& [lines, launchable] : cases)
        EXPECT_EQ(Launchable::isLaunchable(entry(lines)), launchable) << lines;
}

TEST(Launchable, verdictsNameWhatIsWrong) {
    const std::vector<std::string> desktops{"Budgie", "GNOME"};
    const std::string good = "Type=Application\nName=X\nExec=x\n";

    const struct {
        std::string lines;
        Verdict verdict;
        const char* reason;
    } cases[] = {
        {good, Verdict::offered, "nothing"},
        {"Type=Link\nName=X\nURL=x\n", Verdict::notAnApplication, "a link"},
        {"Name=X\nExec=x\n", Verdict::notAnApplication, "no type"},
        {"Type=Application\nExec=x\n", Verdict::incomplete, "no name"},
        {"Type=Application\nName=\\s\nExec=x\n", Verdict::incomplete, "a blank name"},
        {"Type=Application\nName=X\n", Verdict::incomplete, "no program"},
        {"Type=Application\nName=X\nExec=  \n", Verdict::incomplete, "a blank program"},
        {"Type=Application\nName=X\nExec=\"x\n", Verdict::incomplete, "an open quote"},
        {"Type=Application\nName=X\nDBusActivatable=true\n", Verdict::offered, "the bus starts it"},
        {good + "Hidden=true", Verdict::deleted, "deleted by the user"},
        {"Type=Application\nHidden=true", Verdict::deleted, "deleted, and nothing else said"},
        {good + "TryExec=missing", Verdict::programMissing, "its program is gone"},
        {good + "TryExec=there", Verdict::offered, "its program is there"},
        {good + "OnlyShowIn=KDE;", Verdict::otherDesktop, "for another desktop"},
        {good + "OnlyShowIn=GNOME;KDE;", Verdict::offered, "for this one too"},
        {good + "OnlyShowIn=;", Verdict::otherDesktop, "for none"},
        {good + "NotShowIn=GNOME;", Verdict::otherDesktop, "not for this one"},
        {good + "NotShowIn=KDE;", Verdict::offered, "not for another"},
        {good + "OnlyShowIn=Budgie;\nNotShowIn=GNOME;", Verdict::offered, "the first name decides"},
        {good + "OnlyShowIn=GNOME;\nNotShowIn=Budgie;", Verdict::otherDesktop, "either way"},
    };

    for (const auto& [lines, verdict, reason] : cases) {
        const auto found = Launchable::verdict(
            entry(lines), {.currentDesktops = desktops, .canExecute = [](std::string_view program) {
                               return program == "there";
                           }});
        EXPECT_EQ(found, verdict) << reason;
    }
}

} // namespace
} // namespace tessarine
