#pragma once

#include "LauncherCore/clipboard/ClipboardEntry.h"
#include "launcherapp/platform/Image.h"
#include "launcherapp/platform/Observers.h"
#include "launcherapp/platform/Subscription.h"

#include <cstddef>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>

namespace tessarine {

class ClipPictures;
class WorkQueues;

/// The pictures of clippings as the panel shows them: read in the background when they are first
/// asked for, and kept while they are likely to be asked for again. Main thread only.
class ClipImages {
public:
    static constexpr int iconPixels = 64;       ///< of the longer side: twice what a row shows
    static constexpr int picturePixels = 512;   ///< as thumbnails are kept
    static constexpr std::size_t icons = 200;   ///< 3 MB of pixels at most
    static constexpr std::size_t pictures = 12; ///< 12 MB of pixels at most

    ClipImages(WorkQueues& work, std::shared_ptr<const ClipPictures> files);
    ClipImages(const ClipImages&) = delete;
    ClipImages& operator=(const ClipImages&) = delete;

    /// Nothing for what is no picture, can't be read, or is being read now; so with the larger one.
    std::optional<Image> icon(const ClipboardEntry& entry);
    std::optional<Image> picture(const ClipboardEntry& entry);

    /// Calls `arrived` after a picture that was asked for has been read.
    Subscription onArrival(std::function<void()> arrived) {
        return arrivals_.add(std::move(arrived));
    }

private:
    struct Shelf {
        int pixels;
        std::size_t capacity;
        std::map<std::string, std::optional<Image>> images; ///< by file; nothing: not yet, or never
        std::deque<std::string> order;                      ///< of asking, the oldest first
    };

    std::optional<Image> from(const std::shared_ptr<Shelf>& shelf, const ClipboardEntry& entry);

    WorkQueues& work_;
    std::shared_ptr<const ClipPictures> files_;
    std::shared_ptr<Shelf> icons_;
    std::shared_ptr<Shelf> pictures_;
    Observers<> arrivals_;
    std::shared_ptr<char> alive_ = std::make_shared<char>(); ///< what is under way ends with it
};

} // namespace tessarine
