#pragma once

#include "launcherapp/platform/linux/desktop/X11WindowControl.h"
#include "tests/fakes/RectanglePrinting.h"
#include "tests/linux/EventLoop.h"
#include "tests/linux/x11/X11Neighbour.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <functional>
#include <string>
#include <vector>

namespace tessarine {

/// A program with windows on the display of the tests, which has a window manager, and the control
/// that moves them.
class X11WindowControlFixture : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(spinUntil([&] { return neighbour.managed().empty(); }));
    }

    void TearDown() override {
        for (const auto window : opened)
            neighbour.close(window);
        ASSERT_TRUE(spinUntil([&] { return neighbour.managed().empty(); }));
    }

    X11Neighbour::Window open(const std::function<void(X11Neighbour::Window)>& prepare = {}) {
        const auto window =
            neighbour.open(700, 100, 300, 200, X11Neighbour::Kind::managed, prepare);
        opened.push_back(window);
        EXPECT_TRUE(spinUntil([&] { return isManaged(window); }));
        return window;
    }

    bool isManaged(X11Neighbour::Window window) {
        const auto managed = neighbour.managed();
        return std::ranges::count(managed, window) > 0 && topLevel(window) != window;
    }

    /// The window manager's window around one of a program, or that itself without any.
    X11Neighbour::Window topLevel(X11Neighbour::Window window) {
        for (;;) {
            const XcbOwned<xcb_query_tree_reply_t> tree(xcb_query_tree_reply(
                neighbour.xcb(), xcb_query_tree(neighbour.xcb(), window), nullptr));
            if (!tree || tree->parent == neighbour.root())
                return window;
            window = tree->parent;
        }
    }

    /// What is to be seen of the window, told by the display instead of by hints.
    Rectangle seen(X11Neighbour::Window window, const std::array<double, 4>& shadow = {}) {
        const XcbOwned<xcb_get_geometry_reply_t> size(xcb_get_geometry_reply(
            neighbour.xcb(), xcb_get_geometry(neighbour.xcb(), topLevel(window)), nullptr));
        if (!size)
            return {};
        const auto [left, right, top, bottom] = shadow;
        return {.x = size->x + left,
                .y = size->y + top,
                .width = size->width + 2.0 * size->border_width - left - right,
                .height = size->height + 2.0 * size->border_width - top - bottom};
    }

    /// As the verbs do it.
    void place(X11Neighbour::Window window, const Rectangle& frame) {
        control.restore(window);
        control.resize(window, frame.width, frame.height);
        control.move(window, {.x = frame.x, .y = frame.y});
        control.resize(window, frame.width, frame.height);
    }

    bool hasState(X11Neighbour::Window window, const std::string& state) {
        const auto states =
            neighbour.display.numbers({{window, neighbour.display.atom("_NET_WM_STATE")}}).front();
        return std::ranges::count(states, neighbour.display.atom(state)) > 0;
    }

    void setState(X11Neighbour::Window window,
                  const std::string& first,
                  const std::string& second = "") {
        neighbour.ask(window,
                      "_NET_WM_STATE",
                      {1,
                       neighbour.display.atom(first),
                       second.empty() ? 0 : neighbour.display.atom(second),
                       2});
        ASSERT_TRUE(spinUntil([&] { return hasState(window, first); }));
    }

    X11Neighbour neighbour;
    std::vector<X11Neighbour::Window> opened;
    X11WindowControl control;
};

} // namespace tessarine
