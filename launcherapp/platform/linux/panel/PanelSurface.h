#pragma once

#include "LauncherCore/geometry/Rectangle.h"
#include "launcherapp/platform/PanelWindow.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

class QWidget;

namespace tessarine {

/// How one kind of display carries the panel's widget: what makes it a window that nothing manages,
/// and how the keyboard comes and goes with it. `QtPanelWindow` is the same above all of them. Main
/// thread only; nothing here waits longer than a round trip to the display.
class PanelSurface {
public:
    struct Events {
        /// The keyboard is gone or is not to be had, or the user turned to something else. May come
        /// more than once for a show.
        std::function<void()> lostKeyboard;
        /// As the window's own events of these names.
        std::function<void()> keyboardRefused;
        std::function<void()> keyboardCame;
        /// The press of a key is about to be handed to the toolkit.
        std::function<void(std::uint32_t scanCode)> keyArrives;
        /// `mixes` has changed.
        std::function<void()> mixesChanged;
    };

    virtual ~PanelSurface() = default;

    /// Once, while the widget is hidden: gives it the native window that it keeps. The widget
    /// outlives the surface.
    virtual void prepare(QWidget& widget, Events events) = 0;

    /// Moves and resizes the widget.
    virtual void setFrame(const Rectangle& frame) = 0;

    /// Brings the widget up above everything and takes the keyboard. While another holds it, this
    /// goes on for a second and doesn't wait for that.
    virtual void show() = 0;
    /// Takes it away and gives the keyboard back to whoever has the focus, who has it on return.
    virtual void hide() = 0;
    virtual bool hasKeyboard() const = 0;
    /// The height that the display itself has the widget at; nothing when it has none to be seen.
    virtual std::optional<double> displayedHeight() const = 0;

    /// Returns when the display has what was drawn; at once where it doesn't tell.
    virtual void finishDrawing() = 0;

    /// A drag with the button down has begun. True when the display carries it out, and nothing
    /// more is told of it here; false where the window moves itself, with `setFrame`, until
    /// `endDrag`, until `endDrag`.
    virtual bool startDrag() = 0;

    /// Ends one that the window does itself, before its last `setFrame`.
    virtual void endDrag() {}

    /// Whether the display mixes windows with what is below: without it transparent pixels are
    /// black. May change at any time.
    virtual bool mixes() const = 0;

    virtual std::vector<Screen> screens() const = 0;
    /// Nothing where the display doesn't tell.
    virtual std::optional<Point> pointer() const = 0;
};

/// The surface for the display that Qt is connected to.
std::unique_ptr<PanelSurface> makePanelSurface();

} // namespace tessarine
