#include "launcherapp/platform/linux/accessibility/PressableThings.h"

#include <gmock/gmock.h>

#include <optional>
#include <string>
#include <vector>

namespace tessarine {
namespace {

TEST(PressableThings, aNameIsMetWholeButForCaseAndMnemonics) {
    const struct {
        const char *text, *name;
        bool met;
    } cases[] = {
        {"Save", "save", true},
        {" Save\n", "Save", true},
        {"_Save", "Save", true},
        {"Save", "&Save", true},
        {"Tom && Ann", "Tom & Ann", true}, // a doubled mark stands for itself
        {"my_file", "my_file", true},
        {"STRASSE", "straße", true},
        {"Save As…", "Save", false}, // a near miss is another button
        {"Resume", "Résumé", false},
        {"", "", false},
        {"_", "&", false},
        {"\xff\xfe", "Save", false}, // no UTF-8
    };

    for (const auto& [text, name, met] : cases) {
        SCOPED_TRACE(text);
        EXPECT_EQ(PressableThings::isCalled(text, name), met);
    }
}

TEST(PressableThings, thePressIsThePlainestAction) {
    const struct {
        std::vector<std::string> actions;
        std::optional<std::size_t> press;
    } cases[] = {
        {{"SetFocus", "Press"}, 1}, // Qt's button
        {{"click"}, 0},             // GTK's
        {{"Toggle", "press"}, 1},   // both: the plainest
        {{"expand or contract", "activate"}, 1},
        {{"SetFocus", "do it"}, 1}, // a program's own word
        {{"SetFocus", "ShowMenu"}, std::nullopt},
        {{}, std::nullopt},
    };

    for (const auto& [actions, press] : cases)
        EXPECT_EQ(PressableThings::pressAction(actions), press) << testing::PrintToString(actions);
}

} // namespace
} // namespace tessarine
