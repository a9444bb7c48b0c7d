#include "launcherapp/clipboard/ClipExamination.h"

#include "LauncherCore/clipboard/ClipIdentity.h"
#include "LauncherCore/text/Folding.h"
#include "launcherapp/clipboard/PasteboardTypes.h"
#include "launcherapp/platform/WorkQueues.h"

#include <fmt/ranges.h>

#include <utility>

namespace tessarine {

namespace {

using Outcome = PasteboardReading::Outcome;

constexpr std::size_t largestPicture = std::size_t{256} << 20; ///< bytes, as offered

} // namespace

ClipExamination::ClipExamination(Services services,
                                 Change change,
                                 std::function<void(Result&&)> ended)
    : services_(std::move(services)), change_(std::move(change)), ended_(std::move(ended)) {
    services_.board.offer(
        [this, alive = std::weak_ptr(alive_)](const std::optional<PasteboardOffer>& offer) {
            if (!alive.expired())
                judge(offer);
        });
}

/// Whoever is told may destroy this.
void ClipExamination::end(Result&& result) {
    const auto ended = std::exchange(ended_, nullptr);
    alive_.reset();
    ended(std::move(result));
}

bool ClipExamination::isDroppedRemote(ClipKind kind) const {
    return isRemote_ && ClipSkips::dropsRemote(kind, change_.circumstances);
}

void ClipExamination::skipRemote() {
    end(ClipSkip{.reason = ClipSkip::Reason::remote, .line = {}});
}

void ClipExamination::judge(const std::optional<PasteboardOffer>& offer) {
    if (!offer)
        return end(Nothing{.problem = "its owner did not tell what it is"});
    if (offer->count != change_.count)
        return end(Nothing{}); // a newer copy, which the next poll notices
    types_ = offer->types;
    isRemote_ = PasteboardTypes::isRemote(types_);
    change_.isTakeOver = ClipTakeOver::isOne(*offer);
    auto skip = ClipSkips::beforeReading(types_, change_.circumstances);
    if (!skip)
        skip = ClipTakeOver::skipped(*offer, change_.before);
    if (!types_.empty())
        judged_ = {.count = change_.count,
                   .skipped = skip ? std::optional(skip->reason) : std::nullopt};
    if (skip)
        return end(*std::move(skip));
    for (const auto& type : change_.unusable)
        std::erase(types_, type);
    readFiles();
}

void ClipExamination::read(const std::string& type,
                           std::size_t limitBytes,
                           std::function<void(PasteboardReading)> done) {
    services_.board.read(
        change_.count,
        type,
        limitBytes,
        [this, alive = std::weak_ptr(alive_), done = std::move(done)](PasteboardReading reading) {
            if (alive.expired())
                return;
            if (reading.outcome == Outcome::failed)
                problem_ = reading.problem;
            // What was read may be of a newer copy already, which nobody has judged: a secret.
            else if (services_.board.changeCount() != change_.count)
                return end(Nothing{});
            done(std::move(reading));
        });
}

ClipboardEntry::Copy ClipExamination::copy(bool isRemote) const {
    ClipboardEntry::Copy copy;
    copy.at = change_.at;
    if (isRemote)
        copy.fromOtherDevice = true;
    else
        copy.sourceApp = change_.front.name;
    return copy;
}

void ClipExamination::readFiles() {
    const auto type = PasteboardTypes::filesType(types_);
    if (!type)
        return readText();
    read(*type, ClipSkips::fileListLimitBytes, [this, type = *type](PasteboardReading reading) {
        // Only a list that was read and names no file makes the text beside it the copy.
        if (reading.outcome == Outcome::tooLarge)
            return end(ClipSkips::tooLongFileList());
        if (reading.outcome == Outcome::failed)
            return end(Nothing{.problem = problem_});
        takeFiles(std::move(reading.bytes), type);
    });
}

/// A list of many thousand files takes as long as a long text.
void ClipExamination::takeFiles(std::string bytes, const std::string& type) {
    const auto held = std::make_shared<std::string>(std::move(bytes));
    services_.work.run(
        WorkPriority::userInitiated,
        [held, entry = copy(isRemote_)]() mutable -> std::optional<ClipboardEntry> {
            const auto paths = PasteboardTypes::paths(*held);
            if (paths.empty())
                return std::nullopt;
            entry.kind = ClipKind::file;
            entry.text = ClipText(fmt::format("{}", fmt::join(paths, "\n")));
            entry.id = ClipIdentity::ofFiles(entry.text.string());
            return ClipboardEntry::make(std::move(entry));
        },
        [this, alive = std::weak_ptr(alive_), held, type](std::optional<ClipboardEntry> entry) {
            if (alive.expired())
                return;
            if (!entry && !PasteboardTypes::textType(types_) &&
                !PasteboardTypes::pictureType(types_))
                return takeText(std::move(*held), type); // addresses of the web alone
            if (!entry)
                return readText();
            if (isDroppedRemote(ClipKind::file))
                return skipRemote();
            end(*std::move(entry));
        });
}

void ClipExamination::readText() {
    const auto type = PasteboardTypes::textType(types_);
    if (!type)
        return readPicture();
    const auto limit = ClipSkips::textLimitBytes(change_.circumstances.maxCharacters);
    read(*type, limit, [this, type = *type](PasteboardReading reading) {
        if (reading.outcome == Outcome::tooLarge)
            return end(ClipSkips::tooManyBytes(change_.circumstances.maxCharacters));
        if (reading.bytes.empty())
            return readPicture();
        takeText(std::move(reading.bytes), type);
    });
}

/// A text of millions of characters takes a while to be counted, folded and digested.
void ClipExamination::takeText(std::string bytes, const std::string& type) {
    services_.work.run(
        WorkPriority::userInitiated,
        [bytes = std::make_shared<std::string>(std::move(bytes)),
         type,
         entry = copy(isRemote_)]() mutable -> std::optional<ClipboardEntry> {
            auto text = PasteboardTypes::text(type, std::move(*bytes));
            if (Folding::trimmed(text).empty())
                return std::nullopt;
            entry.text = ClipText(std::move(text));
            entry.id = ClipIdentity::ofText(entry.text.string());
            return ClipboardEntry::make(std::move(entry));
        },
        [this, alive = std::weak_ptr(alive_)](std::optional<ClipboardEntry> entry) {
            if (alive.expired())
                return;
            if (!entry)
                return readPicture();
            if (isDroppedRemote(ClipKind::text))
                return skipRemote();
            if (auto skip = ClipSkips::tooManyCharacters(entry->characterCount(),
                                                         change_.circumstances.maxCharacters))
                return end(*std::move(skip));
            end(*std::move(entry));
        });
}

void ClipExamination::readPicture() {
    const auto type = PasteboardTypes::pictureType(types_);
    if (!type)
        return end(Nothing{.problem = problem_});
    if (isDroppedRemote(ClipKind::image))
        return skipRemote();
    read(*type, largestPicture, [this, type = *type](PasteboardReading reading) {
        if (reading.outcome == Outcome::tooLarge)
            return end(Nothing{.problem = "a picture is larger than may be read"});
        if (reading.bytes.empty())
            return end(Nothing{.problem = problem_});
        end(Picture{.bytes = std::move(reading.bytes), .type = type, .isRemote = isRemote_});
    });
}

} // namespace tessarine
