#include "launcherapp/platform/linux/desktop/QtApplication.h"

#include <gtest/gtest.h>

namespace tessarine {
namespace {

TEST(QtApplication, theUsersLanguageDecidesTheDirection) {
    const std::pair<const char*, bool> cases[] = {
        {"he_IL.UTF-8", true},
        {"ar_EG.UTF-8@calendar", true},
        {"fa", true},
        {"de_DE.UTF-8", false},
        {"C", false},
        {"C.UTF-8", false},
        {"", false},
    };
    for (const auto& [locale, isMirrored] : cases)
        EXPECT_EQ(readsRightToLeft({.messagesLocale = locale}), isMirrored) << locale;
}

} // namespace
} // namespace tessarine
