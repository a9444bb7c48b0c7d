#include "launcherapp/clipboard/ClipContents.h"

#include "launcherapp/clipboard/ClipPictures.h"
#include "launcherapp/clipboard/PasteboardTypes.h"
#include "launcherapp/platform/WorkQueues.h"

#include <algorithm>
#include <span>
#include <utility>

namespace tessarine {

namespace {

/// The text itself, which lives as long as anybody has it.
std::shared_ptr<const std::string> shared(const ClipText& text) {
    const auto held = std::make_shared<const ClipText>(text);
    return {held, &held->string()};
}

/// Of the first file that is there.
std::optional<PasteboardContent> ofPicture(const ClipPictures& pictures,
                                           std::span<const std::optional<std::string>> names) {
    for (const auto& name : names) {
        if (auto bytes = name ? pictures.png(*name) : nullptr)
            return PasteboardTypes::ofPicture(std::move(bytes));
    }
    return std::nullopt;
}

} // namespace

std::vector<std::string> ClipContents::paths(std::string_view text) {
    std::vector<std::string> paths;
    while (!text.empty()) {
        const auto end = std::min(text.find('\n'), text.size());
        if (end > 0)
            paths.emplace_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return paths;
}

void ClipContents::make(const ClipboardEntry& entry,
                        WorkQueues& work,
                        const std::shared_ptr<const ClipPictures>& pictures,
                        std::function<void(std::optional<PasteboardContent>)> done) {
    work.run(
        WorkPriority::userInitiated,
        [pictures,
         kind = entry.kind,
         text = entry.text,
         names = std::vector{entry.fullFile, entry.imageFile}] {
            switch (kind) {
            case ClipKind::text:
                return std::optional(PasteboardTypes::ofText(shared(text)));
            case ClipKind::file:
                return std::optional(PasteboardTypes::ofFiles(paths(text.string())));
            case ClipKind::image:
                break;
            }
            return ofPicture(*pictures, names);
        },
        std::move(done));
}

} // namespace tessarine
