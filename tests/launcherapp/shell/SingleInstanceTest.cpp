#include "launcherapp/shell/SingleInstance.h"

#include "launcherapp/operations/Diagnostics.h"
#include "tests/fakes/FakePlatform.h"

#include <gtest/gtest.h>

namespace tessarine {
namespace {

class SingleInstanceTest : public testing::Test {
protected:
    /// Enforces, and returns what was logged, without the time stamps.
    std::string enforce(std::optional<std::string_view> bundleID = "com.corvane.tessarine") {
        const auto start = platform.queue.uptime();
        SingleInstance::enforce(platform.copies, platform.queue, diagnostics, bundleID);
        waited = platform.queue.uptime() - start;
        platform.time.settle();
        std::string messages;
        std::istringstream lines(platform.files.read("/data/tessarine.log", 10000).value_or(""));
        for (std::string line; std::getline(lines, line);)
            messages += line.substr(line.find(' ') + 1) + "\n";
        return messages;
    }

    FakePlatform platform;
    Diagnostics diagnostics{platform.queue,
                            platform.work,
                            platform.files,
                            [] { return "/data"; },
                            Diagnostics::Run::resident};
    Seconds waited{0};
};

TEST_F(SingleInstanceTest, aloneItWaitsForNobody) {
    EXPECT_EQ(enforce(), "");
    EXPECT_EQ(waited, Seconds{0});
}

TEST_F(SingleInstanceTest, anOlderCopyThatObeysCostsOnlyItsOwnTime) {
    platform.copies.copies[11] = {.quitsAfter = Seconds{0.03}};
    EXPECT_EQ(enforce(), "single instance: 1 older copy quit\n");
    EXPECT_NEAR(waited.count(), 0.04, 1e-9); // two rounds of 20 ms
    EXPECT_TRUE(platform.copies.forced.empty());
}

TEST_F(SingleInstanceTest, severalAreCounted) {
    platform.copies.copies[11] = {.quitsAfter = Seconds{0}};
    platform.copies.copies[12] = {.quitsAfter = Seconds{1.9}};
    EXPECT_EQ(enforce(), "single instance: 2 older copies quit\n");
}

TEST_F(SingleInstanceTest, onlyThoseThatStayAreForced) {
    platform.copies.copies[11] = {.quitsAfter = Seconds{0.1}};
    platform.copies.copies[12] = {.diesAfter = Seconds{0.1}};
    EXPECT_EQ(enforce(),
              "single instance: 1 copy did not quit in 2 s; forcing\n"
              "single instance: forced quit succeeded; the chord is free\n");
    EXPECT_EQ(platform.copies.forced, std::vector<std::int64_t>{12});
    EXPECT_NEAR(waited.count(), 2.1, 0.05);
}

TEST_F(SingleInstanceTest, aCopyThatCannotBeEndedIsGivenUpAfterThreeSeconds) {
    platform.copies.copies[11] = {.diesAfter = std::nullopt};
    EXPECT_EQ(enforce(),
              "single instance: 1 copy did not quit in 2 s; forcing\n"
              "single instance: 1 copy STILL running; expect the hotkey to be taken\n");
    EXPECT_NEAR(waited.count(), 3.0, 0.05);
}

TEST_F(SingleInstanceTest, aCopyWithoutAnIdentityCompetesWithNobody) {
    platform.copies.copies[11] = {.quitsAfter = Seconds{0}};
    EXPECT_EQ(enforce(std::nullopt), "");
    EXPECT_FALSE(platform.copies.isGone(11));
}

} // namespace
} // namespace tessarine
