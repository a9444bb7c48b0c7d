#include "launcherapp/clipboard/ClipContents.h"

#include "launcherapp/clipboard/ClipPictures.h"
#include "launcherapp/clipboard/PasteboardTypes.h"
#include "launcherapp/platform/WorkQueues.h"

#include <algorithm>
#include <utility>

namespace tessarine {

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
    switch (entry.kind) {
    case ClipKind::text:
        return done(PasteboardTypes::ofText(entry.text.string()));
    case ClipKind::file:
        return done(PasteboardTypes::ofFiles(paths(entry.text.string())));
    case ClipKind::image:
        break;
    }
    work.run(
        WorkPriority::userInitiated,
        [pictures, names = std::vector{entry.fullFile, entry.imageFile}]() {
            for (const auto& name : names) {
                if (auto bytes = name ? pictures->png(*name) : nullptr)
                    return bytes;
            }
            return std::shared_ptr<const std::string>();
        },
        [done = std::move(done)](std::shared_ptr<const std::string> bytes) {
            done(bytes ? std::optional(PasteboardTypes::ofPicture(std::move(bytes)))
                       : std::nullopt);
        });
}

} // namespace tessarine
