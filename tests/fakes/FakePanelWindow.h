#pragma once

#include "launcherapp/platform/PanelWindow.h"
#include "tests/fakes/VirtualTime.h"

#include <string>
#include <utility>

namespace tessarine {

/// A window on screens that a test sets up; drawing takes as much virtual time as the test says.
class FakePanelWindow : public PanelWindow {
public:
    explicit FakePanelWindow(VirtualTime& time) : time_(time) {}

    void setEvents(Events events) override { events_ = std::move(events); }

    std::vector<Screen> screens() const override { return monitors; }

    std::optional<Point> pointer() const override {
        ++timesAskedForPointer;
        return mouse;
    }

    Rectangle frame() const override { return frame_; }

    void setFrame(const Rectangle& frame) override {
        calls.emplace_back("setFrame");
        move(frame);
    }

    /// Takes the keyboard unless `keyboardIsTaken`; drawing ends `drawing` later.
    void show() override {
        calls.emplace_back("show");
        visible_ = true;
        hasKeyboard_ = !keyboardIsTaken;
        time_.schedule(drawing, [this] { events_.painted(); });
    }

    void hide() override {
        calls.emplace_back("hide");
        visible_ = false;
        hasKeyboard_ = false;
    }

    bool isVisible() const override { return visible_; }

    bool hasKeyboard() const override { return hasKeyboard_; }

    std::optional<double> displayedHeight() const override {
        return visible_ && !isWithheld ? std::optional(frame_.height) : std::nullopt;
    }

    void drawHidden() override {
        calls.emplace_back("drawHidden");
        time_.advance(hiddenDrawing);
    }

    /// The user drags it there.
    void drag(Point to) { move({to.x, to.y, frame_.width, frame_.height}); }

    /// The display tells once more where the window is, as X11 does some time after a move.
    void tellPlace() { events_.moved(frame_); }

    void loseKeyboard() {
        hasKeyboard_ = false;
        events_.lostKeyboard();
    }

    /// Another program lets go of the keyboard after the show, or never does.
    void getKeyboard() {
        hasKeyboard_ = true;
        events_.keyboardCame();
    }

    void refuseKeyboard() {
        events_.keyboardRefused();
        events_.lostKeyboard();
    }

    void changeScreens(std::vector<Screen> screens) {
        monitors = std::move(screens);
        events_.screensChanged();
    }

    std::vector<Screen> monitors{
        {.name = "one", .frame = {0, 0, 1280, 800}, .workArea = {0, 0, 1280, 800}, .isMain = true}};
    mutable int timesAskedForPointer = 0;
    std::optional<Point> mouse;
    Seconds drawing{0};
    Seconds hiddenDrawing{0};
    bool keyboardIsTaken = false;
    bool isWithheld = false; ///< the display maps no window
    std::vector<std::string> calls;

private:
    void move(const Rectangle& frame) {
        const bool moved = frame.x != frame_.x || frame.y != frame_.y;
        frame_ = frame;
        if (moved)
            events_.moved(frame_);
    }

    VirtualTime& time_;
    Events events_;
    Rectangle frame_;
    bool visible_ = false;
    bool hasKeyboard_ = false;
};

} // namespace tessarine
