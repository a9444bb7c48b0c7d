#include "LauncherCore/clipboard/ClipGroupsRuntime.h"

#include "LauncherCore/text/Folding.h"
#include "LauncherCore/text/TextTable.h"

#include <algorithm>
#include <cstdint>
#include <mutex>
#include <utility>
#include <vector>

namespace tessarine {

namespace {

/// Of what is remembered. Many times the clippings that are kept; beyond it everything is forgotten
/// and asked again.
constexpr std::size_t mostRemembered = 8192;

template <typename Value> void remember(TextTable<Value>& table, std::string key, Value value) {
    if (table.size() >= mostRemembered)
        table.clear();
    table.insert_or_assign(std::move(key), std::move(value));
}

/// A clock that was set back leaves answers of the future, which would stand for long.
bool isFresh(double at, double now) {
    const double age = now - at;
    return age >= 0 && age < ClipGroupsRuntime::fileFactTTL;
}

} // namespace

/// What is behind the lock, with the one way to it.
struct ClipGroupsRuntime::State {
    struct Claim {
        std::shared_ptr<const ClipGroup> group; ///< null: none claims it
        double at = 0;
    };

    /// Of the first groups, as far as they were asked.
    using Verdicts = std::vector<ClipMatcher::Verdict>;

    struct FileAnswer {
        ClipFileFact fact;
        double at = 0;
    };

    struct Contents {
        std::shared_ptr<const ClipGroups> current = std::make_shared<const ClipGroups>();
        bool readsAFile = false; ///< any of them does
        double pasteTrackingSince = 0;
        TextTable<Claim> claims; ///< by the clipping's id
        /// By the clipping's id. A rule that reads a file makes all claims age, and is no reason to
        /// search the texts again.
        TextTable<std::shared_ptr<const Verdicts>> verdicts;
        TextTable<FileAnswer> files; ///< by path, NUL and needle
        /// Grows with each change of the groups and with all that is forgotten: an answer that was
        /// begun before is not remembered.
        std::uint64_t generation = 0;
    };

    template <typename Use> auto with(Use use) {
        const std::lock_guard lock(mutex_);
        return use(contents_);
    }

private:
    std::mutex mutex_; ///< held for the length of a look-up or a store alone
    Contents contents_;
};

struct ClipGroupsRuntime::FoundFact {
    ClipFileFact fact;
    bool isSettled = true; ///< and may be remembered
};

ClipGroupsRuntime::ClipGroupsRuntime(std::function<double()> now, FileReader fileReader)
    : now_(std::move(now)), fileReader_(std::move(fileReader)), state_(std::make_unique<State>()) {}

ClipGroupsRuntime::~ClipGroupsRuntime() = default;

std::shared_ptr<const ClipGroups> ClipGroupsRuntime::current() const {
    return state_->with([](const State::Contents& its) { return its.current; });
}

void ClipGroupsRuntime::setCurrent(ClipGroups groups) {
    const bool readsAFile = std::ranges::any_of(
        groups.groups, [](const ClipGroup& group) { return group.match.readsAFile(); });
    auto next = std::make_shared<const ClipGroups>(std::move(groups));
    // What was in force goes when the lock is free again.
    State::Contents old;
    state_->with([&](State::Contents& its) {
        its.current.swap(next);
        its.readsAFile = readsAFile;
        its.claims.swap(old.claims);
        its.verdicts.swap(old.verdicts);
        ++its.generation;
    });
}

double ClipGroupsRuntime::pasteTrackingSince() const {
    return state_->with([](const State::Contents& its) { return its.pasteTrackingSince; });
}

void ClipGroupsRuntime::setPasteTrackingSince(double since) {
    state_->with([&](State::Contents& its) {
        its.pasteTrackingSince = since;
        its.claims.clear();
        ++its.generation;
    });
}

std::shared_ptr<const ClipGroup> ClipGroupsRuntime::group(const ClipboardEntry& entry) {
    const double now = now_();

    struct Asked {
        std::optional<State::Claim> known;
        std::shared_ptr<const ClipGroups> groups;
        std::shared_ptr<const State::Verdicts> verdicts;
        double pasteTrackingSince = 0;
        std::uint64_t generation = 0;
    };

    const auto asked = state_->with([&](const State::Contents& its) -> Asked {
        const auto found = its.claims.find(std::string_view(entry.id));
        if (found != its.claims.end() && (!its.readsAFile || isFresh(found->second.at, now)))
            return {.known = found->second};
        const auto verdicts = its.verdicts.find(std::string_view(entry.id));
        return {.groups = its.current,
                .verdicts = verdicts == its.verdicts.end() ? nullptr : verdicts->second,
                .pasteTrackingSince = its.pasteTrackingSince,
                .generation = its.generation};
    });
    if (asked.known)
        return asked.known->group;

    bool isSettled = true;
    const ClipFacts facts{
        .file = [&](const std::string& path,
                    const std::optional<std::string>& needle) -> std::optional<ClipFileFact> {
            const auto found = findFact(path, needle);
            isSettled = isSettled && found && found->isSettled;
            return found ? std::optional(found->fact) : std::nullopt;
        },
        .pasteTrackingSince = asked.pasteTrackingSince};
    auto verdicts = asked.verdicts ? *asked.verdicts : State::Verdicts();
    const auto known = verdicts.size();
    const auto& groups = asked.groups->groups;
    const auto claiming =
        std::ranges::find_if(groups, [&, next = std::size_t{0}](auto& group) mutable {
            if (next == verdicts.size())
                verdicts.push_back(group.match.verdict(entry));
            return group.match.matches(verdicts[next++], entry, facts);
        });
    State::Claim claim{.at = now};
    if (claiming != groups.end()) // lives as long as all the groups do
        claim.group = std::shared_ptr<const ClipGroup>(asked.groups, &*claiming);
    auto longer = verdicts.size() > known
                      ? std::make_shared<const State::Verdicts>(std::move(verdicts))
                      : nullptr;
    state_->with([&](State::Contents& its) {
        if (its.generation != asked.generation)
            return;
        if (isSettled)
            remember(its.claims, entry.id, claim);
        if (longer)
            remember(its.verdicts, entry.id, std::move(longer));
    });
    return claim.group;
}

ClipFilterKey ClipGroupsRuntime::filterKey(const ClipboardEntry& entry) {
    const auto claiming = group(entry);
    return claiming ? ClipFilterKey::group(claiming->name)
                    : ClipFilterKey::builtin(entry.category());
}

std::string ClipGroupsRuntime::symbol(const ClipboardEntry& entry) {
    const auto claiming = group(entry);
    return claiming ? claiming->symbol : std::string(ClipKinds::symbol(entry.category()));
}

std::optional<ClipFileFact> ClipGroupsRuntime::fileFact(const std::string& path,
                                                        const std::optional<std::string>& needle) {
    const auto found = findFact(path, needle);
    return found ? std::optional(found->fact) : std::nullopt;
}

std::optional<ClipGroupsRuntime::FoundFact>
ClipGroupsRuntime::findFact(const std::string& path, const std::optional<std::string>& needle) {
    auto key = path + '\0' + needle.value_or(std::string());
    const double now = now_();

    struct Asked {
        std::optional<ClipFileFact> known;
        std::uint64_t generation = 0;
    };

    const auto asked = state_->with([&](const State::Contents& its) -> Asked {
        const auto found = its.files.find(key);
        if (found != its.files.end() && isFresh(found->second.at, now))
            return {.known = found->second.fact};
        return {.generation = its.generation};
    });
    if (asked.known)
        return FoundFact{.fact = *asked.known};

    const auto beginning = fileReader_(path);
    if (!beginning)
        return std::nullopt;
    ClipFileFact fact{.exists = beginning->bytes.has_value()};
    if (beginning->bytes && needle) {
        const auto text =
            Folding::repairedUtf8(std::string_view(*beginning->bytes).substr(0, needleBytes));
        fact.hasNeedle = text.find(*needle) != std::string::npos;
    }
    if (beginning->isOld)
        return FoundFact{.fact = fact, .isSettled = false};
    state_->with([&](State::Contents& its) {
        if (its.generation == asked.generation)
            remember(its.files, std::move(key), State::FileAnswer{.fact = fact, .at = now});
    });
    return FoundFact{.fact = fact};
}

void ClipGroupsRuntime::forget(std::string_view id) {
    state_->with([&](State::Contents& its) {
        if (const auto found = its.claims.find(id); found != its.claims.end())
            its.claims.erase(found);
        ++its.generation;
    });
}

void ClipGroupsRuntime::forgetAll() {
    state_->with([](State::Contents& its) {
        its.claims.clear();
        its.verdicts.clear();
        its.files.clear();
        ++its.generation;
    });
}

} // namespace tessarine
