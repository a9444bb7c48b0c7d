#include "launcherapp/commands/JumpRunner.h"

#include "LauncherCore/text/Urls.h"
#include "launcherapp/platform/FileTypes.h"
#include "tests/fakes/FakeAccessibility.h"
#include "tests/fakes/FakeAlerts.h"
#include "tests/fakes/FakeServices.h"

#include <gmock/gmock.h>

#include <chrono>

namespace tessarine {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;
using Outcome = PressAttempt::Outcome;

struct TextFilesOnly : FileTypes {
    std::vector<std::string> types(const std::string&) const override { return {"text/plain"}; }
};

/// An application "Editor" that is installed, opens "note:" links and text files, and runs from
/// the moment that its window is opened.
class JumpRunnerTest : public testing::Test {
protected:
    JumpRunnerTest() {
        path = services.install(
            "org.x.editor", "Editor", "MimeType=x-scheme-handler/note;text/plain;\n");
        services.install("other", "Other");
        services.startCatalog();
    }

    JumpRunner::Services given() {
        return {.queue = services.platform.queue,
                .work = services.platform.work,
                .catalog = services.catalog,
                .types = types,
                .running = services.running,
                .windows = services.platform.windows,
                .accessibility = accessibility,
                .alerts = alerts,
                .diagnostics = services.diagnostics,
                .resolve = [](std::string_view text) -> std::optional<std::string> {
                    if (text.starts_with('/'))
                        return Urls::fileUrl(text);
                    return text.find(':') == text.npos ? std::nullopt
                                                       : std::optional(std::string(text));
                },
                .open =
                    [this](const std::vector<std::string>& urls,
                           CommandRuntime::Activation activation) {
                        for (const auto& url : urls)
                            did.push_back((activation == CommandRuntime::Activation::foreground
                                               ? "open "
                                               : "behind ") +
                                          url);
                    },
                .launch = [this](const InstalledApp& app) { did.push_back("launch " + app.name); }};
    }

    CommandSpec command(std::vector<std::string> press = {"Save"}) const {
        return {.id = "j", .kind = CommandKind::jump, .path = path, .press = std::move(press)};
    }

    /// In so many seconds from now.
    void openWindow(double in = 0, bool hidden = false) {
        services.platform.time.schedule(Seconds(in), [this, hidden] {
            windows.open = {
                {.id = 7, .className = "org.x.editor", .processID = 42, .hidden = hidden},
                {.id = 8, .className = "other", .processID = 43}};
        });
        services.platform.time.settle();
    }

    void answerOnlyAfter(double seconds) {
        const auto from = services.platform.time.uptime() + Seconds(seconds);
        accessibility->answer = [this, from](const std::string&) {
            return PressAttempt{.outcome = services.platform.time.uptime() < from
                                               ? Outcome::notFound
                                               : Outcome::pressed};
        };
    }

    /// The lines of the log, without what stands before "jump".
    std::vector<std::string> log() {
        std::vector<std::string> lines;
        std::istringstream text(services.log());
        for (std::string line; std::getline(text, line);) {
            if (const auto at = line.find("jump "); at != line.npos)
                lines.push_back(line.substr(at));
        }
        return lines;
    }

    std::vector<std::string> names() const {
        std::vector<std::string> result;
        for (const auto& attempt : accessibility->attempts)
            result.push_back(attempt.name);
        return result;
    }

    FakeServices services;
    FakeWindowList& windows = services.platform.windows;
    std::shared_ptr<FakeAccessibility> accessibility = std::make_shared<FakeAccessibility>();
    FakeAlerts alerts;
    TextFilesOnly types;
    std::string path;
    std::vector<std::string> did; ///< what was opened and launched, in order
    JumpRunner jumps{given()};
};

TEST_F(JumpRunnerTest, withoutNamesItOpensAndStops) {
    const struct {
        CommandSpec spec;
        std::vector<std::string> expected;
    } cases[] = {
        {{.path = path}, {"launch Editor"}},
        {{.path = "org.x.editor"}, {"launch Editor"}},            // by its id
        {{.path = path, .press = {{"", ""}}}, {"launch Editor"}}, // names of nothing
        {{.path = path, .url = "note:{query}?a={query}"},
         {"open note:a%26b%7Bquery%7D?a=a%26b%7Bquery%7D"}},
        {{.path = path, .url = "note:1", .activate = false}, {"behind note:1"}},
        {{.path = path, .url = "no address"}, {"launch Editor"}},
        {{.url = "no address"}, {}},
        {{.path = "/none.desktop"}, {}},
    };

    for (const auto& [spec, expected] : cases) {
        SCOPED_TRACE(spec.url.value_or("") + spec.path.value_or(""));
        did.clear();
        jumps.run(spec, "a&b{query}");
        EXPECT_EQ(did, expected);
    }
    services.platform.time.advance(Seconds(20));
    EXPECT_THAT(accessibility->attempts, IsEmpty());
}

TEST_F(JumpRunnerTest, opensBehindPressesInOrderAndComesForward) {
    openWindow();
    auto spec = command({"File", "", "Save"});
    spec.url = "note:1";
    jumps.run(spec, "");
    services.platform.time.advance(Seconds(0.1));
    EXPECT_THAT(names(), ElementsAre("File")); // there is a pause before the next
    services.platform.time.advance(Seconds(1));
    EXPECT_THAT(names(), ElementsAre("File", "Save"));
    EXPECT_THAT(did, ElementsAre("behind note:1", "launch Editor"));
    EXPECT_THAT(log(), ElementsAre("jump j: pressed 2 in 150 ms"));
    ASSERT_EQ(accessibility->woken.size(), 1U);
    EXPECT_EQ(accessibility->woken[0].processIDs, std::set<std::int64_t>{42});
    EXPECT_EQ(accessibility->attempts[0].program.names,
              (std::set<std::string>{"Editor", "org.x.editor", "editor"}));
}

TEST_F(JumpRunnerTest, activateFalseStaysBehindUnlessAPressFails) {
    openWindow();
    auto spec = command();
    spec.activate = false;
    jumps.run(spec, "");
    services.platform.time.advance(Seconds(10));
    EXPECT_THAT(did, IsEmpty()); // it runs, so there is nothing to open either
    answerOnlyAfter(100);
    jumps.run(spec, "");
    services.platform.time.advance(Seconds(10));
    EXPECT_THAT(did, ElementsAre("launch Editor"));
}

TEST_F(JumpRunnerTest, anApplicationAllMinimisedIsBroughtBackToBePressedIn) {
    openWindow(0, true);
    jumps.run(command(), "");
    services.platform.time.advance(Seconds(1));
    EXPECT_THAT(windows.calls, ElementsAre(std::pair<std::string, std::uint64_t>("unhide", 7)));
}

TEST_F(JumpRunnerTest, theWaitsAreAsLongAsTold) {
    const struct {
        double window;
        double button; ///< after the window
        std::string line;
    } cases[] = {
        {0, 3.9, "jump j: pressed 1 in 3960 ms"},
        {7.85, 0, "jump j: pressed 1 in 7900 ms"}, // checks every 0.1 s
        {0,
         5,
         "jump j: pressed 0 but could not find Save (nothing named that was on screen "
         "within 4.0 s) in 4080 ms; opening the app anyway"},
        {9, 0, "jump j: pressed 0 but could not find Save (Editor is not running) in 8"},
    };

    for (const auto& [window, button, line] : cases) {
        SCOPED_TRACE(line);
        windows.open.clear();
        openWindow(window);
        answerOnlyAfter(window + button);
        jumps.run(command(), "");
        services.platform.time.advance(Seconds(20));
        EXPECT_THAT(log().back(), StartsWith(line));
        EXPECT_EQ(did.back(), "launch Editor");
    }
}

TEST_F(JumpRunnerTest, aRefusedPressEndsTheJump) {
    openWindow();
    accessibility->answer = [](const std::string& name) {
        return name == "B" ? PressAttempt{.outcome = Outcome::refused, .problem = "not now"}
                           : PressAttempt{.outcome = Outcome::pressed};
    };
    jumps.run(command({"A", "B", "C"}), "");
    services.platform.time.advance(Seconds(10));
    EXPECT_THAT(names(), ElementsAre("A", "B"));
    EXPECT_THAT(log(),
                ElementsAre("jump j: pressed 1 but could not find B (the press was refused (AX "
                            "error not now)) in 150 ms; opening the app anyway"));
}

TEST_F(JumpRunnerTest, withoutPermissionItSaysSoAndOpens) {
    accessibility->trusted = Ability::missing("there is no session bus");
    openWindow();
    auto spec = command();
    jumps.run(spec, "");
    services.platform.time.advance(Seconds(10));
    EXPECT_THAT(accessibility->attempts, IsEmpty());
    EXPECT_THAT(did, ElementsAre("launch Editor"));
    ASSERT_EQ(alerts.told.size(), 1U);
    EXPECT_EQ(alerts.told[0].first,
              "Tessarine needs Accessibility permission to press buttons in other apps");
    EXPECT_THAT(alerts.told[0].second, HasSubstr("there is no session bus. Install at-spi2-core"));
}

TEST_F(JumpRunnerTest, theApplicationIsThePathsElseTheOneOfTheLink) {
    const struct {
        std::optional<std::string> path, url;
        bool known;
    } cases[] = {
        {std::nullopt, "note:1", true},
        {std::nullopt, "/home/u/a.txt", true},
        {std::nullopt, "strange:1", false},
        {std::nullopt, std::nullopt, false},
        {"/none.desktop", "note:1", true},
        {"/none.desktop", std::nullopt, false},
    };

    openWindow();
    for (const auto& [appPath, url, known] : cases) {
        SCOPED_TRACE(appPath.value_or("-") + url.value_or("-"));
        auto spec = command();
        spec.path = appPath;
        spec.url = url;
        jumps.run(spec, "");
        services.platform.time.advance(Seconds(1));
        EXPECT_EQ(log().back(),
                  known ? "jump j: pressed 1 in 0 ms"
                        : "jump j: no app to press in; give the command a path");
    }
}

TEST_F(JumpRunnerTest, jumpsComeOneAfterTheOther) {
    openWindow();
    answerOnlyAfter(1);
    jumps.run(command({"First"}), "");
    jumps.run(command({"Second"}), "");
    services.platform.time.advance(Seconds(0.9));
    EXPECT_THAT(names(), testing::Each("First"));
    services.platform.time.advance(Seconds(1));
    EXPECT_EQ(names().back(), "Second");
    EXPECT_EQ(log().size(), 2U);
}

TEST_F(JumpRunnerTest, whereWindowsArentToldTheApplicationIsAskedForByName) {
    windows.supported = Ability::missing("no windows here");
    services.platform.time.schedule(Seconds(2), [this] { accessibility->running = true; });
    jumps.run(command(), "");
    services.platform.time.advance(Seconds(10));
    EXPECT_THAT(log(), ElementsAre("jump j: pressed 1 in 2000 ms"));
    EXPECT_THAT(accessibility->attempts[0].program.processIDs, IsEmpty());
}

TEST_F(JumpRunnerTest, nothingComesOfAJumpWhoseRunnerHasGone) {
    auto runner = std::make_unique<JumpRunner>(given());
    runner->run(command(), "");
    services.platform.time.advance(Seconds(1));
    runner.reset();
    openWindow();
    services.platform.time.advance(Seconds(20));
    EXPECT_THAT(accessibility->attempts, IsEmpty());
    EXPECT_THAT(did, ElementsAre("launch Editor")); // to start it; nothing after
}

TEST_F(JumpRunnerTest, theProbeTellsWhatCameOfIt) {
    const struct {
        std::string app;
        std::vector<std::string> names;
        Ability trusted;
        std::string line;
    } cases[] = {
        {"org.x.editor", {"A", "B"}, {}, "PRESSED: A, B"},
        {"org.x.editor",
         {"A", "no"},
         {},
         "NOT PRESSED: could not find no (nothing named that was "
         "on screen within 4.0 s); pressed before: A"},
        {"org.x.editor", {""}, {}, "NOT PRESSED: no name was given"},
        {"org.x.editor",
         {"A"},
         Ability::missing("none"),
         "NOT PRESSED: Tessarine needs Accessibility permission to press buttons in other apps "
         "(none)"},
        {"org.none", {"A"}, {}, "org.none is not running"},
    };

    openWindow();
    accessibility->answer = [](const std::string& name) {
        return PressAttempt{.outcome = name == "no" ? Outcome::notFound : Outcome::pressed};
    };
    for (const auto& [app, names, trusted, line] : cases) {
        SCOPED_TRACE(line);
        accessibility->trusted = trusted;
        std::vector<std::string> told;
        jumps.probe(app, names, [&](const std::string& each) { told.push_back(each); });
        EXPECT_THAT(told, IsEmpty());
        services.platform.time.advance(Seconds(10));
        EXPECT_THAT(told, ElementsAre(line));
    }
    EXPECT_THAT(did, IsEmpty());
}

} // namespace
} // namespace tessarine
