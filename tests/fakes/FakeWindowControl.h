#pragma once

#include "launcherapp/platform/WindowControl.h"

#include <algorithm>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace tessarine {

/// A desktop of screens and windows that stay where they are put.
class FakeWindowControl : public WindowControl {
public:
    struct Window {
        Rectangle frame;
        std::optional<Rectangle> restored; ///< while it is maximised: where it comes back to
        double longestWidth = 1e6;         ///< it takes no more where it is
        bool canBeKilled = true;
        bool endsWhenMoved = false;
    };

    Ability ability() const override { return supported; }

    std::vector<Screen> screens() const override { return monitors; }

    std::optional<Rectangle> frame(std::uint64_t window) const override {
        const auto found = windows.find(window);
        return found == windows.end() ? std::nullopt : std::optional(found->second.frame);
    }

    void restore(std::uint64_t window) override {
        const auto found = windows.find(window);
        if (found != windows.end() && found->second.restored)
            found->second.frame = *std::exchange(found->second.restored, std::nullopt);
    }

    void resize(std::uint64_t window, double width, double height) override {
        const auto found = windows.find(window);
        if (found == windows.end() || found->second.restored)
            return;
        found->second.frame.width = std::min(width, found->second.longestWidth);
        found->second.frame.height = height;
    }

    /// A window that has moved has all the room there is.
    void move(std::uint64_t window, const Point& topLeft) override {
        const auto found = windows.find(window);
        if (found == windows.end() || found->second.restored)
            return;
        found->second.frame.x = topLeft.x;
        found->second.frame.y = topLeft.y;
        found->second.longestWidth = 1e6;
        if (found->second.endsWhenMoved)
            windows.erase(found);
    }

    void close(std::uint64_t window) override { closed.push_back(window); }

    Ability killing() const override { return killable; }

    bool kill(std::uint64_t window) override {
        const auto found = windows.find(window);
        if (found == windows.end() || !found->second.canBeKilled)
            return false;
        killed.push_back(window);
        return true;
    }

    Ability supported;
    Ability killable;
    std::vector<Screen> monitors;
    std::map<std::uint64_t, Window> windows;
    std::vector<std::uint64_t> closed;
    std::vector<std::uint64_t> killed;
};

} // namespace tessarine
