#include "launcherapp/clipboard/FrontApp.h"

#include "tests/fakes/FakeServices.h"

#include <gtest/gtest.h>

namespace tessarine {
namespace {

TEST(FrontApp, isKnownByItsEntryElseByItsWindow) {
    FakeServices services;
    services.install("org.example.Writer", "Writer", "StartupWMClass=writer\n");
    services.install("xterm", "Terminal", "Categories=System;TerminalEmulator;\n");
    services.install("konsole", "Not a terminal");
    services.startCatalog();

    const struct {
        AppWindow window;
        std::optional<std::string> bundleID; ///< by which an application is left out
        std::optional<std::string> name;     ///< which a mark of a paste gets
        bool isTerminal;                     ///< where a paste is another chord
    } cases[] = {
        {{.id = 1, .className = "writer"}, "org.example.Writer", "Writer", false},
        {{.id = 2, .className = "XTerm"}, "xterm", "Terminal", true},
        // Without an entry of their own.
        {{.id = 3, .className = "Alacritty"}, std::nullopt, "Alacritty", true},
        {{.id = 4, .className = "Alacrity"}, std::nullopt, "Alacrity", false},
        {{.id = 5, .className = ""}, std::nullopt, std::nullopt, false},
        // An entry knows better than the name of a class.
        {{.id = 6, .className = "konsole"}, "konsole", "Not a terminal", false},
    };

    auto& windows = services.platform.windows;
    for (const auto& [window, bundleID, name, isTerminal] : cases) {
        SCOPED_TRACE(window.className);
        windows.open = {window};
        windows.activeID = window.id;
        const auto source = FrontApp::source(windows, services.running, services.catalog);
        EXPECT_EQ(source.bundleID, bundleID);
        EXPECT_EQ(source.name, name);
        const auto target = FrontApp::target(window, services.running, services.catalog);
        EXPECT_EQ(target.name, name);
        EXPECT_EQ(target.isTerminal, isTerminal);
    }
    windows.open = {};
    windows.activeID = 0;
    EXPECT_EQ(FrontApp::source(windows, services.running, services.catalog).name, std::nullopt);
}

TEST(FrontApp, hasEndedWhenNothingOfItIsLeft) {
    const AppWindow told{.id = 1, .className = "app", .processID = 7, .executable = "/bin/app"};
    const AppWindow untold{.id = 1, .className = "app"};

    const struct {
        const char* reason;
        std::optional<AppWindow> source;
        std::vector<AppWindow> open;
        bool runs;
        bool hasEnded;
    } cases[] = {
        {"unknown", std::nullopt, {}, false, false},
        {"runs on without a window", told, {}, true, false},
        {"another process has the same class", told, {{.id = 2, .className = "app"}}, false, true},
        {"no process is told, a window is left",
         untold,
         {{.id = 2, .className = "app"}},
         false,
         false},
        {"none is left", untold, {{.id = 2, .className = "other"}}, false, true},
    };

    for (const auto& each : cases) {
        SCOPED_TRACE(each.reason);
        FakeWindowList windows;
        windows.open = each.open;
        if (each.runs)
            windows.programs.insert(7);
        EXPECT_EQ(FrontApp::hasEnded({.window = each.source}, windows), each.hasEnded);
    }
}

} // namespace
} // namespace tessarine
