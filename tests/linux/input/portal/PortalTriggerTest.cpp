#include "launcherapp/platform/linux/input/portal/PortalTrigger.h"

#include "LauncherCore/commands/HotkeyBinding.h"
#include "LauncherCore/commands/VirtualKeys.h"

#include <gtest/gtest.h>

namespace tessarine {
namespace {

TEST(PortalTrigger, isWrittenAsPortalsReadIt) {
    const struct {
        const char* key;
        std::uint32_t modifiers;
        const char* trigger;
    } cases[] = {
        {"space", 0x100, "LOGO+space"},
        {"v", 0x1b00, "CTRL+ALT+SHIFT+LOGO+v"},
        {"f12", 0, "F12"},
        {"f", 0x100, "LOGO+f"}, // a letter, no function key
        {"pageup", 0x800, "ALT+Page_Up"},
        {"delete", 0x100, "LOGO+BackSpace"}, // the key that is called so
        {"`", 0x1000, "CTRL+grave"},
    };

    for (const auto& [key, modifiers, trigger] : cases)
        EXPECT_EQ(PortalTrigger::of(
                      {.keyCode = VirtualKeys::code(key).value(), .carbonModifiers = modifiers}),
                  trigger);
    EXPECT_EQ(PortalTrigger::of({.keyCode = 200, .carbonModifiers = 0x100}), std::nullopt);
}

} // namespace
} // namespace tessarine
