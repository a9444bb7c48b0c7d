#include "launcherapp/platform/linux/files/SystemZone.h"

#include "tests/linux/EventLoop.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <ctime>

namespace tessarine {
namespace {

class SystemZoneTest : public testing::Test {
protected:
    std::string identifier(std::optional<std::string> variable = {}) const {
        return SystemZone(std::move(variable), folder.path()).identifier();
    }

    void link(const std::string& target, const std::string& name = "/localtime") const {
        std::filesystem::remove(folder.path(name));
        std::filesystem::create_symlink(target, folder.path(name));
    }

    ScratchFolder folder;
};

TEST_F(SystemZoneTest, theVariableNamesAZoneInSeveralWays) {
    link("/usr/share/zoneinfo/Asia/Tokyo"); // which the variable overrules
    const std::pair<const char*, const char*> cases[] = {
        {"Europe/Berlin", "Europe/Berlin"},
        {":Europe/Berlin", "Europe/Berlin"},
        {":/usr/share/zoneinfo/Europe/Berlin", "Europe/Berlin"},
        {"/usr/share/zoneinfo/posix/Europe/Berlin", "Europe/Berlin"},
        {"right/Europe/Berlin", "Europe/Berlin"},
        {"UTC", "UTC"},
        {"", "Etc/UTC"}, // as the C library takes it
    };
    for (const auto& [variable, expected] : cases) {
        SCOPED_TRACE(variable);
        EXPECT_EQ(identifier(variable), expected);
    }
}

TEST_F(SystemZoneTest, aVariableThatWritesOutItsRulesGivesTheOffsetOfNow) {
    const char* before = std::getenv("TZ");
    const std::optional<std::string> kept =
        before ? std::optional<std::string>(before) : std::nullopt;
    ::setenv("TZ", "XYZ3:30", 1); // west is positive there
    EXPECT_EQ(identifier("XYZ3:30"), "GMT-03:30");
    kept ? ::setenv("TZ", kept->c_str(), 1) : ::unsetenv("TZ");
    ::tzset();
}

TEST_F(SystemZoneTest, theLinkIsReadAfreshEachTime) {
    const SystemZone zone({}, folder.path());
    link("/usr/share/zoneinfo/Asia/Tokyo");
    EXPECT_EQ(zone.identifier(), "Asia/Tokyo");
    link("../usr/share/zoneinfo/America/Argentina/Buenos_Aires");
    EXPECT_EQ(zone.identifier(), "America/Argentina/Buenos_Aires");
}

TEST_F(SystemZoneTest, theLinkMayLeadThroughAnother) {
    link("zone");
    link("/var/db/zoneinfo/Europe/Rome", "/zone");
    EXPECT_EQ(identifier(), "Europe/Rome");
    link("localtime"); // to itself
    EXPECT_EQ(identifier(), "Etc/UTC");
}

TEST_F(SystemZoneTest, withoutALinkTheWrittenNameCounts) {
    EXPECT_EQ(identifier(), "Etc/UTC"); // nothing is there
    folder.write("/localtime", "TZif2");
    folder.write("/timezone", "Europe/Lisbon\n");
    EXPECT_EQ(identifier(), "Europe/Lisbon");
    folder.write("/timezone", "Mars/Olympus\n");
    EXPECT_EQ(identifier(), "Etc/UTC");
}

} // namespace
} // namespace tessarine
