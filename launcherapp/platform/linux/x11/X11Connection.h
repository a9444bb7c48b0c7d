#pragma once

#include "launcherapp/platform/linux/XcbOwned.h"

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

struct xcb_connection_t;

namespace tessarine {

/// A connection to the X11 display beside Qt's, so that what is asked for on it changes nothing of
/// what Qt asked for. One that can't be made, or is lost, gives nothing from then on. One
/// thread at a time.
class X11Connection {
public:
    using Window = std::uint32_t;
    using Atom = std::uint32_t;

    X11Connection();
    ~X11Connection();
    X11Connection(const X11Connection&) = delete;
    X11Connection& operator=(const X11Connection&) = delete;

    bool answers() const;

    xcb_connection_t* xcb() const { return connection_; }

    int screenNumber() const { return screenNumber_; }

    /// None (0) without a display.
    Window root() const { return root_; }

    /// Asked for once and kept.
    Atom atom(std::string_view name) const;

    /// One property of one window.
    struct Property {
        Window window = 0;
        Atom name = 0;
    };

    /// The 32-bit numbers of each property, in the order given; an empty list for a property that
    /// isn't there or whose window has gone. One round trip for all.
    std::vector<std::vector<std::uint32_t>> numbers(const std::vector<Property>& properties) const;

    /// A property of text up to its first NUL; empty when it isn't there or its window has gone.
    std::string text(const Property& property) const;

private:
    int screenNumber_ = 0;
    xcb_connection_t* connection_;
    Window root_ = 0;
    mutable std::map<std::string, Atom, std::less<>> atoms_;
};

} // namespace tessarine
