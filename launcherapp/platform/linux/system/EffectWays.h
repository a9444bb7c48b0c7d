#pragma once

#include "launcherapp/platform/Ability.h"
#include "launcherapp/platform/linux/system/DesktopFacts.h"
#include "launcherapp/platform/linux/system/SystemDoors.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tessarine {

/// Does something; the answer may come after everything else here has gone.
using EffectWay = std::function<void(EffectDone done)>;

/// One action on this desktop: a way, or why there is none.
struct Effect {
    Ability ability;
    EffectWay perform; ///< empty when it is missing

    static Effect by(EffectWay way) { return {.ability = {}, .perform = std::move(way)}; }

    static Effect missing(std::string why) {
        return {.ability = Ability::missing(std::move(why)), .perform = {}};
    }

    /// The ways in turn until one works, or why there is none.
    static Effect byFirst(std::vector<EffectWay> ways, std::string whyNone);
};

/// What an effect is made from: the doors, the buses and what was found behind them. Ways share it.
struct EffectContext {
    std::shared_ptr<const SystemDoors> doors;
    DesktopFacts facts;
    std::optional<QDBusConnection> session;
    std::optional<QDBusConnection> system;
};

/// An object on a bus.
struct BusTarget {
    const char* service;
    const char* path;
    const char* interface; ///< may be empty: whichever has the method

    QDBusMessage call(const char* method, const QVariantList& values = {}) const;
};

/// Makers of ways. Main thread only.
namespace EffectWays {

using Doors = std::shared_ptr<const SystemDoors>;

/// What a program that ended told; `problem` holds nothing for a status of zero.
struct ProgramAnswer {
    std::optional<std::string> problem;
    std::string output; ///< without the white space around it
};

/// Starts a program, by its path, and gives how it ended; what takes longer than `limit` is ended.
void readProgram(const Doors& doors,
                 std::vector<std::string> arguments,
                 Seconds limit,
                 std::function<void(ProgramAnswer answer)> done);

/// The same with an answer that doesn't matter.
EffectWay program(const Doors& doors, std::vector<std::string> arguments, Seconds limit);

/// A program that stays: starting it is all there is to wait for.
EffectWay detached(const Doors& doors, std::vector<std::string> arguments);

/// A call whose answer doesn't matter; nothing on the bus is started for it unless it may be.
EffectWay call(const QDBusConnection& bus, QDBusMessage message, Seconds timeout);

/// Each in turn until one works; with the last one's problem when none does.
EffectWay firstOf(std::vector<EffectWay> ways);

/// Each in turn; the first problem ends it.
EffectWay allOf(std::vector<EffectWay> ways);

/// The way, a while later.
EffectWay after(const Doors& doors, Seconds delay, EffectWay way);

} // namespace EffectWays
} // namespace tessarine
