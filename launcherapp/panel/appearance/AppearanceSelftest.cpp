#include "launcherapp/panel/appearance/AppearanceSelftest.h"

#include "launcherapp/panel/appearance/Palette.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

namespace tessarine {

namespace {

/// A text a little too faint for what is behind it, and one just strong enough.
std::vector<std::string> brokenControls() {
    const auto ratioOnWhite = [](std::uint32_t rgb) {
        return Contrast::ratio(Color::fromRgb(rgb), Color::fromRgb(0xFFFFFF));
    };
    const Palettes::Pair faint{.ratio = ratioOnWhite(0x777777)};
    const Palettes::Pair strong{.ratio = ratioOnWhite(0x767676)};
    std::vector<std::string> broken;
    if (faint.passes())
        broken.push_back("decoy: #777777 on white passes at 4.48, so a pass here proves nothing");
    if (!strong.passes())
        broken.push_back("control: #767676 on white fails at 4.54, so a failure proves nothing");
    // Half of the panel is the desktop behind it: no text colour can be read on black and on white.
    auto seeThrough = Palettes::palette(AppearancePreset::ink);
    seeThrough.panel.alpha = 100;
    bool anyFails = false;
    for (const auto& pair : Palettes::pairs(seeThrough))
        anyFails = anyFails || !pair.passes();
    if (!anyFails)
        broken.push_back("decoy: a panel as clear as glass passes; what is behind is not judged");
    return broken;
}

} // namespace

SelftestResult appearanceSelftest() {
    auto failures = brokenControls();
    std::size_t pairs = 0;
    double lowestText = std::numeric_limits<double>::max();
    for (const auto preset : Palettes::presets()) {
        for (const auto& pair : Palettes::pairs(Palettes::palette(preset))) {
            ++pairs;
            if (pair.kind == Palettes::Pair::Kind::text)
                lowestText = std::min(lowestText, pair.ratio);
            if (!pair.passes())
                failures.push_back(fmt::format("{}: {} on {} has {:.2f}, needs {:.1f}",
                                               Palettes::name(preset),
                                               pair.foreground,
                                               pair.background,
                                               pair.ratio,
                                               pair.required()));
        }
    }
    if (!failures.empty())
        return {SelftestResult::Verdict::refuted,
                fmt::format("selftest-appearance: FAILED:\n  {}", fmt::join(failures, "\n  "))};
    return {SelftestResult::Verdict::proved,
            fmt::format("selftest-appearance: {} pairs of {} presets can be read before black and "
                        "before white, the faintest text at {:.2f} to 1 (needs 4.5), and 2 decoys "
                        "are rejected",
                        pairs,
                        Palettes::presets().size(),
                        lowestText)};
}

} // namespace tessarine
