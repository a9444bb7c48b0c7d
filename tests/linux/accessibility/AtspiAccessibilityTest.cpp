#include "launcherapp/platform/linux/accessibility/AtspiAccessibility.h"

#include "tests/linux/EventLoop.h"

#include <gmock/gmock.h>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QLocalServer>
#include <QProcess>
#include <csignal>

namespace tessarine {
namespace {

using Outcome = PressAttempt::Outcome;
using std::chrono::milliseconds;

/// Does what the window of ShownProgram does, with the other toolkit.
constexpr auto gtkWindow = R"(
import gi, sys
gi.require_version('Gtk', '3.0')
from gi.repository import Gtk, GLib

def say(what):
    print(what, flush=True)

window, box = Gtk.Window(), Gtk.Box(orientation=Gtk.Orientation.VERTICAL)
window.add(box)
box.add(Gtk.Label(label='Go'))
def button(text, says):
    made = Gtk.Button.new_with_mnemonic(text)
    made.connect('clicked', lambda _: say(says))
    box.add(made)
    return made
hidden = button('Go', 'hidden')
button('Go', 'disabled').set_sensitive(False)
button('_Go', 'go')
button('Off', 'off').set_sensitive(False)
button('?', 'described').get_accessible().set_description('What is this')
wrap = Gtk.CheckButton(label='Wrap lines')
wrap.connect('toggled', lambda _: say('wrap'))
box.add(wrap)
window.show_all()
hidden.hide()
GLib.idle_add(lambda: say('ready'))
Gtk.main()
)";

/// Another program with a window, for as long as this lives.
class Shown {
public:
    Shown(const QString& program, const QStringList& arguments) {
        process_.start(program, arguments);
        ready = spinUntil([this] { return said("ready"); });
    }

    ~Shown() {
        process_.kill(); // a stopped one too
        process_.waitForFinished();
    }

    Shown(const Shown&) = delete;
    Shown& operator=(const Shown&) = delete;

    static std::unique_ptr<Shown> qt(const char* mode = "buttons") {
        return std::make_unique<Shown>(QCoreApplication::applicationDirPath() +
                                           QStringLiteral("/ShownProgram"),
                                       QStringList{QLatin1String(mode)});
    }

    static std::unique_ptr<Shown> gtk() {
        return std::make_unique<Shown>(QStringLiteral("/usr/bin/python3"),
                                       QStringList{QStringLiteral("-c"), QLatin1String(gtkWindow)});
    }

    bool said(const QByteArray& what) {
        output_ += process_.readAllStandardOutput();
        return output_.startsWith(what + '\n') || output_.contains('\n' + what + '\n');
    }

    QByteArray output() {
        output_ += process_.readAllStandardOutput();
        return output_;
    }

    AccessibleProgram program() const { return {.processIDs = {process_.processId()}}; }

    void signal(int number) const { ::kill(static_cast<pid_t>(process_.processId()), number); }

    bool ready = false;

private:
    QProcess process_;
    QByteArray output_;
};

class AtspiAccessibilityTest : public testing::Test {
protected:
    void SetUp() override {
        const auto ability = accessibility.ability();
        ASSERT_TRUE(ability.available) << ability.reason;
        accessibility.wake();
    }

    /// As a jump does: right after its start a program tells nothing yet.
    PressAttempt pressSoon(const AccessibleProgram& program, const std::string& name) {
        PressAttempt attempt;
        spinUntil([&] {
            attempt = timedPress(program, name);
            return attempt.outcome != Outcome::notFound;
        });
        return attempt;
    }

    PressAttempt timedPress(const AccessibleProgram& program, const std::string& name) {
        const auto began = std::chrono::steady_clock::now();
        auto attempt = accessibility.press(program, name);
        took = std::chrono::duration_cast<milliseconds>(std::chrono::steady_clock::now() - began);
        return attempt;
    }

    void record(const char* name) { RecordProperty(name, static_cast<int>(took.count())); }

    void pressesAndIsRefusedTheDecoys(Shown& shown) {
        ASSERT_TRUE(shown.ready);

        const struct {
            const char* name;
            const char* says; ///< null: there is nothing to press
        } cases[] = {
            {"go", "go"}, // not the label, the hidden or the disabled one of that name
            {"  what is THIS", "described"},
            {"_Wrap lines", "wrap"},
            {"Off", nullptr},  // greyed out
            {"Wrap", nullptr}, // a part of a name
            {"", nullptr},
        };

        for (const auto& [name, says] : cases) {
            SCOPED_TRACE(std::string(name));
            const auto attempt =
                says ? pressSoon(shown.program(), name) : timedPress(shown.program(), name);
            EXPECT_EQ(attempt.problem, "");
            EXPECT_EQ(attempt.outcome, says ? Outcome::pressed : Outcome::notFound);
            if (says) {
                EXPECT_TRUE(spinUntil([&] { return shown.said(says); }))
                    << shown.output().toStdString();
            }
        }
        for (const auto* decoy : {"hidden", "disabled", "off"})
            EXPECT_FALSE(shown.said(decoy)) << decoy;
    }

    AtspiAccessibility accessibility;
    milliseconds took{0}; ///< the last press
};

TEST_F(AtspiAccessibilityTest, pressesInAQtProgram) {
    const auto shown = Shown::qt();
    pressesAndIsRefusedTheDecoys(*shown);
    EXPECT_EQ(pressSoon(shown->program(), "Two").outcome, Outcome::pressed); // a page's tab
    EXPECT_TRUE(spinUntil([&] { return shown->said("tab"); }));
    EXPECT_EQ(timedPress(shown->program(), "Closed").outcome, Outcome::notFound);
}

TEST_F(AtspiAccessibilityTest, pressesInAGtkProgram) {
    pressesAndIsRefusedTheDecoys(*Shown::gtk());
}

TEST_F(AtspiAccessibilityTest, aProgramIsKnownByItsNameWhereItsProcessIsNot) {
    const auto shown = Shown::qt();
    const AccessibleProgram byName{.names = {"Other", "shownprogram"}};
    EXPECT_TRUE(spinUntil([&] { return accessibility.runs(byName); }));
    EXPECT_FALSE(accessibility.runs({.names = {"shown_program"}})); // no mnemonic in there
    EXPECT_EQ(pressSoon(byName, "Go").outcome, Outcome::pressed);
    EXPECT_TRUE(spinUntil([&] { return shown->said("go"); }));
    EXPECT_FALSE(accessibility.runs({.names = {"shown"}}));
    // A process that is known counts alone.
    EXPECT_EQ(timedPress({.processIDs = {1}, .names = byName.names}, "Go").outcome,
              Outcome::notFound);
}

TEST_F(AtspiAccessibilityTest, aProgramRunsWhenItShowsAWindow) {
    const auto none = Shown::qt("windowless");
    ASSERT_TRUE(none->ready);
    const auto shown = Shown::qt();
    ASSERT_TRUE(spinUntil([&] { return accessibility.runs(shown->program()); }));
    EXPECT_FALSE(accessibility.runs(none->program()));
}

TEST_F(AtspiAccessibilityTest, whatIsCalledJustSoIsPressedBeforeWhatIsSoButForAMark) {
    const auto shown = Shown::qt();
    EXPECT_EQ(pressSoon(shown->program(), "myfile").outcome, Outcome::pressed);
    EXPECT_TRUE(spinUntil([&] { return shown->said("without mark"); }));
    EXPECT_FALSE(shown->said("with mark")); // it comes first in the window
    EXPECT_EQ(timedPress(shown->program(), "my_file").outcome, Outcome::pressed);
    EXPECT_TRUE(spinUntil([&] { return shown->said("with mark"); }));
}

TEST_F(AtspiAccessibilityTest, aProgramThatHangsCostsItsBoundAndNoMore) {
    const auto gtk = Shown::gtk();
    const auto qt = Shown::qt();
    ASSERT_EQ(pressSoon(gtk->program(), "Go").outcome, Outcome::pressed);
    ASSERT_EQ(pressSoon(qt->program(), "Go").outcome, Outcome::pressed);
    gtk->signal(SIGSTOP);
    EXPECT_EQ(timedPress(gtk->program(), "Go").outcome, Outcome::notFound);
    EXPECT_LE(took, AtspiAccessibility::longestPress + milliseconds(200));
    // The others are pressed in meanwhile as ever.
    EXPECT_EQ(timedPress(qt->program(), "Go").outcome, Outcome::pressed);
    EXPECT_LT(took, milliseconds(500));
    gtk->signal(SIGCONT);
    EXPECT_EQ(pressSoon(gtk->program(), "Wrap lines").outcome, Outcome::pressed);
    EXPECT_TRUE(spinUntil([&] { return gtk->said("wrap"); }));
}

TEST_F(AtspiAccessibilityTest, aProgramThatHasEndedIsNotFound) {
    auto shown = Shown::qt();
    const auto program = shown->program();
    ASSERT_EQ(pressSoon(program, "Go").outcome, Outcome::pressed);
    shown.reset();
    EXPECT_EQ(timedPress(program, "Go").outcome, Outcome::notFound);
}

TEST_F(AtspiAccessibilityTest, theLastOfThreeThousandThingsIsFound) {
    const auto shown = Shown::qt("many");
    EXPECT_EQ(pressSoon(shown->program(), "Last").outcome, Outcome::pressed);
    record("threeThousandMilliseconds");
    EXPECT_TRUE(spinUntil([&] { return shown->said("last"); }));
}

TEST_F(AtspiAccessibilityTest, aTreeWithoutEndCostsItsBoundAndNoMore) {
    const auto shown = Shown::qt("endless");
    ASSERT_TRUE(shown->ready);
    EXPECT_EQ(timedPress(shown->program(), "Go").outcome, Outcome::notFound);
    record("endlessMilliseconds");
    EXPECT_GT(took, milliseconds(20)); // it did go down
    EXPECT_LE(took, AtspiAccessibility::longestPress + milliseconds(200));
}

TEST(AtspiStatus, isPutBackAsItWasFound) {
    const auto isEnabled = [] {
        auto get = QDBusMessage::createMethodCall(QStringLiteral("org.a11y.Bus"),
                                                  QStringLiteral("/org/a11y/bus"),
                                                  QStringLiteral("org.freedesktop.DBus.Properties"),
                                                  QStringLiteral("Get"));
        get << QStringLiteral("org.a11y.Status") << QStringLiteral("IsEnabled");
        const auto reply = QDBusConnection::sessionBus().call(get);
        return reply.arguments().value(0).value<QDBusVariant>().variant().toBool();
    };
    ASSERT_FALSE(isEnabled());
    {
        AtspiAccessibility ours;
        EXPECT_EQ(ours.wake(), Accessibility::Before::silent);
        EXPECT_TRUE(isEnabled());
        AtspiAccessibility another; // finds it on, so it isn't the one to put it back
        EXPECT_EQ(another.wake(), Accessibility::Before::speaking);
    }
    EXPECT_FALSE(isEnabled());
}

TEST(AtspiStatus, withoutABusThereIsNoTrustAndNoWait) {
    const auto before = qgetenv("DBUS_SESSION_BUS_ADDRESS");
    QLocalServer silent; // takes connections and says nothing
    ASSERT_TRUE(silent.listen(QStringLiteral("tessarine-silent-bus")));
    for (const auto& path : {QStringLiteral("/none"), silent.fullServerName()}) {
        qputenv("DBUS_SESSION_BUS_ADDRESS", (QStringLiteral("unix:path=") + path).toUtf8());
        AtspiAccessibility accessibility;
        const auto began = std::chrono::steady_clock::now();
        EXPECT_EQ(accessibility.ability(), Ability::missing("there is no session bus"));
        EXPECT_EQ(accessibility.press({.names = {"x"}}, "Go").outcome, Outcome::notFound);
        EXPECT_LE(std::chrono::steady_clock::now() - began,
                  AtspiAccessibility::patienceWithBus + AtspiAccessibility::longestPress +
                      milliseconds(500));
    }
    qputenv("DBUS_SESSION_BUS_ADDRESS", before);
}

} // namespace
} // namespace tessarine
