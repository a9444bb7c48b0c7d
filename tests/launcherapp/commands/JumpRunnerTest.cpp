#include "launcherapp/commands/JumpRunner.h"

#include "LauncherCore/commands/CommandSpec.h"
#include "LauncherCore/text/Urls.h"
#include "launcherapp/catalog/FileOpener.h"
#include "launcherapp/platform/FileManager.h"
#include "launcherapp/platform/FileTypes.h"
#include "tests/fakes/FakeAccessibility.h"
#include "tests/fakes/FakeAlerts.h"
#include "tests/fakes/FakeServices.h"

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <gmock/gmock.h>

#include <cstddef>
#include <sstream>

namespace tessarine {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;
using Activation = JumpRunner::Activation;
using Outcome = PressAttempt::Outcome;

struct TextFilesOnly : FileTypes {
    std::vector<std::string> types(const std::string&) const override {
        ++asked;
        return {"text/plain"};
    }

    mutable int asked = 0;
};

struct NoFileManager : FileManager {
    void
    reveal(const std::string&, Seconds, std::function<void(std::optional<std::string>)>) override {}

    std::optional<std::string> trash(const std::string&) override { return std::nullopt; }
};

enum class Shown { open, minimised };

/// An application "Editor" that is installed, opens "note:" links and text files, and runs from
/// the moment that its window is opened. "Other" does nothing of its own.
class JumpRunnerTest : public testing::Test {
protected:
    JumpRunnerTest() {
        path = install("org.x.editor", "Editor", "MimeType=x-scheme-handler/note;text/plain;\n");
        otherPath = install("other", "Other", "");
        services.startCatalog();
        services.platform.time.advance(Seconds(1)); // a startup id's time 0 has a meaning
    }

    std::string install(const std::string& id, const std::string& name, const std::string& more) {
        services.platform.processes.programs.insert(id);
        const auto entry = "/usr/share/applications/" + id + ".desktop";
        services.platform.files.file(entry,
                                     "[Desktop Entry]\nType=Application\nName=" + name +
                                         "\nExec=" + id + " %u\n" + more);
        return entry;
    }

    JumpRunner::Services given() {
        return {.queue = services.platform.queue,
                .work = services.platform.work,
                .catalog = services.catalog,
                .launcher = launcher,
                .opener = opener,
                .types = types,
                .running = services.running,
                .windows = services.platform.windows,
                .accessibility = accessibility,
                .alerts = alerts,
                .diagnostics = services.diagnostics,
                .resolve = [](std::string_view text) -> std::optional<std::string> {
                    if (text.starts_with('/'))
                        return Urls::fileUrl(text);
                    return Urls::withScheme(text);
                },
                .open =
                    [this](const std::vector<std::string>& urls, Activation activation) {
                        for (const auto& url : urls)
                            linked.push_back(
                                url + (activation == Activation::background ? " behind" : ""));
                    }};
    }

    /// The programs started so far, with their arguments, and whether they are to stay behind.
    std::vector<std::string> started() const {
        std::vector<std::string> result;
        for (const auto& spec : services.platform.processes.started) {
            auto text = fmt::format("{}", fmt::join(spec.arguments, " "));
            const auto id = spec.environment.find("DESKTOP_STARTUP_ID");
            if (id != spec.environment.end() && id->second.ends_with("_TIME0"))
                text += " behind";
            result.push_back(std::move(text));
        }
        return result;
    }

    /// The application's windows that were brought forward or unhidden.
    std::vector<std::string> brought() const {
        std::vector<std::string> result;
        for (const auto& [call, window] : windows.calls)
            result.push_back(fmt::format("{} {}", call, window));
        return result;
    }

    void forget() {
        services.platform.processes.started.clear();
        windows.calls.clear();
        linked.clear();
    }

    CommandSpec command(std::vector<std::string> press = {"Save"}) const {
        return {.id = "j", .kind = CommandKind::jump, .path = path, .press = std::move(press)};
    }

    /// In so many seconds from now.
    void openWindow(double in = 0, Shown shown = Shown::open) {
        services.platform.time.schedule(Seconds(in), [this, shown] {
            windows.open = {{.id = 7,
                             .className = "org.x.editor",
                             .processID = 42,
                             .hidden = shown == Shown::minimised},
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
    std::shared_ptr<TextFilesOnly> types = std::make_shared<TextFilesOnly>();
    NoFileManager manager;
    AppLauncher launcher{services.platform.queue,
                         services.platform.processes,
                         services.platform.bus,
                         services.platform.tokens,
                         Environment{}};
    FileOpener opener{{.queue = services.platform.queue,
                       .catalog = services.catalog,
                       .launcher = launcher,
                       .types = *types,
                       .manager = manager,
                       .diagnostics = services.diagnostics}};
    std::string path;
    std::string otherPath;
    std::vector<std::string> linked; ///< links for whoever opens them
    JumpRunner jumps{given()};
};

TEST_F(JumpRunnerTest, withoutNamesItOpensAndStops) {
    const struct {
        CommandSpec spec;
        std::vector<std::string> started;
        std::vector<std::string> linked;
        std::vector<std::string> log;
    } cases[] = {
        {{.path = path}, {"org.x.editor"}, {}, {}},
        {{.path = "org.x.editor"}, {"org.x.editor"}, {}, {}},
        {{.path = "/opt/org.x.editor.desktop"}, {"org.x.editor"}, {}, {}}, // the same, hidden
        {{.path = "/usr/bin/org.x.editor"}, {"org.x.editor"}, {}, {}},     // its program
        {{.path = path, .press = {{"", ""}}}, {"org.x.editor"}, {}, {}},   // names of nothing
        {{.path = path, .activate = false}, {"org.x.editor behind"}, {}, {}},
        {{.url = "note:{query}?a={query}"}, {}, {"note:a%26b%7Bquery%7D?a=a%26b%7Bquery%7D"}, {}},
        {{.url = "/a.txt", .activate = false}, {}, {"file:///a.txt behind"}, {}},
        // A link goes to the application that is named, whoever opens such links otherwise.
        {{.path = otherPath, .url = "note:1"}, {"other note:1"}, {}, {}},
        {{.path = otherPath, .url = "note:1", .activate = false}, {"other note:1 behind"}, {}, {}},
        {{.path = path, .url = "no address"},
         {"org.x.editor"},
         {},
         {"jump : \"no address\" is no link"}},
        {{.path = "/none\n.desktop"},
         {},
         {},
         {"jump : /none\\n.desktop is no installed application",
          "jump : there is nothing to open"}},
        {{.path = "/none.desktop", .url = "note:1"},
         {},
         {"note:1"},
         {"jump : /none.desktop is no installed application"}},
    };

    std::size_t lines = 0;
    for (const auto& [spec, starts, links, lineTexts] : cases) {
        SCOPED_TRACE(spec.url.value_or("") + " " + spec.path.value_or(""));
        forget();
        jumps.run(spec, "a&b{query}");
        services.platform.time.settle();
        EXPECT_EQ(started(), starts);
        EXPECT_EQ(linked, links);
        auto all = log();
        all.erase(all.begin(), all.begin() + static_cast<std::ptrdiff_t>(lines));
        EXPECT_EQ(all, lineTexts);
        lines += all.size();
        EXPECT_TRUE(jumps.isSettled());
    }
    EXPECT_EQ(types->asked, 0) << "nobody has to know what the file is";
    EXPECT_EQ(accessibility->wakings, 0);
}

TEST_F(JumpRunnerTest, opensBehindPressesInOrderAndComesForward) {
    openWindow();
    auto spec = command({"File", "", "Save"});
    spec.url = "note:1";
    jumps.run(spec, "");
    services.platform.time.advance(Seconds(0.1));
    EXPECT_THAT(names(), ElementsAre("File")); // there is a pause before the next
    EXPECT_THAT(brought(), IsEmpty());
    EXPECT_FALSE(jumps.isSettled());
    services.platform.time.advance(Seconds(1));
    EXPECT_THAT(names(), ElementsAre("File", "Save"));
    EXPECT_THAT(started(), ElementsAre("org.x.editor note:1 behind"));
    EXPECT_THAT(brought(), ElementsAre("activate 7"));
    EXPECT_THAT(log(), ElementsAre("jump j: pressed 2 in 150 ms"));
    EXPECT_EQ(accessibility->wakings, 1);
    EXPECT_EQ(accessibility->attempts[0].program.processIDs, std::set<std::int64_t>{42});
    EXPECT_EQ(accessibility->attempts[0].program.names,
              (std::set<std::string>{"Editor", "org.x.editor", "editor"}));
    EXPECT_TRUE(jumps.isSettled());
}

TEST_F(JumpRunnerTest, activateFalseStaysBehindUnlessAPressFails) {
    auto spec = command();
    spec.activate = false;
    openWindow(1);
    jumps.run(spec, "");
    services.platform.time.advance(Seconds(10));
    EXPECT_THAT(started(), ElementsAre("org.x.editor behind"));
    EXPECT_THAT(brought(), IsEmpty());
    forget();
    jumps.run(spec, "");
    services.platform.time.advance(Seconds(10));
    EXPECT_THAT(started(), IsEmpty()); // it runs, so there is nothing to open either
    EXPECT_THAT(brought(), IsEmpty());
    answerOnlyAfter(100);
    jumps.run(spec, "");
    services.platform.time.advance(Seconds(10));
    EXPECT_THAT(brought(), ElementsAre("activate 7"));
}

TEST_F(JumpRunnerTest, anApplicationAllMinimisedIsBroughtBackToBePressedIn) {
    openWindow(0, Shown::minimised);
    auto spec = command();
    spec.activate = false;
    jumps.run(spec, "");
    services.platform.time.advance(Seconds(1));
    EXPECT_THAT(brought(), ElementsAre("unhide 7"));
    EXPECT_THAT(started(), IsEmpty());
}

TEST_F(JumpRunnerTest, theWaitsAreAsLongAsTold) {
    const struct {
        double window;
        double button; ///< after the window
        std::string line;
        std::vector<std::string> brought;
    } cases[] = {
        {0, 3.9, "jump j: pressed 1 in 3960 ms", {"activate 7"}},
        {7.85, 0, "jump j: pressed 1 in 7900 ms", {"activate 7"}}, // checks every 0.1 s
        {0,
         5,
         "jump j: pressed 0 but could not find Save (nothing named that was on screen "
         "within 4.0 s) in 4080 ms; opening the app anyway",
         {"activate 7"}},
        // It was started, so another start may open another of it.
        {9, 0, "jump j: pressed 0 but could not find Save (Editor is not running) in 8", {}},
    };

    for (const auto& [window, button, line, expected] : cases) {
        SCOPED_TRACE(line);
        forget();
        windows.open.clear();
        openWindow(window);
        answerOnlyAfter(window + button);
        jumps.run(command(), "");
        services.platform.time.advance(Seconds(20));
        EXPECT_THAT(log().back(), StartsWith(line));
        EXPECT_EQ(brought(), expected);
        EXPECT_EQ(started(),
                  window > 0 ? std::vector<std::string>{"org.x.editor behind"}
                             : std::vector<std::string>{});
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
    auto spec = command();
    spec.activate = false;
    jumps.run(spec, "");
    services.platform.time.advance(Seconds(10));
    EXPECT_THAT(accessibility->attempts, IsEmpty());
    EXPECT_EQ(accessibility->wakings, 0);
    EXPECT_THAT(started(), ElementsAre("org.x.editor behind"));
    ASSERT_EQ(alerts.told.size(), 1U);
    EXPECT_EQ(alerts.told[0].first,
              "Tessarine needs Accessibility permission to press buttons in other apps");
    EXPECT_THAT(alerts.told[0].second, HasSubstr("there is no session bus. Install at-spi2-core"));
    EXPECT_THAT(log(),
                ElementsAre("jump j: " + alerts.told[0].first + " (there is no session bus)"));
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
        EXPECT_EQ(types->asked, 0) << "not within the call";
        services.platform.time.advance(Seconds(1));
        EXPECT_EQ(log().back(),
                  known ? "jump j: pressed 1 in 0 ms"
                        : "jump j: no app to press in; give the command a path");
        types->asked = 0;
    }
}

TEST_F(JumpRunnerTest, aDiskThatHangsHoldsUpNeitherUsNorTheNextJumpForLong) {
    openWindow();
    services.platform.work.apartDuration = Seconds(60);
    auto spec = command();
    spec.path.reset();
    spec.url = "/dead/a.txt";
    jumps.run(spec, "");
    jumps.run(command(), "");
    services.platform.time.advance(Seconds(5.1));
    EXPECT_THAT(log(),
                ElementsAre("jump j: no app to press in; give the command a path",
                            "jump j: pressed 1 in 0 ms"));
    services.platform.time.advance(Seconds(100)); // an answer that comes late is nobody's
    EXPECT_EQ(log().size(), 2U);
    EXPECT_THAT(started(), IsEmpty());
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
    // Without any, and where those of a Wayland session's own programs are left out.
    for (const auto& ability : {Ability::missing("no windows here"), Ability{}}) {
        SCOPED_TRACE(ability.reason);
        forget();
        windows.supported = ability;
        accessibility->running = false;
        accessibility->attempts.clear();
        services.platform.time.schedule(Seconds(1.95), [this] { accessibility->running = true; });
        jumps.run(command(), "");
        services.platform.time.advance(Seconds(10));
        EXPECT_THAT(log().back(), "jump j: pressed 1 in 2000 ms");
        EXPECT_THAT(accessibility->attempts[0].program.processIDs, IsEmpty());
        EXPECT_THAT(started(), ElementsAre("org.x.editor behind")); // once
    }
}

TEST_F(JumpRunnerTest, anApplicationWithoutToldWindowsIsStartedAgainForTheUsersOwnHandAlone) {
    accessibility->running = true;
    jumps.run(command(), "");
    services.platform.time.advance(Seconds(10));
    EXPECT_THAT(started(), IsEmpty());
    EXPECT_THAT(log(),
                ElementsAre("jump j: Editor stays where it is: no window is told of it",
                            "jump j: pressed 1 in 0 ms"));
    answerOnlyAfter(100);
    jumps.run(command(), "");
    services.platform.time.advance(Seconds(10));
    EXPECT_THAT(started(), ElementsAre("org.x.editor"));
}

TEST_F(JumpRunnerTest, aProgramThatWasSilentGetsTimeToSpeakBeforeItIsStartedAgain) {
    accessibility->before = Accessibility::Before::silent;
    services.platform.time.schedule(Seconds(0.2), [this] { accessibility->running = true; });
    jumps.run(command(), "");
    services.platform.time.advance(Seconds(10));
    EXPECT_THAT(started(), IsEmpty());
    EXPECT_THAT(names(), ElementsAre("Save"));
}

TEST_F(JumpRunnerTest, aSplashScreenThatSpeaksDoesntShortenTheWait) {
    accessibility->running = false;
    services.platform.time.schedule(Seconds(1), [this] { accessibility->running = true; });
    openWindow(7);
    answerOnlyAfter(7.5);
    jumps.run(command(), "");
    services.platform.time.advance(Seconds(20));
    EXPECT_THAT(log().back(), StartsWith("jump j: pressed 1 in 7"));
}

TEST_F(JumpRunnerTest, nothingComesOfAJumpWhoseRunnerHasGone) {
    auto runner = std::make_unique<JumpRunner>(given());
    runner->run(command(), "");
    services.platform.time.advance(Seconds(1));
    runner.reset();
    openWindow();
    services.platform.time.advance(Seconds(20));
    EXPECT_THAT(accessibility->attempts, IsEmpty());
    EXPECT_THAT(started(), ElementsAre("org.x.editor behind")); // nothing after
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
    EXPECT_THAT(started(), IsEmpty());
    EXPECT_THAT(brought(), IsEmpty());
}

} // namespace
} // namespace tessarine
