#include "launcherapp/platform/linux/desktop/LastFrames.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <cstdio>

// Called by the leak sanitizer where the program is built with it. Qt 6.4 lets go of none of the
// compositor's globals at its end, and leaves events in its queue that hold the proxies they are
// about, ours among them: of Wayland's own objects no leak can be told.
extern "C" const char* __lsan_default_suppressions() {
    return "leak:libwayland-client";
}

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    if (!qEnvironmentVariableIsSet("TESSARINE_TEST_DESKTOP") ||
        !qEnvironmentVariableIsSet("SWAYSOCK")) {
        std::fputs("These tests run on a desktop of their own: tests/desktop/with-sway\n", stderr);
        return 1;
    }
    qputenv("QT_QPA_PLATFORM", "wayland");
    for (const auto* name :
         {"QT_WAYLAND_USE_BYPASSWINDOWMANAGERHINT", "QT_WAYLAND_DISABLE_FIXED_POSITIONS"})
        qputenv(name, "1"); // as the program has it
    QApplication application(argc, argv);
    const tessarine::LastFrames lastFrames(application);
    return RUN_ALL_TESTS();
}
