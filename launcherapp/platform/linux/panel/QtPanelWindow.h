#pragma once

#include "launcherapp/platform/PanelWindow.h"

#include <cstdint>
#include <functional>
#include <memory>

class QWidget;

namespace tessarine {

class PanelSurface;

/// The panel's window: a top-level widget on a surface. The widget draws; this brings it up with
/// its field focused, moves it when it is dragged by its background, and tells when the display has
/// what it draws. Main thread only, with Qt's event loop.
class QtPanelWindow : public PanelWindow {
public:
    /// `widget` is hidden and stays so until `show`; what its contents margins hold (a shadow) is
    /// around the frames that this speaks of; `field` is in it and gets the keys. Both
    /// outlive the window.
    QtPanelWindow(QWidget& widget, QWidget& field, std::unique_ptr<PanelSurface> surface);
    ~QtPanelWindow() override;
    QtPanelWindow(const QtPanelWindow&) = delete;
    QtPanelWindow& operator=(const QtPanelWindow&) = delete;

    void setEvents(Events events) override;
    std::vector<Screen> screens() const override;
    std::optional<Point> pointer() const override;
    Rectangle frame() const override;
    void setFrame(const Rectangle& frame) override;
    void show() override;
    void hide() override;
    bool isVisible() const override;
    bool hasKeyboard() const override;
    std::optional<double> displayedHeight() const override;
    void drawHidden() override;

    /// Whether transparent pixels let through what is below the window; where they don't, the view
    /// draws none.
    bool mixes() const;

    /// Called when `mixes` has changed.
    std::function<void()> mixesChanged;

    /// Called with the press of each key before any part of Qt has seen it.
    std::function<void(std::uint32_t scanCode)> keyArrives;

    /// Called before a panel that is up is taken away, while it has the keyboard still.
    std::function<void()> goesAway;

    /// Called before each hidden drawing.
    std::function<void()> drawsHidden;

private:
    class Watch;
    std::unique_ptr<Watch> watch_;
};

} // namespace tessarine
