#include "launcherapp/shell/ClipboardWiring.h"

#include "LauncherCore/clipboard/ClipGroupsRuntime.h"
#include "launcherapp/clipboard/ClipImages.h"
#include "launcherapp/clipboard/ClipboardPaster.h"
#include "launcherapp/clipboard/ClipboardStore.h"
#include "launcherapp/platform/Ability.h"
#include "launcherapp/platform/MainQueue.h"
#include "launcherapp/query/SearchModel.h"
#include "launcherapp/query/rows/ClearClipRows.h"
#include "launcherapp/shell/Prefs.h"

#include <iterator>
#include <optional>
#include <string_view>
#include <utility>

namespace tessarine {

ClipboardWiring::ClipboardWiring(Services services) : services_(std::move(services)) {
    wireList();
    wireFilters();
    wireRows();
    wireTyping();
}

void ClipboardWiring::wireList() {
    auto& families = services_.model.families;
    families.clipboard = [this](std::string_view query, const std::optional<std::string>& filter) {
        return clippingRows(sources(), query, filter ? clipFilterOfToken(*filter) : std::nullopt);
    };
    families.clearClipboard = [this](std::string_view argument) {
        return clearClipboardRows(sources(), argument);
    };
}

void ClipboardWiring::wireFilters() {
    auto& families = services_.model.families;
    families.filterMenu = [this] { return clipFilterMenu(sources()); };
    families.resolveFilter = [this](std::string_view argument) -> std::optional<std::string> {
        const auto key = ClipFilterKey::resolve(argument, *services_.groups.current());
        return key ? std::optional(clipFilterToken(*key)) : std::nullopt;
    };
    families.partialFilters = [this](std::string_view argument) {
        return partialClipFilters(sources(), argument);
    };
    families.filterTitle = [this](const std::string& token) {
        return clipFilterTitle(sources(), token);
    };
}

void ClipboardWiring::wireRows() {
    auto& families = services_.model.families;
    families.removeClipping = [this](const std::string& id) { services_.store.remove(id); };
    families.copyClippingToTop = [this](const std::string& id) { return copyToTop(id); };
    families.preview = [this](const ResultRow& row) { return clippingPreview(sources(), row); };
    families.menuActions = [this, others = std::move(families.menuActions)](const ResultRow& row) {
        auto actions = rowsOf(others, row);
        std::ranges::move(clippingActions(sources(), row), std::back_inserter(actions));
        return actions;
    };
}

void ClipboardWiring::wireTyping() {
    services_.model.verbs.canType = [this] { return services_.typing().available; };
    services_.model.verbs.typeText = [this](const std::string& text) {
        hidePanel();
        services_.paster.typeIntoPreviousApp(text, services_.model.previousApp);
    };
}

ClipRowSources ClipboardWiring::sources() {
    auto& model = services_.model;
    const auto typing = services_.typing();
    const auto copying = services_.copying();
    const bool isToPaste = services_.prefs.clipAutoPaste();
    return {.history = services_.store.history(),
            .groups = services_.groups,
            .now = services_.queue.now(),
            .home = services_.home,
            .thumbnail = [&images = services_.images](
                             const ClipboardEntry& entry) { return images.icon(entry); },
            .picture = [&images = services_.images](
                           const ClipboardEntry& entry) { return images.picture(entry); },
            .paste = [this](const std::string& id) { paste(id); },
            .copyToTop = [this](const std::string& id) { copyToTop(id); },
            .togglePin =
                [this, &model](const std::string& id) {
                    services_.store.togglePin(id);
                    model.recompute();
                },
            .remove =
                [this, &model](const std::string& id) {
                    services_.store.remove(id);
                    model.recompute();
                },
            .clear =
                [this](std::optional<Seconds> newerThan) {
                    hidePanel();
                    services_.store.clear(newerThan);
                },
            .pastes =
                isToPaste && typing.available && copying.available && model.previousApp.has_value(),
            .onlyCopies = isToPaste ? typing.reason : std::string(),
            .unusable = copying.reason};
}

/// The panel goes first, and with it its hold on the keyboard: the keys are for the application.
/// False when the clipping is gone.
bool ClipboardWiring::hideAndUse(const std::string& id,
                                 const std::function<void(const ClipboardEntry&)>& use) {
    const auto* found = services_.store.history().entry(id);
    if (!found)
        return false;
    const auto entry = *found;
    hidePanel();
    use(entry);
    return true;
}

void ClipboardWiring::paste(const std::string& id) {
    hideAndUse(id, [this](const ClipboardEntry& entry) {
        services_.paster.paste(entry, services_.model.previousApp);
    });
}

bool ClipboardWiring::copyToTop(const std::string& id) {
    return hideAndUse(id,
                      [this](const ClipboardEntry& entry) { services_.paster.copyToTop(entry); });
}

void ClipboardWiring::hidePanel() {
    if (services_.model.dismiss)
        services_.model.dismiss();
}

} // namespace tessarine
