#include "launcherapp/catalog/AppLauncher.h"

#include "tests/fakes/FakePlatform.h"

#include <gmock/gmock.h>

namespace tessarine {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class AppLauncherTest : public testing::Test {
protected:
    AppLauncherTest() { platform.processes.programs = {"app", "xterm"}; }

    /// The problem; nothing on success.
    std::optional<std::string> launch(const InstalledApp& app,
                                      const std::vector<std::string>& uris = {}) {
        int calls = 0;
        std::optional<std::string> result;
        const auto start = platform.queue.uptime();
        launcher.launch(app, uris, [&](std::optional<std::string> problem) {
            ++calls;
            result = std::move(problem);
            took = platform.queue.uptime() - start;
        });
        EXPECT_EQ(calls, 0) << "the answer comes later";
        platform.time.advance(Seconds{60});
        EXPECT_EQ(calls, 1);
        return result;
    }

    FakePlatform platform;
    AppLauncher launcher{
        platform.queue, platform.processes, platform.bus, platform.tokens, Environment{}};
    Seconds took{0};
};

TEST_F(AppLauncherTest, startsTheProgramWithItsSurroundings) {
    EXPECT_EQ(launch({.bundleID = "a", .exec = "app --x %F", .workingDirectory = "/elsewhere"},
                     {"file:///f"}),
              std::nullopt);
    launch({.bundleID = "a", .exec = "app"});
    ASSERT_EQ(platform.processes.started.size(), 2u);
    const auto& first = platform.processes.started[0];
    EXPECT_THAT(first.arguments, ElementsAre("app", "--x", "/f"));
    EXPECT_EQ(first.workingDirectory, "/elsewhere");
    EXPECT_EQ(first.name, "a");
    EXPECT_EQ(first.environment.at("DESKTOP_STARTUP_ID"), "token-1");
    EXPECT_EQ(first.environment.at("XDG_ACTIVATION_TOKEN"), "token-1");
    EXPECT_EQ(platform.processes.started[1].environment.at("XDG_ACTIVATION_TOKEN"), "token-2");
}

TEST_F(AppLauncherTest, withoutATokenNothingIsSaidOfOne) {
    platform.tokens.gives = false;
    launch({.bundleID = "a", .exec = "app"});
    ASSERT_EQ(platform.processes.started.size(), 1u);
    EXPECT_THAT(platform.processes.started[0].environment, IsEmpty());
}

TEST_F(AppLauncherTest, asksTheBusFirst) {
    const InstalledApp app{.bundleID = "org.x.App", .exec = "app", .busActivatable = true};
    platform.bus.answers["org.x.App"] = std::nullopt;
    EXPECT_EQ(launch(app, {"x:y"}), std::nullopt);
    ASSERT_EQ(platform.bus.requests.size(), 1u);
    EXPECT_THAT(platform.bus.requests[0].uris, ElementsAre("x:y"));
    EXPECT_EQ(platform.bus.requests[0].activationToken, "token-1");
    EXPECT_THAT(platform.processes.started, IsEmpty());
}

TEST_F(AppLauncherTest, aBusThatFailsOrIsSilentLeavesTheProgram) {
    const InstalledApp app{.bundleID = "org.x.App", .exec = "app", .busActivatable = true};
    platform.bus.answers["org.x.App"] = "refused";
    EXPECT_EQ(launch(app), std::nullopt);
    EXPECT_EQ(platform.processes.started.size(), 1u);
    platform.bus.silent = {"org.x.App"};
    EXPECT_EQ(launch(app), std::nullopt);
    EXPECT_EQ(took, AppLauncher::busTimeout);
    ASSERT_EQ(platform.processes.started.size(), 2u);
    const auto token = [&](std::size_t start) {
        return platform.processes.started[start].environment.at("XDG_ACTIVATION_TOKEN");
    };
    EXPECT_EQ(token(0), "token-1"); // nobody else has had it
    EXPECT_EQ(token(1), "token-3"); // the silent one may have used the second
    // Without a program the bus's own words are the answer.
    EXPECT_EQ(launch({.bundleID = "org.x.Other", .busActivatable = true}),
              "nobody can be started by this name");
}

TEST_F(AppLauncherTest, problemsAreToldInWords) {
    EXPECT_THAT(launch({.bundleID = "a", .exec = "gone"}).value_or(""),
                HasSubstr("gone could not be started"));
    EXPECT_EQ(launch({.bundleID = "a"}), "its desktop entry names no program");
    EXPECT_EQ(launch({.bundleID = "a", .exec = "app", .terminal = true}), std::nullopt);
    EXPECT_THAT(platform.processes.started.back().arguments,
                ElementsAre("/usr/bin/xterm", "-e", "app"));
    platform.processes.programs.erase("xterm");
    EXPECT_EQ(launch({.bundleID = "a", .exec = "app", .terminal = true}),
              "it needs a terminal, and none is installed");
}

TEST_F(AppLauncherTest, everyFileIsOpenedThoughOneFails) {
    platform.processes.programs.erase("app");
    EXPECT_THAT(
        launch({.bundleID = "a", .exec = "app %f"}, {"file:///1", "file:///2"}).value_or(""),
        HasSubstr("app could not be started"));
    platform.processes.programs.insert("app");
    EXPECT_EQ(launch({.bundleID = "a", .exec = "app %f"}, {"file:///1", "file:///2"}),
              std::nullopt);
    ASSERT_EQ(platform.processes.started.size(), 2u);
    EXPECT_EQ(platform.processes.started[0].environment.size(), 2u);
    EXPECT_THAT(platform.processes.started[1].environment, IsEmpty()); // a token is for one
}

} // namespace
} // namespace tessarine
