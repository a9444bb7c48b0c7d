#pragma once

#include "launcherapp/platform/Accessibility.h"
#include "launcherapp/platform/linux/accessibility/PrivateBus.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
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
    static constexpr std::size_t maxThings = 20000;   ///< a large document in a browser
    static constexpr int maxDepth = 128;              ///< pages of nested boxes reach about 60
    static constexpr std::int64_t maxChildren = 2000; ///< of one thing: rows of a list
    /// A program that says nothing for so long is given up. Browsers take some hundred milliseconds
    /// when they are first asked.
    static constexpr std::chrono::milliseconds patience{1000};

    AtspiSearch(PrivateBus& bus, std::string_view name, PrivateBus::Clock::time_point deadline)
        : bus_(bus), name_(name), deadline_(deadline) {}

    /// Looks through what is below the program's root.
    PressAttempt pressBelow(const BusPlace& root);

private:
    struct Thing {
        BusPlace place;
        std::vector<std::uint32_t> states;
        std::int64_t children = 0;
        bool pressable = false;
        bool named = false; ///< called by the name that is looked for
    };

    /// Some of a thing's children, by their numbers.
    struct Span {
        std::int64_t first = 0;
        std::int64_t afterLast = 0;
        std::int64_t count = 0; ///< of all
    };

    std::optional<PressAttempt> below(const BusPlace& parent, std::int64_t count, int depth);
    std::optional<PressAttempt> press(const BusPlace& place);
    PressAttempt act(const BusPlace& place, std::size_t action);
    std::vector<BusPlace> places(const BusPlace& parent, const Span& span);
    std::vector<Thing> children(const BusPlace& parent, const Span& span);
    void readNames(std::vector<Thing>& things);
    void readTexts(std::vector<Thing*> things);
    std::vector<BusReply> ask(std::span<const BusCall> calls);

    PrivateBus& bus_;
    std::string name_;
    PrivateBus::Clock::time_point deadline_;
    std::set<BusPlace> seen_;      ///< trees of some programs lead back into themselves
    std::set<std::string> silent_; ///< connections that let us wait in vain
};

} // namespace tessarine
