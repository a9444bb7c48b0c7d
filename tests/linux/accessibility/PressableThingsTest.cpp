#include "launcherapp/platform/linux/accessibility/PressableThings.h"

#include <gmock/gmock.h>

#include <optional>
#include <string>
#include <vector>

namespace tessarine {
namespace {

TEST(PressableThings, aNameIsMetWholeButForCaseAndMnemonics) {
    using PressableThings::Likeness;

    const struct {
        const char *text, *name;
        Likeness likeness;
    } cases[] = {
        {"Save", "save", Likeness::same},
        {" Save\n", "Save", Likeness::same},
        {"my_file", "my_file", Likeness::same},
        {"STRASSE", "straße", Likeness::same},
        {"_Save", "Save", Likeness::butForMarks},
        {"Save", "&Save", Likeness::butForMarks},
        {"my_file", "myfile", Likeness::butForMarks},       // only where nothing is called just so
        {"Tom && Ann", "Tom & Ann", Likeness::butForMarks}, // a doubled mark stands for itself
        {"Save As…", "Save", Likeness::none},               // a near miss is another button
        {"Resume", "Résumé", Likeness::none},
        {"", "", Likeness::none},
        {"_", "&", Likeness::none},
        {"\xff\xfe", "Save", Likeness::none}, // no UTF-8
    };

    for (const auto& [text, name, likeness] : cases)
        EXPECT_EQ(PressableThings::likeness(text, name), likeness) << text << " " << name;
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
        {{""}, 0},                        // all that the thing does
        {{"SetFocus", ""}, std::nullopt}, // may be anything
        {{}, std::nullopt},
    };

    for (const auto& [actions, press] : cases)
        EXPECT_EQ(PressableThings::pressAction(actions), press) << testing::PrintToString(actions);
}

} // namespace
} // namespace tessarine
