#pragma once

#include "launcherapp/platform/Accessibility.h"
#include "launcherapp/platform/linux/accessibility/PressableThings.h"
#include "launcherapp/platform/linux/accessibility/PrivateBus.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tessarine {

/// One search through a program's tree of accessible things, depth first, for one to press. A
/// program that hangs, ends or tells a tree without end costs its bounds and no more. Lives for one
/// search; one thread.
class AtspiSearch {
public:
    /// The D-Bus interface that every accessible thing has.
    static constexpr auto accessible = "org.a11y.atspi.Accessible";
    static constexpr std::size_t maxThings = 20000;   ///< a large document in a browser
    static constexpr int maxDepth = 128;              ///< pages of nested boxes reach about 60
    static constexpr std::int64_t maxChildren = 2000; ///< of one thing: rows of a list
    /// A program that says nothing for so long is given up. Browsers take some hundred milliseconds
    /// when they are first asked.
    static constexpr std::chrono::milliseconds patience{1000};

    AtspiSearch(PrivateBus& bus, std::string_view name, PrivateBus::Clock::time_point deadline)
        : bus_(bus), name_(name), deadline_(deadline) {}

    /// Looks through what is below the roots of the program's trees. What is called exactly so is
    /// pressed before what is so but for a mnemonic's mark.
    PressAttempt pressBelow(std::span<const BusPlace> roots);

    /// Whether a window is on screen below one of them.
    bool showsWindow(std::span<const BusPlace> roots);

private:
    /// Something on screen.
    struct Thing {
        BusPlace place;
        std::int64_t children = 0;
        PressableThings::Likeness likeness{}; ///< none too where it is nothing to press
    };

    /// What a thing says of itself, whatever it is called.
    struct Shape {
        bool isOnScreen = false;
        bool isPressable = false;
        std::int64_t children = 0;
    };

    /// Some of a thing's children, by their numbers.
    struct ChildRange {
        std::int64_t first = 0;
        std::int64_t afterLast = 0;
        std::int64_t count = 0; ///< of all
    };

    using Likenesses = std::map<BusPlace, PressableThings::Likeness>;

    std::optional<PressAttempt> below(const BusPlace& parent, std::int64_t count, int depth);
    std::optional<PressAttempt> press(const BusPlace& place);
    PressAttempt act(const BusPlace& place, std::size_t action);
    std::int64_t childCount(const BusPlace& place);
    std::vector<BusPlace> places(const BusPlace& parent, const ChildRange& range);
    std::vector<Thing> children(const BusPlace& parent, const ChildRange& range);
    std::vector<Shape> shapes(const std::vector<BusPlace>& places);
    Likenesses likenesses(const std::vector<BusPlace>& places);
    Likenesses likenessesOfTexts(const std::vector<BusPlace>& places);
    PressableThings::Likeness likenessOf(const BusReply& reply) const;
    std::vector<BusReply> ask(std::span<const BusCall> calls);

    PrivateBus& bus_;
    std::string name_;
    PrivateBus::Clock::time_point deadline_;
    std::vector<BusPlace> butForMarks_; ///< called nearly so; pressed when nothing else is
    std::set<BusPlace> seen_;           ///< trees of some programs lead back into themselves
    std::set<std::string> silent_;      ///< connections that let us wait in vain
};

} // namespace tessarine
