#include "launcherapp/clipboard/ClipboardWatcher.h"

#include "LauncherCore/clipboard/ClipGroupsRuntime.h"
#include "LauncherCore/text/Printable.h"
#include "launcherapp/clipboard/ClipContents.h"
#include "launcherapp/clipboard/ClipboardStore.h"
#include "launcherapp/operations/Diagnostics.h"
#include "launcherapp/shell/Prefs.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

namespace tessarine {

namespace {

constexpr std::size_t bytesPerMegabyte = 1000000;

/// The change that the end of a program makes of the one that it had made.
std::uint64_t emptied(std::uint64_t count) {
    return count + 1;
}

/// The oldest paste that is marked, by its clipping's last use; nothing without one.
std::optional<double> oldestMarkedPaste(const ClipboardHistory& history) {
    std::optional<double> oldest;
    for (const auto& entry : history.entries) {
        if (entry.pasteCount() > 0 && (!oldest || entry.lastSeen < *oldest))
            oldest = entry.lastSeen;
    }
    return oldest;
}

} // namespace

ClipboardWatcher::ClipboardWatcher(Services services) : services_(std::move(services)) {}

ClipboardWatcher::~ClipboardWatcher() = default;

void ClipboardWatcher::start() {
    requireMainThread(services_.queue);
    if (run_)
        return;
    run_ = std::make_shared<char>();
    lastCount_ = services_.board.changeCount();
    settings_ = services_.prefs.onChange([this](std::string_view key) { settingChanged(key); });
    abandonments_ = services_.board.onAbandoned([this](std::uint64_t count) { abandoned(count); });
    abilities_ = services_.board.onAbilityChanged([this] { abilityChanged(); });
    if (services_.store.isLoaded())
        return begin();
    services_.store.load([this, run = std::weak_ptr(run_)] {
        if (!run.expired())
            begin();
    });
}

void ClipboardWatcher::stop() {
    requireMainThread(services_.queue);
    timer_.end();
    pruneTimer_.end();
    settings_.end();
    abandonments_.end();
    abilities_.end();
    examination_.reset();
    run_.reset();
    keptBytes_ = 0;
}

void ClipboardWatcher::begin() {
    noteWitness();
    services_.store.pruneNow();
    services_.store.sweepPictures();
    pruneTimer_ = services_.queue.every(
        pruneInterval, pruneTolerance, [this] { services_.store.pruneNow(); });
    watch();
}

/// A recorded paste is a witness that pastes were tracked at that time.
void ClipboardWatcher::noteWitness() {
    const auto oldest = oldestMarkedPaste(services_.store.history());
    auto& since = services_.prefs.clipPasteTrackingSince;
    if (!oldest || *oldest <= 0 || (since() != 0 && since() <= *oldest))
        return;
    since.set(*oldest);
    services_.groups.setPasteTrackingSince(*oldest);
    services_.groups.forgetAll();
}

void ClipboardWatcher::watch() {
    if (!services_.prefs.clipboardEnabled()) {
        services_.diagnostics.log("clipboard: not watching, Keep clipboard history is off");
        return;
    }
    if (const auto ability = services_.board.ability(); !ability.available) {
        services_.diagnostics.log("clipboard: not watching, " + ability.reason);
        return;
    }
    timer_ = services_.queue.every(pollInterval, pollTolerance, [this] { poll(); });
    services_.diagnostics.log("clipboard: watching the pasteboard every 0.5s; recording is on");
}

void ClipboardWatcher::settingChanged(std::string_view key) {
    if (key == services_.prefs.clipRetention.key() && services_.store.isLoaded())
        services_.store.pruneNow();
    if (key != services_.prefs.clipboardEnabled.key() ||
        services_.prefs.clipboardEnabled() == isWatching())
        return;
    // What was copied while nobody watched is not recorded, nor what is looked at right now.
    lastCount_ = services_.board.changeCount();
    timer_.end();
    examination_.reset();
    if (pruneTimer_.active()) // else it begins once the history is loaded
        watch();
}

/// What was copied while nothing could be seen is looked at once it can be, if it is still there.
void ClipboardWatcher::abilityChanged() {
    if (!pruneTimer_.active() || !services_.prefs.clipboardEnabled() ||
        services_.board.ability().available == isWatching())
        return;
    timer_.end();
    examination_.reset();
    watch();
}

// The resident cost of the feature: one integer a tick until something was copied.
void ClipboardWatcher::poll() {
    const auto count = services_.board.changeCount();
    if (count == lastCount_ || examination_ || keptBytes_ > mostKeptAtOnce)
        return;
    lastCount_ = count;
    if (std::exchange(ignoreNextChange_, false))
        return;
    clearings_ = services_.store.clearings();
    auto front = services_.front();
    auto circumstances = circumstancesOf(front);
    examine({.count = count,
             .at = services_.queue.now(),
             .front = std::move(front),
             .circumstances = std::move(circumstances),
             .before = lastJudged_});
}

void ClipboardWatcher::examine(ClipExamination::Change change) {
    examination_ = std::make_unique<ClipExamination>(
        ClipExamination::Services{.work = services_.work, .board = services_.board},
        std::move(change),
        [this](ClipExamination::Result&& result) { take(std::move(result)); });
}

/// What was no picture may be one in another of its types, as long as it lies there.
void ClipboardWatcher::examineWithout(ClipExamination::Change change, std::uint64_t clearings) {
    services_.diagnostics.log("clipboard: could not read a copy: its " +
                              Printable::line(change.unusable.back()) + " is no picture");
    if (!isWatching() || examination_ || lastCount_ != change.count || !isLatest(change.count))
        return;
    clearings_ = clearings;
    examine(std::move(change));
}

ClipSkips::Circumstances ClipboardWatcher::circumstancesOf(const ClipSource& front) const {
    const auto& prefs = services_.prefs;
    const auto& app = front.bundleID;
    return {.ignoresRemoteText = prefs.ignoreRemoteClipboard(),
            .ignoresRemoteFiles = prefs.ignoreRemoteClipboardFiles(),
            .ignoresRemoteImages = prefs.ignoreRemoteClipboardImages(),
            .ignoredApps = prefs.clipIgnoredApps(),
            .maxCharacters = prefs.clipMaxCharacters(),
            .frontApp = app,
            .isQuillet = app && services_.shouldSkipQuillet && services_.shouldSkipQuillet(*app)};
}

void ClipboardWatcher::take(ClipExamination::Result&& result) {
    if (const auto& judged = examination_->judged())
        lastJudged_ = judged;
    if (auto* const picture = std::get_if<ClipExamination::Picture>(&result)) {
        takePicture(std::move(*picture));
        examination_.reset();
        return;
    }
    const auto change = examination_->change();
    examination_.reset();
    if (auto* const entry = std::get_if<ClipboardEntry>(&result)) {
        if (clearings_ == services_.store.clearings())
            record(std::move(*entry), change);
    } else if (const auto* const skipped = std::get_if<ClipSkip>(&result)) {
        skip(*skipped);
    } else if (const auto& problem = std::get<ClipExamination::Nothing>(result).problem;
               !problem.empty()) {
        services_.diagnostics.log("clipboard: could not read a copy: " + Printable::line(problem));
    }
}

void ClipboardWatcher::takePicture(ClipExamination::Picture picture) {
    const auto bytes = picture.bytes.size();
    keptBytes_ += bytes;
    auto change = examination_->change();
    change.unusable.push_back(std::move(picture.type));
    services_.store.keepPicture(
        std::move(picture.bytes),
        [this,
         run = std::weak_ptr(run_),
         &store = services_.store,
         bytes,
         change = std::move(change),
         clearings = clearings_,
         copy =
             examination_->copy(picture.isRemote)](std::optional<ClipPictures::Kept> kept) mutable {
            if (!run.expired()) {
                keptBytes_ -= bytes;
                if (!kept)
                    examineWithout(std::move(change), clearings);
            }
            if (!kept)
                return;
            if (run.expired() || clearings != store.clearings())
                return store.discard(*kept);
            if (kept->tooLargeBytes)
                services_.diagnostics.log(
                    fmt::format("clipboard: image is {} MB, keeping the thumbnail only",
                                *kept->tooLargeBytes / bytesPerMegabyte));
            copy.id = kept->id;
            copy.kind = ClipKind::image;
            copy.text = ClipText(fmt::format("Image {}×{}", kept->width, kept->height));
            copy.imageFile = kept->imageFile;
            copy.fullFile = kept->fullFile;
            record(ClipboardEntry::make(std::move(copy)), change);
        });
}

void ClipboardWatcher::skip(const ClipSkip& skip) {
    ++skipped_[skip.reason];
    if (!skip.line.empty())
        services_.diagnostics.log(skip.line);
    changes_.tell();
}

void ClipboardWatcher::record(ClipboardEntry entry, const ClipExamination::Change& change) {
    // What somebody keeps of the newest copy is no new one.
    const bool isNew = !change.isTakeOver || !lastRecorded_ || lastRecorded_->id != entry.id;
    if (!lastRecorded_ ||
        lastRecorded_->count < change.count) // a picture may be slower than a text
        lastRecorded_ = {.count = change.count,
                         .id = entry.id,
                         .source = change.isTakeOver ? ClipSource() : change.front};
    if (isNew)
        services_.store.record(std::move(entry));
    restoreIfAbandoned();
}

std::optional<std::uint64_t> ClipboardWatcher::writeOwn(PasteboardContent content) {
    requireMainThread(services_.queue);
    const auto before = services_.board.changeCount();
    const auto count = services_.board.write(std::move(content));
    if (count == before)
        return std::nullopt;
    ignoreNextChange_ = true;
    lastCount_ = count;
    return count;
}

void ClipboardWatcher::whenOffered(std::uint64_t count, std::function<void(bool)> done) {
    requireMainThread(services_.queue);
    const auto finish = [count,
                         waiting = std::make_shared<std::function<void(bool)>>(std::move(done))](
                            const std::optional<PasteboardOffer>& offer) {
        if (const auto told = std::exchange(*waiting, nullptr))
            told(offer && offer->count == count);
    };
    services_.board.offer(finish);
    services_.queue.postAfter(longestWrite, [finish] { finish(std::nullopt); });
}

// What a program copied goes with it on this desktop. It is put back from the history, and only
// what is in there.

void ClipboardWatcher::abandoned(std::uint64_t count) {
    abandoned_ = count;
    restoreIfAbandoned();
}

/// Either comes first: the end of the program, or its copy in the history.
void ClipboardWatcher::restoreIfAbandoned() {
    if (!isWatching() || !lastRecorded_ || abandoned_ != lastRecorded_->count)
        return;
    const auto pause = services_.board.tellsEndFromEmptying() ? restorePause : endingPause;
    services_.queue.postAfter(pause, [this, run = std::weak_ptr(run_), count = *abandoned_] {
        if (!run.expired())
            restore(count);
    });
}

void ClipboardWatcher::restore(std::uint64_t count) {
    const auto* const entry = lastRecorded_->count == count
                                  ? services_.store.history().entry(lastRecorded_->id)
                                  : nullptr;
    if (!entry || services_.board.changeCount() != emptied(count))
        return;
    // A password that its program takes off the clipboard again must not come back.
    if (!services_.board.tellsEndFromEmptying() && !services_.hasEnded(lastRecorded_->source))
        return services_.diagnostics.log(
            "clipboard: what was copied last was taken off the pasteboard, and the program that "
            "was in front at the copy has not ended or is not known; it stays empty");
    auto whole = *entry;
    whole.imageFile.reset(); // a thumbnail in place of a picture would be another one
    ClipContents::make(
        whole,
        services_.work,
        services_.pictures,
        [this, run = std::weak_ptr(run_), count](std::optional<PasteboardContent> content) {
            if (run.expired() || !content || services_.board.changeCount() != emptied(count))
                return;
            // The one change that this makes is known, so the next that differs is a real one.
            const auto written = services_.board.write(*std::move(content));
            if (written == emptied(count))
                return; // it can't be put there any more
            lastCount_ = written;
            services_.diagnostics.log("clipboard: what was copied last was gone from the "
                                      "pasteboard; it is there again");
        });
}

} // namespace tessarine
