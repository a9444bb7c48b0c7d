#include "launcherapp/platform/linux/accessibility/PrivateBus.h"

#include "launcherapp/platform/linux/desktop/SessionBus.h"

#include <gtest/gtest.h>

namespace tessarine {
namespace {

BusCall nameHasOwner(std::string name) {
    return {.place = {.owner = "org.freedesktop.DBus", .path = "/org/freedesktop/DBus"},
            .interface = "org.freedesktop.DBus",
            .method = "NameHasOwner",
            .arguments = {std::move(name)}};
}

TEST(PrivateBus, aTextThatIsNotUtf8IsNotSent) {
    const auto address = sessionBusAddress();
    ASSERT_TRUE(address);
    const auto deadline = PrivateBus::Clock::now() + std::chrono::seconds(10);
    const auto bus = PrivateBus::connect(*address, deadline);
    ASSERT_TRUE(bus);
    bus->send(nameHasOwner("\xff"));
    EXPECT_FALSE(bus->call(nameHasOwner("\xff"), deadline).came());
    EXPECT_EQ(bus->call(nameHasOwner(bus->name()), deadline).number(), 1);
}

} // namespace
} // namespace tessarine
