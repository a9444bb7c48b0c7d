#include "launcherapp/platform/linux/wayland/WaylandConnection.h"

#include "tests/wayland/TestKeyboard.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <wayland-client.h>

#include <QByteArray>
#include <csignal>
#include <thread>

namespace tessarine {
namespace {

using namespace std::chrono_literals;
using testing::Gt;

TEST(WaylandConnection, tellsWhatTheCompositorOffers) {
    WaylandConnection connection;
    ASSERT_TRUE(connection.answers());
    const auto seat = connection.registry().find("wl_seat");
    ASSERT_TRUE(seat);
    EXPECT_THAT(seat->version, Gt(0U));
    EXPECT_FALSE(connection.registry().find("no_such_interface"));
    auto* const bound = connection.registry().bindFirst<wl_seat>(wl_seat_interface, 99);
    ASSERT_TRUE(bound);
    EXPECT_TRUE(connection.roundTrip());
    EXPECT_LE(wl_proxy_get_version(reinterpret_cast<wl_proxy*>(bound)), seat->version);
    wl_seat_destroy(bound);
}

TEST(WaylandConnection, withoutACompositorNothingAnswers) {
    const auto before = qgetenv("WAYLAND_DISPLAY");
    qputenv("WAYLAND_DISPLAY", "nobody-listens-here");
    WaylandConnection connection;
    qputenv("WAYLAND_DISPLAY", before);
    EXPECT_FALSE(connection.answers());
    EXPECT_FALSE(connection.dispatchWhatCame());
    EXPECT_FALSE(connection.roundTrip());
    connection.flush();
}

TEST(WaylandConnection, aCompositorThatStandsStillCostsTheLimitAndNoMore) {
    WaylandConnection connection;
    ASSERT_TRUE(connection.answers());
    const auto process = qEnvironmentVariableIntValue("COMPOSITOR_PROCESS");
    ASSERT_EQ(::kill(process, SIGSTOP), 0);
    const auto begun = std::chrono::steady_clock::now();
    EXPECT_FALSE(connection.roundTrip(50ms));
    const auto took = std::chrono::steady_clock::now() - begun;
    ::kill(process, SIGCONT);
    EXPECT_GE(took, 50ms);
    EXPECT_LT(took, 1s);
    EXPECT_TRUE(connection.roundTrip());
}

} // namespace
} // namespace tessarine
