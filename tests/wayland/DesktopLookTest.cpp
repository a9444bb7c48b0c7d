#include "launcherapp/platform/linux/surroundings/DesktopLook.h"

#include "launcherapp/platform/Environment.h"

#include <gmock/gmock.h>

namespace tessarine {
namespace {

TEST(DesktopLook, takesACompositorForWhatItOffers) {
    const auto found = DesktopLook::display({.desktops = {"sway"}, .hasWayland = true});
    EXPECT_EQ(DesktopTable::family(found), DesktopFamily::wlroots);
    for (const auto ability : {DesktopAbility::panel,
                               DesktopAbility::clipboardHistory,
                               DesktopAbility::typing,
                               DesktopAbility::runningApplications,
                               DesktopAbility::windowVerbs,
                               DesktopAbility::activationTokens})
        EXPECT_EQ(DesktopTable::cell(found, ability), DesktopCell()) << DesktopTable::name(ability);
}

} // namespace
} // namespace tessarine
