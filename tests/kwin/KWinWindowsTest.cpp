#include "launcherapp/platform/Environment.h"
#include "launcherapp/platform/linux/surroundings/DesktopLook.h"
#include "launcherapp/platform/linux/wayland/windows/WaylandWindowDoors.h"
#include "launcherapp/platform/linux/wayland/windows/ipc/CompositorIpc.h"
#include "tests/fakes/RectanglePrinting.h"
#include "tests/kwin/KWinDesktop.h"
#include "tests/wayland/windows/StandInPanel.h"

#include <gmock/gmock.h>

#include <QElapsedTimer>
#include <QProcess>
#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>

namespace tessarine {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

constexpr Rectangle wholeScreen{0, 0, 1280, 800};

std::string scriptFolder() {
    return qEnvironmentVariable("XDG_RUNTIME_DIR").toStdString() + "/tessarine/kwin";
}

/// The files of the scripts that this program has in KWin.
std::vector<std::string> scripts() {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(scriptFolder()))
        names.push_back(entry.path().stem());
    return names;
}

class KWinWindowsTest : public testing::Test {
protected:
    void SetUp() override {
        auto made = waylandWindowDoors("org.example.own");
        ASSERT_TRUE(made);
        doors = *std::move(made);
        ASSERT_EQ(doors.list->ability(), Ability{});
        ASSERT_TRUE(spinUntil([&] { return doors.list->windows().empty(); }));
    }

    std::vector<std::string> names() const {
        std::vector<std::string> names;
        for (const auto& window : doors.list->windows())
            names.push_back(window.applicationID);
        return names;
    }

    std::optional<AppWindow> find(const std::string& applicationID) const {
        const auto windows = doors.list->windows();
        const auto found = std::ranges::find(windows, applicationID, &AppWindow::applicationID);
        return found == windows.end() ? std::nullopt : std::optional(*found);
    }

    AppWindow open(const std::string& applicationID, const std::string& then = "present") {
        shown.open(applicationID, then);
        EXPECT_TRUE(spinUntil([&] { return find(applicationID).has_value(); }));
        return find(applicationID).value_or(AppWindow());
    }

    bool isActive(const AppWindow& window) const {
        return spinUntil([&] {
            const auto active = doors.list->active();
            return active && active->id == window.id;
        });
    }

    bool isAt(const AppWindow& window, const Rectangle& frame) const {
        return spinUntil([&] { return doors.control->frame(window.id) == frame; });
    }

    /// As the verbs do it.
    void place(const AppWindow& window, const Rectangle& frame) const {
        doors.control->restore(window.id);
        doors.control->resize(window.id, frame.width, frame.height);
        doors.control->move(window.id, {.x = frame.x, .y = frame.y});
    }

    GtkWindows shown;
    WindowDoors doors;
};

TEST_F(KWinWindowsTest, windowsComeForwardAndClose) {
    const auto first = open("org.example.first");
    const auto second = open("org.example.second");
    EXPECT_THAT(names(), ElementsAre("org.example.first", "org.example.second"));
    EXPECT_EQ(first.className, "org.example.first");
    EXPECT_THAT(first.executable, HasSubstr("python3"));
    EXPECT_TRUE(first.ordinary);
    ASSERT_TRUE(isActive(second));
    spinFor(50);
    int changes = 0;
    const auto subscription = doors.list->onActiveChanged([&] { ++changes; });
    doors.list->activate(first.id);
    EXPECT_TRUE(spinUntil([&] { return changes == 1; })) << "nobody has asked";
    EXPECT_TRUE(isActive(first));
    EXPECT_THAT(names(), ElementsAre("org.example.first", "org.example.second"));
    doors.control->close(first.id);
    EXPECT_TRUE(spinUntil([&] { return names().size() == 1; }));
    EXPECT_TRUE(isActive(second));
    doors.list->activate(first.id);
    doors.list->unhide(first.id);
    doors.control->close(first.id);
    place(first, wholeScreen);
    EXPECT_EQ(doors.control->frame(first.id), std::nullopt);
    EXPECT_EQ(doors.list->ability(), Ability{});
    EXPECT_EQ(doors.control->ability(), Ability{});
    EXPECT_TRUE(doors.control->kill(second.id));
    EXPECT_TRUE(spinUntil([&] { return names().empty(); }));
}

TEST_F(KWinWindowsTest, aWindowInAnyStateGoesWhereItIsPut) {
    const auto screens = doors.control->screens();
    ASSERT_THAT(screens, SizeIs(1));
    EXPECT_EQ(screens.front().frame, wholeScreen);
    EXPECT_EQ(screens.front().workArea, wholeScreen);
    EXPECT_TRUE(screens.front().isMain);
    for (const std::string state : {"present", "maximize", "fullscreen", "iconify"}) {
        SCOPED_TRACE(state);
        const auto name = "org.example." + state;
        auto window = open(name, state);
        if (state == "iconify") {
            ASSERT_TRUE(spinUntil([&] { return find(name)->hidden; }));
            EXPECT_NE(doors.list->active(), find(name));
        } else if (state != "present") {
            ASSERT_TRUE(isAt(window, wholeScreen));
        }
        doors.control->restore(window.id);
        const auto ordinary = doors.control->frame(window.id);
        ASSERT_TRUE(ordinary);
        EXPECT_EQ(ordinary->width, 300) << "as a verb finds it that keeps its size";
        for (const Rectangle& frame : {Rectangle{0, 0, 640, 800}, Rectangle{400, 100, 500, 400}}) {
            place(window, frame);
            EXPECT_TRUE(isAt(window, frame));
        }
        EXPECT_FALSE(find(name)->hidden);
        doors.control->close(window.id);
        ASSERT_TRUE(spinUntil([&] { return names().empty(); }));
    }
}

TEST_F(KWinWindowsTest, aWindowThatFillsTheScreenIsNotWaitedForInVain) {
    const auto window = open("org.example.first");
    place(window, wholeScreen);
    ASSERT_TRUE(isAt(window, wholeScreen));
    QElapsedTimer clock;
    clock.start();
    doors.control->restore(window.id);
    EXPECT_LT(clock.elapsed(), CompositorIpc::patience.count());
    place(window, {.x = 0, .y = 0, .width = 640, .height = 800});
    EXPECT_TRUE(isAt(window, {0, 0, 640, 800}));
}

TEST_F(KWinWindowsTest, aTileIsLeft) {
    const auto window = open("org.example.tiled");
    ASSERT_TRUE(isActive(window));
    const ScratchFolder folder;
    runInKWin("tile", folder.write("/tile.js", "workspace.slotWindowQuickTileLeft();"));
    ASSERT_TRUE(isAt(window, {0, 0, 640, 800}));
    const Rectangle wanted{700, 200, 320, 240};
    place(window, wanted);
    EXPECT_TRUE(isAt(window, wanted));
}

TEST_F(KWinWindowsTest, windowsOfX11ProgramsAreMovedAndKilledToo) {
    ASSERT_TRUE(qEnvironmentVariableIsSet("DISPLAY")) << "run it with WITH_XWAYLAND=1";
    QProcess program;
    program.start(QStringLiteral("xterm"),
                  {QStringLiteral("-name"),
                   QStringLiteral("Own"),
                   QStringLiteral("-e"),
                   QStringLiteral("sleep"),
                   QStringLiteral("600")});
    ASSERT_TRUE(spinUntil([&] { return names().size() == 1; }));
    const auto window = doors.list->windows().front();
    EXPECT_EQ(window.className, "xterm");
    EXPECT_EQ(window.instanceName, "own");
    EXPECT_EQ(window.processID, program.processId());
    ASSERT_TRUE(isActive(window));
    place(window, {.x = 100, .y = 50, .width = 500, .height = 400});
    EXPECT_TRUE(spinUntil([&] {
        const auto frame = doors.control->frame(window.id);
        return frame && frame->x == 100 && frame->y == 50;
    }));
    EXPECT_NEAR(doors.control->frame(window.id)->width, 500, 20) << "whole letters";
    EXPECT_TRUE(doors.control->kill(window.id));
    EXPECT_TRUE(spinUntil([&] { return names().empty(); }));
    program.waitForFinished();
}

TEST_F(KWinWindowsTest, aPanelThatTakesTheKeyboardLeavesTheWindowActive) {
    open("org.example.first");
    const auto second = open("org.example.second");
    ASSERT_TRUE(isActive(second));
    spinFor(50);
    int changes = 0;
    const auto subscription = doors.list->onActiveChanged([&] { ++changes; });
    {
        const StandInPanel panel;
        spinFor(100);
        EXPECT_THAT(names(), SizeIs(2));
        EXPECT_EQ(doors.list->active(), second);
        EXPECT_EQ(waylandWindowDoors("")->list->active(), second) << "one that is made meanwhile";
    }
    spinFor(50);
    EXPECT_EQ(doors.list->active(), second);
    EXPECT_EQ(changes, 0);
}

TEST_F(KWinWindowsTest, nothingStaysInKWin) {
    doors.control->screens();
    const auto running = scripts();
    ASSERT_THAT(running, SizeIs(1)) << "the one that tells changes";
    EXPECT_TRUE(isLoaded(running.front()));
    // Of a program that was killed; one of somebody who lives; and one on another bus.
    const auto folder = scriptFolder() + "/";
    const auto left = running.front().substr(0, running.front().find(':')) + ":1.65000-1";
    const std::string other = "tessarine-00000000000000000000000000000000:1.65000-1";
    std::ofstream(folder + other + ".js") << "1;";
    std::ofstream(folder + left + ".js") << "workspace.clientAdded.connect(function () {});";
    runInKWin(left, folder + left + ".js");
    ASSERT_TRUE(isLoaded(left));
    const auto next = waylandWindowDoors("");
    EXPECT_TRUE(spinUntil([&] { return scripts().size() == 3; })) << "that of each list";
    EXPECT_THAT(scripts(), Contains(other));
    std::filesystem::remove(folder + other + ".js");
    EXPECT_FALSE(isLoaded(left));
    EXPECT_TRUE(isLoaded(running.front()));
    doors = {};
    EXPECT_FALSE(isLoaded(running.front()));
    EXPECT_THAT(scripts(), SizeIs(1));
}

TEST_F(KWinWindowsTest, aFileUnderANameThatIsGivenLaterStopsNothing) {
    const auto running = scripts().front();
    const auto begin = running.find('.') + 1;
    const auto last = std::stoi(running.substr(begin, running.rfind('-') - begin));
    constexpr int soon = 40; // connections until the next list and control have theirs, and more
    for (int number = last + 2; number < last + soon; ++number) { // the next one is the control's
        for (const auto* script : {"-1", "-2"})
            std::ofstream(scriptFolder() + "/" + running.substr(0, begin) + std::to_string(number) +
                          script + ".js")
                << "1;";
    }
    const auto next = waylandWindowDoors("");
    ASSERT_TRUE(next);
    EXPECT_THAT(next->control->screens(), SizeIs(1));
    const auto window = open("org.example.first");
    EXPECT_TRUE(spinUntil([&] { return next->list->windows().size() == 1; }));
    EXPECT_EQ(next->list->ability(), Ability{});
    EXPECT_TRUE(spinUntil([] { return scripts().size() == 2; })) << "the rest is cleared away";
}

TEST_F(KWinWindowsTest, whereNoScriptCanBeWrittenThatIsSaidAtOnce) {
    const auto window = open("org.example.first");
    const auto away = scriptFolder() + "-away";
    std::filesystem::rename(scriptFolder(), away);
    QElapsedTimer clock;
    clock.start();
    EXPECT_FALSE(doors.control->frame(window.id));
    EXPECT_THAT(doors.control->ability().reason, HasSubstr("can't be written"));
    EXPECT_LT(clock.elapsed(), CompositorIpc::patience.count());
    std::ofstream(scriptFolder()) << "no folder";
    const auto next = waylandWindowDoors("");
    ASSERT_TRUE(next);
    EXPECT_THAT(next->list->ability().reason, HasSubstr("can't be written"));
    std::filesystem::rename(scriptFolder(), away + "/stray");
    std::filesystem::remove(away + "/stray");
    std::filesystem::rename(away, scriptFolder());
    EXPECT_TRUE(doors.control->frame(window.id));
    EXPECT_EQ(doors.control->ability(), Ability{});
    EXPECT_TRUE(spinUntil([&] { return next->list->ability() == Ability{}; })) << "tried again";
    EXPECT_THAT(next->list->windows(), SizeIs(1));
}

// KWin 5 numbers a script by how many there are, and one that went left its number to the next.
TEST_F(KWinWindowsTest, aScriptRunsThoughItsNumberIsTaken) {
    const ScratchFolder folder;
    runInKWin("passing", folder.write("/passing.js", "1;"));
    const auto next = waylandWindowDoors("");
    ASSERT_TRUE(spinUntil([] { return scripts().size() == 2; }));
    EXPECT_EQ(kwinAnswers(QStringLiteral("/Scripting"),
                          {QStringLiteral("org.kde.kwin.Scripting.unloadScript"),
                           QStringLiteral("passing")}),
              "(true,)\n");
    EXPECT_THAT(next->control->screens(), SizeIs(1));
    EXPECT_THAT(doors.control->screens(), SizeIs(1));
}

TEST_F(KWinWindowsTest, strangersAreNotBelieved) {
    const auto window = open("org.example.first");
    const auto script = scripts().front();
    const auto own = script.substr(script.find(':'), script.rfind('-') - script.find(':'));
    const auto text = R"({"scene": {"windows": [], "screens": []}})";
    QProcess stranger;
    stranger.start(QStringLiteral("gdbus"),
                   {QStringLiteral("call"),
                    QStringLiteral("--session"),
                    QStringLiteral("--dest"),
                    QString::fromStdString(own),
                    QStringLiteral("--object-path"),
                    QStringLiteral("/com/corvane/tessarine/KWin"),
                    QStringLiteral("--timeout=1"),
                    QStringLiteral("--method"),
                    QStringLiteral("com.corvane.tessarine.KWin.told"),
                    QString::fromStdString(script),
                    QString::fromStdString(text)});
    ASSERT_TRUE(spinUntil([&] { return stranger.state() == QProcess::NotRunning; }));
    EXPECT_THAT(stranger.readAllStandardError().toStdString(), HasSubstr("UnknownMethod"));
    EXPECT_EQ(find("org.example.first"), window);
}

TEST_F(KWinWindowsTest, aCompositorThatStandsStillStopsNobody) {
    const auto window = open("org.example.first");
    ASSERT_TRUE(isActive(window));
    const auto process = qEnvironmentVariableIntValue("COMPOSITOR_PROCESS");
    ASSERT_EQ(::kill(process, SIGSTOP), 0);
    QElapsedTimer clock;
    clock.start();
    EXPECT_EQ(doors.list->active(), window);
    doors.list->activate(window.id);
    EXPECT_EQ(doors.control->frame(window.id), std::nullopt);
    EXPECT_THAT(doors.control->screens(), IsEmpty());
    doors.control->restore(window.id);
    EXPECT_THAT(doors.control->ability().reason, HasSubstr("doesn't answer"));
    doors.control->close(window.id);
    const auto took = clock.elapsed();
    ::kill(process, SIGCONT);
    EXPECT_LT(took, 2 * CompositorIpc::patience.count()) << "the control has waited once";
    EXPECT_TRUE(spinUntil([&] { return doors.control->ability() == Ability{}; }));
    doors.control->screens();
    EXPECT_TRUE(find("org.example.first")) << "nobody wants it closed any more";
}

TEST_F(KWinWindowsTest, withoutItsBusThereAreNoDoorsAndTheTableSaysSo) {
    const auto seen = [] {
        return DesktopLook::display({.desktops = {"KDE"}, .hasWayland = true});
    };
    using enum DesktopAbility;
    auto found = seen();
    EXPECT_EQ(DesktopTable::family(found), DesktopFamily::kwin);
    for (const auto ability :
         {panel, clipboardHistory, runningApplications, windowVerbs, activationTokens})
        EXPECT_EQ(DesktopTable::cell(found, ability), DesktopCell()) << DesktopTable::name(ability);
    const auto address = qgetenv("DBUS_SESSION_BUS_ADDRESS");
    qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nobody/listens/here");
    found = seen();
    EXPECT_FALSE(waylandWindowDoors(""));
    qputenv("DBUS_SESSION_BUS_ADDRESS", address);
    EXPECT_THAT(DesktopTable::reason(found, windowVerbs), HasSubstr("lets no program move"));
}

TEST_F(KWinWindowsTest, aCompositorThatDiesTakesItsWindowsAlongAndComesBack) {
    const auto window = open("org.example.first");
    auto process = qEnvironmentVariableIntValue("COMPOSITOR_PROCESS");
    ASSERT_EQ(::kill(process, SIGKILL), 0);
    EXPECT_TRUE(spinUntil([&] { return doors.list->windows().empty(); }));
    EXPECT_THAT(doors.list->ability().reason, HasSubstr("lost"));
    EXPECT_FALSE(doors.list->active());
    QElapsedTimer clock;
    clock.start();
    doors.list->activate(window.id);
    place(window, wholeScreen);
    doors.control->close(window.id);
    EXPECT_FALSE(doors.control->kill(window.id));
    EXPECT_FALSE(doors.control->ability().available);
    EXPECT_LT(clock.elapsed(), CompositorIpc::patience.count());
    QProcess again;
    again.start(qEnvironmentVariable("KWIN_AGAIN"));
    EXPECT_TRUE(spinUntil([&] { return doors.list->ability() == Ability{}; }));
    EXPECT_TRUE(spinUntil([&] { return doors.control->ability() == Ability{}; }));
    const auto next = open("org.example.second");
    EXPECT_TRUE(isActive(next)) << "changes are told again";
    again.kill();
    again.waitForFinished();
}

} // namespace
} // namespace tessarine
