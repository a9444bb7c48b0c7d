#include "launcherapp/platform/linux/desktop/DesktopNotice.h"

#include "tests/linux/BusObject.h"
#include "tests/linux/EventLoop.h"

#include <gtest/gtest.h>

#include <optional>

namespace tessarine {
namespace {

constexpr auto service = "org.freedesktop.Notifications";
constexpr auto path = "/org/freedesktop/Notifications";

/// What became of a notice: nothing while nothing is told, then the problem, empty for none.
std::optional<std::string> outcome(const std::string& text) {
    std::optional<std::string> told;
    DesktopNotice::show("A title", text, [&](const std::optional<std::string>& problem) {
        told = problem.value_or("");
    });
    EXPECT_TRUE(spinUntil([&] { return told.has_value(); }));
    return told;
}

TEST(DesktopNotice, isShownAsItIs) {
    BusObject desktop(service, path);
    ASSERT_TRUE(desktop.owns);
    EXPECT_EQ(outcome("exec <b> & more"), "");
    EXPECT_EQ(desktop.last.signature(), QLatin1String("susssasa{sv}i"));
    EXPECT_EQ(desktop.last.arguments()[3].toString(), QLatin1String("A title"));
    EXPECT_EQ(desktop.last.arguments()[4].toString(),
              QLatin1String("exec &lt;b&gt; &amp; more")); // its readers take marks of HTML
}

TEST(DesktopNotice, saysWhyItIsNotShown) {
    BusObject desktop(service, path);
    desktop.answer = BusObject::Answer::no;
    EXPECT_EQ(outcome("text"), "not now");
}

} // namespace
} // namespace tessarine
