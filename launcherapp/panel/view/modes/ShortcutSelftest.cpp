#include "launcherapp/panel/view/modes/ShortcutSelftest.h"

#include "launcherapp/panel/view/KeyTranslation.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <vector>

namespace tessarine {

namespace {

struct Case {
    const char* name;
    int key;
    Qt::KeyboardModifiers modifiers;
    const char* text; ///< what the toolkit says was typed
    std::optional<PanelKeyAction> action;
};

constexpr auto control = Qt::ControlModifier;

const auto cases = std::to_array<Case>({
    {"Ctrl-comma", Qt::Key_Comma, control, ",", PanelKeyAction::settings},
    // Caps Lock shows in what is typed and in no modifier.
    {"Ctrl-comma through caps lock", Qt::Key_Comma, control, "<", PanelKeyAction::settings},
    {"Ctrl-K through caps lock", Qt::Key_K, control, "K", PanelKeyAction::actions},
    {"a comma", Qt::Key_Comma, Qt::NoModifier, ",", std::nullopt},
    {"Shift-Ctrl-comma", Qt::Key_Comma, control | Qt::ShiftModifier, "<", std::nullopt},
    {"Alt-comma", Qt::Key_Comma, Qt::AltModifier, ",", std::nullopt},
    {"Super-comma", Qt::Key_Comma, Qt::MetaModifier, ",", std::nullopt},
    {"Ctrl-period", Qt::Key_Period, control, ".", std::nullopt},
    {"Ctrl-0", Qt::Key_0, control, "0", std::nullopt},
    {"a blank", Qt::Key_Space, Qt::NoModifier, " ", std::nullopt},
});

} // namespace

SelftestResult shortcutSelftest() {
    std::vector<std::string> failures;
    for (const auto& [name, key, modifiers, text, action] : cases) {
        const QKeyEvent press(QEvent::KeyPress, key, modifiers, QString::fromLatin1(text));
        const auto* chord = KeyTranslation::chord(press);
        if (chord && !action)
            failures.push_back(fmt::format("decoy: {} is taken for a chord", name));
        else if (!chord && action)
            failures.push_back(fmt::format("{} is not matched", name));
        else if (chord && chord->action != *action)
            failures.push_back(fmt::format("{} is taken for another chord", name));
    }
    if (!failures.empty())
        return {SelftestResult::Verdict::refuted,
                fmt::format("selftest-shortcut: FAILED:\n  {}", fmt::join(failures, "\n  "))};
    const auto decoys = std::ranges::count_if(cases, [](const Case& each) { return !each.action; });
    return {SelftestResult::Verdict::proved,
            fmt::format("selftest-shortcut: {} checks, command-comma matches through caps lock and "
                        "{} decoys are rejected",
                        cases.size(),
                        decoys)};
}

} // namespace tessarine
