#include "LauncherCore/clipboard/ClipGroupsRuntime.h"

#include "LauncherCore/text/Folding.h"

#include <algorithm>
#include <cstdint>
#include <mutex>
#include <unordered_map>
#include <utility>

namespace tessarine {

namespace {

/// Of what is remembered. Many times the clippings that are kept; beyond it everything is forgotten
/// and asked again.
constexpr std::size_t mostRemembered = 8192;

struct Hash {
    using is_transparent = void;

    std::size_t operator()(std::string_view text) const {
        return std::hash<std::string_view>{}(text);
    }
};

template <typename Value>
using Table = std::unordered_map<std::string, Value, Hash, std::equal_to<>>;

template <typename Value> void remember(Table<Value>& table, std::string key, Value value) {
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

    struct FileAnswer {
        ClipFileFact fact;
        double at = 0;
    };

    struct Contents {
        std::shared_ptr<const ClipGroups> current = std::make_shared<const ClipGroups>();
        bool readsAFile = false; ///< any of them does
        double pasteTrackingSince = 0;
        Table<Claim> claims;     ///< by the clipping's id
        Table<FileAnswer> files; ///< by path, NUL and needle
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
    Table<State::Claim> old;
    state_->with([&](State::Contents& its) {
        its.current.swap(next);
        its.readsAFile = readsAFile;
        its.claims.swap(old);
        ++its.generation;
    });
}

double ClipGroupsRuntime::pasteTrackingSince() const {
    return state_->with([](const State::Contents& its) { return its.pasteTrackingSince; });
}

void ClipGroupsRuntime::setPasteTrackingSince(double since) {
    state_->with([&](State::Contents& its) { its.pasteTrackingSince = since; });
}

std::shared_ptr<const ClipGroup> ClipGroupsRuntime::group(const ClipboardEntry& entry) {
    const double now = now_();

    struct Asked {
        std::optional<State::Claim> known;
        std::shared_ptr<const ClipGroups> groups;
        double pasteTrackingSince = 0;
        std::uint64_t generation = 0;
    };

    const auto asked = state_->with([&](const State::Contents& its) -> Asked {
        const auto found = its.claims.find(std::string_view(entry.id));
        if (found != its.claims.end() && (!its.readsAFile || isFresh(found->second.at, now)))
            return {.known = found->second};
        return {.groups = its.current,
                .pasteTrackingSince = its.pasteTrackingSince,
                .generation = its.generation};
    });
    if (asked.known)
        return asked.known->group;

    const ClipFacts facts{
        .file = [this](const std::string& path,
                       const std::optional<std::string>& needle) { return fileFact(path, needle); },
        .pasteTrackingSince = asked.pasteTrackingSince};
    const auto* match = asked.groups->match(entry, facts);
    State::Claim claim{.at = now};
    if (match) // lives as long as all the groups do
        claim.group = std::shared_ptr<const ClipGroup>(asked.groups, match);
    state_->with([&](State::Contents& its) {
        if (its.generation == asked.generation)
            remember(its.claims, entry.id, claim);
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

ClipFileFact ClipGroupsRuntime::fileFact(const std::string& path,
                                         const std::optional<std::string>& needle) {
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
        return *asked.known;

    const auto beginning = fileReader_(path);
    ClipFileFact fact{.exists = beginning.has_value()};
    if (beginning && needle) {
        const auto text =
            Folding::repairedUtf8(std::string_view(*beginning).substr(0, needleBytes));
        fact.hasNeedle = text.find(*needle) != std::string::npos;
    }
    state_->with([&](State::Contents& its) {
        if (its.generation == asked.generation)
            remember(its.files, std::move(key), State::FileAnswer{.fact = fact, .at = now});
    });
    return fact;
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
        its.files.clear();
        ++its.generation;
    });
}

} // namespace tessarine
