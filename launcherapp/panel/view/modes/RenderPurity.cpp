#include "launcherapp/panel/view/modes/RenderPurity.h"

#include "launcherapp/operations/Diagnostics.h"
#include "launcherapp/operations/StateFile.h"
#include "launcherapp/panel/appearance/Appearance.h"
#include "launcherapp/panel/view/drawing/PanelShadow.h"
#include "launcherapp/panel/view/drawing/PanelStyle.h"
#include "launcherapp/platform/WorkQueues.h"
#include "launcherapp/shell/DefaultsStore.h"
#include "launcherapp/shell/Uuid.h"
#include "launcherapp/shell/modes/IndexModes.h"
#include "launcherapp/shell/modes/Modes.h"

#include <fmt/format.h>

#include <string>

namespace tessarine {

namespace {

using Verdict = SelftestResult::Verdict;

/// What the settings say about the appearance, and how often any of them was written.
class Watch {
public:
    explicit Watch(Prefs& prefs)
        : prefs_(prefs), before_(values(prefs)),
          writes_(prefs.onChange([this](std::string_view) { ++written_; })) {}

    /// What has changed, in words; empty for nothing.
    std::string difference() const {
        const auto now = values(prefs_);
        if (now != before_)
            return fmt::format("{} became {}", before_, now);
        return written_ > 0 ? fmt::format("{} settings were written", written_) : std::string();
    }

private:
    static std::string values(const Prefs& prefs) {
        return fmt::format(
            "preset={} lightPreset={} mode={}",
            Palettes::name(prefs.preset()),
            Palettes::name(prefs.lightPreset()),
            StoredNames<AppearanceMode>::names[static_cast<std::size_t>(prefs.mode())]);
    }

    const Prefs& prefs_;
    std::string before_;
    int written_ = 0;
    Subscription writes_;
};

/// Whether the watch sees a write, tried on settings of its own.
bool directWriteIsSeen(ModeContext& context) {
    auto& services = *context.indexing;
    DefaultsStore store(context.queue,
                        StateFile(context.files,
                                  services.work.serial("com.corvane.tessarine.purity"),
                                  services.diagnostics,
                                  fmt::format("{}/tsr-purity-{}/preferences.json",
                                              context.environment.temporaryDir,
                                              randomUuid()),
                                  StateFile::Failures::silent),
                        services.diagnostics);
    Prefs scratch(store, context.environment);
    const Watch watch(scratch);
    const auto other = scratch.preset() == AppearancePreset::violet ? AppearancePreset::ink
                                                                    : AppearancePreset::violet;
    scratch.preset.set(other);
    return !watch.difference().empty();
}

/// Whether the middle of the field row has the palette's ground.
bool isDrawnIn(const QImage& picture, AppearancePreset skin) {
    const auto ground = toQt(Palettes::palette(skin).panel);
    const QPoint inField(picture.width() / 2, PanelShadow::margins().top() + 4);
    const auto seen = picture.convertToFormat(QImage::Format_ARGB32).pixelColor(inField);
    const auto near = [](int one, int other) { return std::abs(one - other) <= 2; };
    return near(seen.red(), ground.red()) && near(seen.green(), ground.green()) &&
           near(seen.blue(), ground.blue());
}

SelftestResult result(Verdict verdict, const std::string& words) {
    return {verdict, "selftest-render-purity: " + words};
}

} // namespace

SelftestResult renderPurity(ModeContext& context,
                            const Appearance& appearance,
                            const std::function<QImage(AppearancePreset skin)>& picture) {
    if (!context.indexing)
        return result(Verdict::notMeasured, "NOT MEASURED, this run has no files to try it on");
    if (!directWriteIsSeen(context))
        return result(Verdict::refuted,
                      "inert: a direct write was not detected, so a pass here proves nothing");
    const Watch watch(context.prefs);
    const auto own = appearance.preset();
    int drawn = 0;
    for (const auto skin : Palettes::presets()) {
        if (!isDrawnIn(picture(skin), skin))
            return result(Verdict::refuted,
                          fmt::format("inert: a picture in {} has another ground, so nothing was "
                                      "overridden and a pass here proves nothing",
                                      Palettes::name(skin)));
        ++drawn;
        if (const auto difference = watch.difference(); !difference.empty())
            return result(Verdict::refuted, "override changed the stored values: " + difference);
    }
    if (appearance.preset() != own)
        return result(Verdict::refuted,
                      fmt::format("the selftest itself did not restore: {} became {}",
                                  Palettes::name(own),
                                  Palettes::name(appearance.preset())));
    return result(Verdict::proved,
                  fmt::format("{} pictures, each in its own colours, and no setting was written (a "
                              "direct write is detected)",
                              drawn));
}

} // namespace tessarine
