#include "launcherapp/platform/linux/system/DesktopProbe.h"

#include "launcherapp/platform/linux/desktop/DBusCall.h"
#include "launcherapp/platform/linux/system/BusTargets.h"

#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <array>
#include <string_view>
#include <unistd.h>
#include <utility>

namespace tessarine {

namespace {

bool isAnswer(const QDBusMessage& reply) {
    return reply.type() == QDBusMessage::ReplyMessage && !reply.arguments().isEmpty();
}

std::set<std::string> linesOf(std::string_view text) {
    std::set<std::string> lines;
    while (!text.empty()) {
        const auto end = std::min(text.find('\n'), text.size());
        lines.emplace(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return lines;
}

LogindFacts& logindOf(DesktopFacts& facts) {
    return facts.logind ? *facts.logind : facts.logind.emplace();
}

} // namespace

DesktopProbe::DesktopProbe(std::shared_ptr<const SystemDoors> doors, std::function<void()> found)
    : context_{.doors = std::move(doors)}, found_(std::move(found)) {
    const auto& environment = context_.doors->environment;
    context_.facts.desktops = environment.desktops;
    context_.facts.hasX11 = environment.hasX11;
    context_.facts.hasWayland = environment.hasWayland;
    if (const auto& type = context_.doors->sessionType)
        context_.facts.sessionTypes.insert(*type);
}

void DesktopProbe::start() {
    begin();
    // The session's bus may be slow to greet, and the present turn is the program's start.
    context_.doors->queue.post([weak = weak_from_this()] {
        const auto self = weak.lock();
        if (!self)
            return;
        self->context_.session = self->context_.doors->sessionBus();
        self->look();
        self->connectToSystem();
        self->finish();
    });
    context_.doors->queue.postAfter(context_.doors->patience.probe, [weak = weak_from_this()] {
        const auto self = weak.lock();
        if (self && !std::exchange(self->isFirstOver_, true))
            self->found_();
    });
}

void DesktopProbe::lookAgain() {
    if (!isFirstOver_ ||
        context_.doors->queue.uptime() - lastLook_ < context_.doors->patience.lookAgain)
        return;
    look();
    if (context_.system)
        lookAtSystem();
    else
        connectToSystem();
}

void DesktopProbe::finish() {
    if (--waiting_ == 0 || isFirstOver_) {
        isFirstOver_ = true;
        found_();
    }
}

void DesktopProbe::look() {
    lastLook_ = context_.doors->queue.uptime();
    context_.facts.folderOpener = context_.doors->folderOpener();
    lookAtDisk();
    if (context_.session)
        lookAtSession();
}

void DesktopProbe::lookAtDisk() {
    struct OnDisk {
        std::map<std::string, std::string> programs;
        std::set<std::string> running;
    };

    begin();
    context_.doors->work.runApart(
        [folders = context_.doors->environment.programDirs, user = context_.doors->user] {
            return OnDisk{.programs = DesktopFinds::programs(folders),
                          .running = DesktopFinds::running("/proc", user)};
        },
        [weak = weak_from_this()](OnDisk onDisk) {
            const auto self = weak.lock();
            if (!self)
                return;
            self->context_.facts.programs = std::move(onDisk.programs);
            self->context_.facts.running = std::move(onDisk.running);
            self->lookForSchemas();
            self->finish();
        });
}

/// They come and go with the desktop's packages alone, so once found is enough.
void DesktopProbe::lookForSchemas() {
    auto& facts = context_.facts;
    if (!facts.schemas.empty() || !facts.hasProgram("gsettings"))
        return;
    begin();
    EffectWays::readProgram(context_.doors,
                            facts.commandLine("gsettings", {"list-schemas"}),
                            context_.doors->patience.question,
                            [weak = weak_from_this()](const EffectWays::ProgramAnswer& answer) {
                                const auto self = weak.lock();
                                if (!self)
                                    return;
                                if (!answer.problem)
                                    self->context_.facts.schemas = linesOf(answer.output);
                                self->finish();
                            });
}

void DesktopProbe::lookAtSession() {
    const auto& bus = *context_.session;
    askNames(bus, "ListNames", [](DesktopFacts& facts, std::set<std::string> names) {
        facts.owned = std::move(names);
    });
    askNames(bus, "ListActivatableNames", [](DesktopFacts& facts, std::set<std::string> names) {
        facts.startable = std::move(names);
    });
    if (context_.facts.portalTakesPictures)
        return;
    // A portal has this interface where the desktop has given it what takes pictures.
    askProperty(bus,
                BusTargets::portalScreenshot,
                "version",
                [](DesktopProbe& probe, const QDBusMessage& reply) {
                    probe.context_.facts.portalTakesPictures = isAnswer(reply);
                });
}

/// Where it never greets, only that thread waits.
void DesktopProbe::connectToSystem() {
    if (std::exchange(isConnecting_, true))
        return;
    begin();
    context_.doors->work.runApart(context_.doors->systemBus,
                                  [weak = weak_from_this()](const QDBusConnection& system) {
                                      const auto self = weak.lock();
                                      if (!self)
                                          return;
                                      self->isConnecting_ = false;
                                      if (system.isConnected()) {
                                          self->context_.system = system;
                                          self->lookAtSystem();
                                      }
                                      self->finish();
                                  });
}

void DesktopProbe::lookAtSystem() {
    for (const auto* method : {"ListNames", "ListActivatableNames"})
        askNames(
            *context_.system, method, [](DesktopFacts& facts, const std::set<std::string>& names) {
                facts.hasUDisks |= names.contains("org.freedesktop.UDisks2");
            });
    askLogind();
}

void DesktopProbe::askLogind() {
    const auto note = [this](const char* method, LogindAnswer LogindFacts::*fact) {
        ask(*context_.system,
            BusTargets::logind.call(method),
            [fact](DesktopProbe& probe, const QDBusMessage& reply) {
                if (isAnswer(reply))
                    logindOf(probe.context_.facts).*fact =
                        logindAnswer(reply.arguments().constFirst().toString().toStdString());
            });
    };
    note("CanReboot", &LogindFacts::canRestart);
    note("CanPowerOff", &LogindFacts::canPowerOff);
    note("CanSuspend", &LogindFacts::canSleep);
    findSession();
}

/// A program that the user's service manager started is in no session, but may have been told one.
void DesktopProbe::findSession() {
    askForSession("GetSessionByPID", static_cast<quint32>(::getpid()), [this] {
        const auto& id = context_.doors->sessionID;
        if (!id.empty())
            askForSession("GetSession", QString::fromStdString(id), [] {});
    });
}

void DesktopProbe::askForSession(const char* method,
                                 const QVariant& value,
                                 std::function<void()> otherwise) {
    ask(*context_.system,
        BusTargets::logind.call(method, {value}),
        [otherwise = std::move(otherwise)](DesktopProbe& probe, const QDBusMessage& reply) {
            if (!isAnswer(reply))
                return otherwise();
            logindOf(probe.context_.facts).session =
                reply.arguments().constFirst().value<QDBusObjectPath>().path().toStdString();
            probe.askForSessionType();
        });
}

void DesktopProbe::askForSessionType() {
    const auto path = *context_.facts.logind->session;
    askProperty(*context_.system,
                BusTargets::logindSession(path.c_str()),
                "Type",
                [](DesktopProbe& probe, const QDBusMessage& reply) {
                    const auto type = reply.arguments().value(0).value<QDBusVariant>().variant();
                    if (isAnswer(reply))
                        probe.context_.facts.sessionTypes.insert(type.toString().toStdString());
                });
}

void DesktopProbe::askProperty(const QDBusConnection& bus,
                               const BusTarget& target,
                               const char* property,
                               Answer answer) {
    ask(bus,
        BusTargets::propertiesOf(target).call(
            "Get", {QLatin1String(target.interface), QLatin1String(property)}),
        std::move(answer));
}

void DesktopProbe::ask(const QDBusConnection& bus, const QDBusMessage& question, Answer answer) {
    begin();
    askBus(bus,
           question,
           context_.doors->patience.question,
           [weak = weak_from_this(), answer = std::move(answer)](const QDBusMessage& reply) {
               if (const auto self = weak.lock()) {
                   answer(*self, reply);
                   self->finish();
               }
           });
}

void DesktopProbe::askNames(
    const QDBusConnection& bus,
    const char* method,
    std::function<void(DesktopFacts& facts, std::set<std::string> names)> note) {
    ask(bus,
        BusTargets::bus.call(method),
        [note = std::move(note)](DesktopProbe& probe, const QDBusMessage& reply) {
            std::set<std::string> names;
            for (const auto& name : reply.arguments().value(0).toStringList())
                names.insert(name.toStdString());
            if (isAnswer(reply))
                note(probe.context_.facts, std::move(names));
        });
}

} // namespace tessarine
