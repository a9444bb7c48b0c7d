#include "launcherapp/shell/Invitation.h"

#include "launcherapp/platform/Environment.h"

#include <gmock/gmock.h>

namespace tessarine {
namespace {

using enum Invitation::StartedFrom;
using testing::HasSubstr;
using testing::Not;

const Environment x11{.hasX11 = true};
const Environment wayland{.hasWayland = true};
const Environment both{.hasX11 = true, .hasWayland = true};
constexpr auto byTheDesktop = "gapplication action com.corvane.tessarine toggle";

TEST(Invitation, namesAKeyThatWorks) {
    EXPECT_EQ(Invitation::withPanel({.keys = "Super+Space", .status = "registered"}, desktop),
              "Tessarine is running. Super+Space brings it up.");
    const auto refused = Invitation::withPanel({.keys = {}, .status = "it is held"}, desktop);
    EXPECT_THAT(refused, HasSubstr("no key brings it up: it is held"));
    EXPECT_THAT(refused, HasSubstr(byTheDesktop));
}

TEST(Invitation, saysWhatIsMissingWithoutAPanel) {
    const std::pair<Environment, const char*> cases[] = {
        {{}, "there is no display"},
        {x11, "the X11 display does not answer"},
        {both, "the X11 display does not answer"},
        {wayland, "there is no X11 display"},
    };
    for (const auto& [environment, reason] : cases) {
        EXPECT_THAT(Invitation::missingDisplay(environment), HasSubstr(reason));
        EXPECT_THAT(Invitation::withoutPanel(environment, desktop), HasSubstr(reason));
    }
}

TEST(Invitation, tellsWhoLooksAtATerminalWhatEndsIt) {
    EXPECT_THAT(Invitation::withoutPanel({}, terminal), HasSubstr("closing this terminal"));
    EXPECT_THAT(Invitation::withoutPanel({}, desktop), Not(HasSubstr("terminal")));
}

} // namespace
} // namespace tessarine
