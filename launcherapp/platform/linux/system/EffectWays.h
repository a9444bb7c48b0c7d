#pragma once

#include "launcherapp/platform/Ability.h"
#include "launcherapp/platform/SystemEffects.h"
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

/// A call on a bus whose answer holds nothing.
struct BusRequest {
    QDBusConnection bus;
    QDBusMessage message;
    Seconds timeout;
};

/// One action on this desktop: a way, or why there is none.
struct Effect {
    Ability ability;
    EffectWay perform; ///< empty when it is missing
    EffectManner manner = {};

    static Effect by(EffectWay way) { return {.ability = {}, .perform = std::move(way)}; }

    static Effect missing(std::string why) {
        return {.ability = Ability::missing(std::move(why)), .perform = {}};
    }

    /// As `EffectWays::firstOf`, or why there is none.
    static Effect
    byFirst(std::vector<BusRequest> calls, std::vector<EffectWay> ways, std::string whyNone);
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

/// Starts a program, by its path, for what it prints to its standard output; its warnings are
/// dropped. What takes longer than `limit` is ended.
void readProgram(const Doors& doors,
                 std::vector<std::string> arguments,
                 Seconds limit,
                 std::function<void(ProgramAnswer answer)> done);

/// The same for what it does: `done` has its first words, errors too, when it fails.
EffectWay program(const Doors& doors, std::vector<std::string> arguments, Seconds limit);

/// A program that stays: starting it is all there is to wait for.
EffectWay detached(const Doors& doors, std::vector<std::string> arguments);

/// A call whose answer doesn't matter.
EffectWay call(const QDBusConnection& bus, QDBusMessage message, Seconds timeout);

/// The calls in turn until one isn't refused, then the ways until one works; with the last one's
/// problem when none does. A call that nobody answers in time may be carried out yet, so that its
/// problem ends it too.
EffectWay firstOf(std::vector<BusRequest> calls, std::vector<EffectWay> ways);
EffectWay firstOf(std::vector<EffectWay> ways);

/// Each in turn; the first problem ends it.
EffectWay allOf(std::vector<EffectWay> ways);

/// The way, for which a problem that tells of the user's change of mind is none.
EffectWay forgivingCancel(EffectWay way);

/// The way, a while later.
EffectWay after(const Doors& doors, Seconds delay, EffectWay way);

} // namespace EffectWays
} // namespace tessarine
