#pragma once

#include "launcherapp/platform/Ability.h"
#include "launcherapp/platform/Subscription.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tessarine {

/// What lay there before, where what lies there now may be the same thing: a program that keeps the
/// clipboard for others puts there again what a program took along at its end.
struct PasteboardSuccession {
    std::uint64_t first = 0; ///< of the changes that brought it
    std::uint64_t last = 0;
    std::chrono::milliseconds pause{0}; ///< for which nothing lay there
    bool isSameOwner = false;           ///< it was not emptied: whoever owned it has taken it anew
};

/// What is offered on the pasteboard, by the names that the desktop gives its types.
struct PasteboardOffer {
    std::uint64_t count = 0;        ///< the change that brought it
    std::vector<std::string> types; ///< in the owner's order
    /// Nothing for what another program's copy or our own was replaced by.
    std::optional<PasteboardSuccession> succession = {};
};

/// The content of one type.
struct PasteboardReading {
    enum class Outcome {
        complete,
        tooLarge, ///< more than the limit; what came until then is dropped
        failed    ///< refused, not answered in time, cut off, or something else lies there now
    };

    Outcome outcome = Outcome::failed;
    std::string bytes;   ///< empty unless complete
    std::string problem; ///< why it failed, in words; empty otherwise
};

/// What is put on the pasteboard: the same thing as several types, the best first.
struct PasteboardContent {
    struct Item {
        std::string type;
        std::shared_ptr<const std::string> bytes; ///< never null
    };

    std::vector<Item> items;
    bool isSecret = false; ///< other programs' histories are asked not to keep it
};

/// The clipboard of the desktop, not its primary selection. Main thread only. No call waits for
/// another program: what must be asked of an owner comes back later.
class Pasteboard {
public:
    virtual ~Pasteboard() = default;

    virtual Ability ability() const = 0;

    /// Goes up with every change, our own and an emptying included. Reads one integer.
    virtual std::uint64_t changeCount() const = 0;

    /// What lies there now, asked of its owner without asking for any content. `done` is called
    /// once, later: with nothing when the owner doesn't tell within five seconds, or when what lies
    /// there changes meanwhile; with no types when nothing lies there.
    virtual void offer(std::function<void(std::optional<PasteboardOffer> offer)> done) = 0;

    /// The content of one type of the offer of that count. `done` is called once, later: at the
    /// latest when the owner was silent for five seconds, or a minute has gone by.
    virtual void read(std::uint64_t count,
                      const std::string& type,
                      std::size_t limitBytes,
                      std::function<void(PasteboardReading reading)> done) = 0;

    /// Clears the pasteboard and puts this there, until another program does. Gives the count of
    /// that change; it is offered as soon as the display has heard of it. Nothing happens, and the
    /// count stays, where the ability is missing.
    virtual std::uint64_t write(PasteboardContent content) = 0;

    /// Calls `gone` when the program that owned the content of that count has ended, which emptied
    /// the pasteboard, and nobody has put anything else there: the count of now is the next one. A
    /// program that empties it on purpose abandons nothing where `tellsEndFromEmptying`; elsewhere
    /// both are told.
    virtual Subscription onAbandoned(std::function<void(std::uint64_t count)> gone) = 0;

    /// Whether the end of an owner is known from its emptying the pasteboard on purpose. Wayland
    /// doesn't tell the one from the other.
    virtual bool tellsEndFromEmptying() const { return true; }

    /// Calls `changed`, later, after the ability went or came.
    virtual Subscription onAbilityChanged(std::function<void()> changed) = 0;
};

} // namespace tessarine
