#pragma once

#include "launcherapp/clipboard/ClipPictures.h"

#include <atomic>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tessarine {

class Diagnostics;
class MainQueue;
class SerialQueue;
class WorkQueues;
struct ClipboardEntry;
struct ClipboardHistory;

/// Which picture files come and go with the history. A file goes only after the document that no
/// longer names it lies on disk, so that no clipping that comes back after a kill lacks its
/// picture, and never while a picture is on its way into the history: it may be the same one. All
/// that writes or deletes files stands in one line. Main thread only.
class ClipPictureKeeper {
public:
    struct Services {
        MainQueue& queue;
        WorkQueues& work;
        Diagnostics& diagnostics;
        std::shared_ptr<const ClipPictures> pictures;
    };

    using Names = ClipPictures::Names;

    /// The files of dropped entries that no entry of the history names. Pure; any thread.
    static Names unnamed(const ClipboardHistory& history,
                         const std::vector<ClipboardEntry>& dropped);

    /// `history` is what is kept, and outlives this.
    ClipPictureKeeper(Services services, const ClipboardHistory& history);

    /// Reads a copied picture and writes its files in the background; `done` gets nothing for what
    /// is no picture, and records it or lets it go.
    void keep(std::string bytes, std::function<void(std::optional<ClipPictures::Kept> kept)> done);

    /// Deletes the files of a picture that was kept and is not recorded after all.
    void discard(const ClipPictures::Kept& kept);

    /// Notes the files of dropped entries; gives how many of them no clipping names any more.
    std::size_t drop(const std::vector<ClipboardEntry>& dropped);

    /// What was noted and waits for the document to be saved.
    const Names& dropped() const { return dropped_; }

    /// A document that doesn't name these lies on disk: they go, unless a clipping has them again.
    void documentSaved(const Names& dropped);

    /// Deletes what killed saves of pictures left.
    void removeLeftovers();

    /// Deletes the pictures that nobody names; `document` is the path of the history's. Only for a
    /// history that was read whole: else it names too little.
    void sweep(const std::string& document);

    /// Pictures that wait to be kept are let go, for the end of the program.
    void end() { *isOver_ = true; }

private:
    void isKept();
    void remove(Names names);

    Services services_;
    SerialQueue& files_; ///< of all that writes or deletes pictures
    const ClipboardHistory& history_;
    int keeping_ = 0;                        ///< pictures under way: nothing is deleted meanwhile
    Names dropped_;                          ///< that the document on disk may name still
    Names removable_;                        ///< that it doesn't, once no picture is under way
    std::optional<std::string> sweepsLater_; ///< likewise, for this document
    std::shared_ptr<std::atomic<bool>> isOver_ = std::make_shared<std::atomic<bool>>(false);
    std::shared_ptr<char> alive_ = std::make_shared<char>(); ///< what is under way ends with it
};

} // namespace tessarine
