#pragma once

#include "launcherapp/platform/linux/system/EffectWays.h"

#include <functional>
#include <memory>
#include <set>
#include <string>

namespace tessarine {

/// Looks for what the desktop has: on the buses, on the disk, and by asking logind. Nobody waits
/// for it, and whoever doesn't answer it counts as not there until it does. Main thread only.
class DesktopProbe : public std::enable_shared_from_this<DesktopProbe> {
public:
    /// `found` is called when all has answered or the patience of the doors is over, and again
    /// after anything that is found later.
    DesktopProbe(std::shared_ptr<const SystemDoors> doors, std::function<void()> found);

    /// Connects and looks. Once.
    void start();

    /// Looks again, if the last look is `SystemPatience::lookAgain` old: a locker may have been
    /// started or installed since, and the system's bus may greet now. Cheap enough for every row
    /// that asks.
    void lookAgain();

    const EffectContext& context() const { return context_; }

private:
    using Answer = std::function<void(DesktopProbe& probe, const QDBusMessage& reply)>;

    void look();
    void lookAtDisk();
    void lookForSchemas();
    void lookAtSession();
    void connectToSystem();
    void lookAtSystem();
    void askLogind();
    void findSession();
    void askForSession(const char* method, const QVariant& value, std::function<void()> otherwise);
    void askForSessionType();
    void ask(const QDBusConnection& bus, const QDBusMessage& question, Answer answer);
    void askProperty(const QDBusConnection& bus,
                     const BusTarget& target,
                     const char* property,
                     Answer answer);
    void askNames(const QDBusConnection& bus,
                  const char* method,
                  std::function<void(DesktopFacts& facts, std::set<std::string> names)> note);

    void begin() { ++waiting_; }

    void finish();

    EffectContext context_;
    std::function<void()> found_;
    bool isConnecting_ = false; ///< to the system's bus
    int waiting_ = 0;           ///< for so many answers
    bool isFirstOver_ = false;  ///< it has been told once what was found
    Seconds lastLook_{0};
};

} // namespace tessarine
