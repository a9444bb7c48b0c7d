#include "launcherapp/clipboard/ClipImages.h"

#include "launcherapp/clipboard/ClipPictures.h"
#include "launcherapp/platform/WorkQueues.h"

#include <utility>

namespace tessarine {

ClipImages::ClipImages(WorkQueues& work, std::shared_ptr<const ClipPictures> files)
    : work_(work), files_(std::move(files)),
      icons_(std::make_shared<Shelf>(Shelf{.pixels = iconPixels, .capacity = icons})),
      pictures_(std::make_shared<Shelf>(Shelf{.pixels = picturePixels, .capacity = pictures})) {}

std::optional<Image> ClipImages::icon(const ClipboardEntry& entry) {
    return from(icons_, entry);
}

std::optional<Image> ClipImages::picture(const ClipboardEntry& entry) {
    return from(pictures_, entry);
}

std::optional<Image> ClipImages::from(const std::shared_ptr<Shelf>& shelf,
                                      const ClipboardEntry& entry) {
    const auto& name = entry.imageFile ? entry.imageFile : entry.fullFile;
    if (entry.kind != ClipKind::image || !name)
        return std::nullopt;
    if (const auto found = shelf->images.find(*name); found != shelf->images.end())
        return found->second;
    shelf->images.emplace(*name, std::nullopt);
    shelf->order.push_back(*name);
    if (shelf->order.size() > shelf->capacity) {
        shelf->images.erase(shelf->order.front());
        shelf->order.pop_front();
    }
    work_.run(
        WorkPriority::userInitiated,
        [files = files_, file = *name, pixels = shelf->pixels] {
            return files->image(file, pixels);
        },
        [this, shelf, file = *name, alive = std::weak_ptr(alive_)](std::optional<Image> image) {
            const auto place = shelf->images.find(file);
            if (alive.expired() || place == shelf->images.end() || !image)
                return;
            place->second = std::move(image);
            arrivals_.tell();
        });
    return std::nullopt;
}

} // namespace tessarine
