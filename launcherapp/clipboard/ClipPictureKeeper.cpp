#include "launcherapp/clipboard/ClipPictureKeeper.h"

#include "LauncherCore/clipboard/ClipboardHistory.h"
#include "LauncherCore/text/Printable.h"
#include "launcherapp/operations/Diagnostics.h"
#include "launcherapp/platform/MainQueue.h"
#include "launcherapp/platform/WorkQueues.h"

#include <utility>

namespace tessarine {

namespace {

using Names = ClipPictureKeeper::Names;

Names named(const std::vector<ClipboardEntry>& entries) {
    Names names;
    for (const auto& entry : entries) {
        for (const auto& name : {entry.imageFile, entry.fullFile}) {
            if (name)
                names.insert(*name);
        }
    }
    return names;
}

Names without(Names names, const Names& others) {
    std::erase_if(names, [&](const std::string& name) { return others.contains(name); });
    return names;
}

} // namespace

Names ClipPictureKeeper::unnamed(const ClipboardHistory& history,
                                 const std::vector<ClipboardEntry>& dropped) {
    auto names = named(dropped);
    return names.empty() ? names : without(std::move(names), named(history.entries));
}

ClipPictureKeeper::ClipPictureKeeper(Services services, const ClipboardHistory& history)
    : services_(std::move(services)), files_(services_.work.serial("clip-pictures")),
      history_(history) {}

void ClipPictureKeeper::keep(std::string bytes,
                             std::function<void(std::optional<ClipPictures::Kept>)> done) {
    ++keeping_;
    auto finished = [this, alive = std::weak_ptr(alive_), done = std::move(done)](
                        std::optional<ClipPictures::Kept> kept) {
        if (alive.expired())
            return;
        if (kept && kept->problem)
            services_.diagnostics.log("clipboard: a picture was not kept whole, " +
                                      Printable::line(*kept->problem));
        done(std::move(kept));
        if (!alive.expired())
            isKept();
    };
    files_.submit([&queue = services_.queue,
                   pictures = services_.pictures,
                   isOver = isOver_,
                   bytes = std::make_shared<std::string>(std::move(bytes)),
                   finished = std::move(finished)] {
        const auto own = std::move(*bytes); // freed here, as that takes time too
        if (!*isOver)
            queue.post([finished, kept = pictures->keep(own)] { finished(kept); });
    });
}

void ClipPictureKeeper::isKept() {
    if (--keeping_ > 0)
        return;
    remove(std::exchange(removable_, {}));
    if (const auto document = std::exchange(sweepsLater_, std::nullopt))
        sweep(*document);
}

void ClipPictureKeeper::discard(const ClipPictures::Kept& kept) {
    Names names;
    for (const auto& name : {kept.imageFile, kept.fullFile}) {
        if (name)
            names.insert(*name);
    }
    remove(without(std::move(names), dropped_)); // those go with the document that drops them
}

std::size_t ClipPictureKeeper::drop(const std::vector<ClipboardEntry>& dropped) {
    auto names = unnamed(history_, dropped);
    const auto count = names.size();
    dropped_.merge(names);
    return count;
}

void ClipPictureKeeper::documentSaved(const Names& dropped) {
    dropped_ = without(std::move(dropped_), dropped);
    remove(dropped);
}

void ClipPictureKeeper::remove(Names names) {
    if (names.empty())
        return;
    if (keeping_ > 0) {
        removable_.merge(names);
        return;
    }
    files_.submit([pictures = services_.pictures,
                   names = without(std::move(names), named(history_.entries))] {
        for (const auto& name : names)
            pictures->remove(name);
    });
}

void ClipPictureKeeper::removeLeftovers() {
    files_.submit([pictures = services_.pictures] { pictures->removeLeftovers(); });
}

void ClipPictureKeeper::sweep(const std::string& document) {
    if (keeping_ > 0) {
        sweepsLater_ = document;
        return;
    }
    auto spared = named(history_.entries);
    spared.insert(dropped_.begin(), dropped_.end()); // the document on disk may name them
    files_.submit([pictures = services_.pictures, spared = std::move(spared), document] {
        pictures->sweep(spared, document);
    });
}

} // namespace tessarine
