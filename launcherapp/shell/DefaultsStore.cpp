#include "launcherapp/shell/DefaultsStore.h"

#include "launcherapp/operations/Diagnostics.h"
#include "launcherapp/platform/DirectoryWatcher.h"
#include "launcherapp/platform/MainQueue.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <functional>
#include <set>
#include <type_traits>
#include <utility>

namespace tessarine {

namespace {

using Json = nlohmann::ordered_json;

template <typename T> struct IsMap : std::false_type {};

template <typename T> struct IsMap<std::map<std::string, T>> : std::true_type {};

template <typename T> struct IsList : std::false_type {};

template <typename T> struct IsList<std::vector<T>> : std::true_type {};

/// The value if the JSON is exactly of that type, with every element of it.
template <typename T> std::optional<T> read(const Json& json) {
    if constexpr (IsList<T>::value) {
        if (!json.is_array())
            return std::nullopt;
        T list;
        for (const auto& element : json) {
            auto value = read<typename T::value_type>(element);
            if (!value)
                return std::nullopt;
            list.push_back(*std::move(value));
        }
        return list;
    } else if constexpr (IsMap<T>::value) {
        if (!json.is_object())
            return std::nullopt;
        T map;
        for (const auto& [key, element] : json.items()) {
            auto value = read<typename T::mapped_type>(element);
            if (!value)
                return std::nullopt;
            map.emplace(key, *std::move(value));
        }
        return map;
    } else {
        const bool fits = std::is_same_v<T, bool>           ? json.is_boolean()
                          : std::is_same_v<T, std::int64_t> ? json.is_number_integer()
                          : std::is_same_v<T, double>       ? json.is_number()
                                                            : json.is_string();
        if (!fits)
            return std::nullopt;
        return json.get<T>();
    }
}

/// A change of this program's that is not on disk yet.
struct Change {
    std::optional<Json> value; ///< nothing: the key is taken away
    bool losesOld = false;     ///< what the user wrote there is in a form that nobody reads
    std::uint64_t number = 0;  ///< later ones are greater
};

using Changes = std::map<std::string, Change, std::less<>>;

/// Nothing for a text that is no JSON object.
std::optional<Json> parsed(const std::string& text) {
    auto json = Json::parse(text, nullptr, false);
    return json.is_object() ? std::optional(std::move(json)) : std::nullopt;
}

std::string written(const Json& object) {
    return object.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

/// The text on disk with the changes in it. Where there is none that is understood, all that this
/// program knows takes its place.
StateFile::Rewritten
changedText(const std::optional<std::string>& onDisk, const Changes& changes, const Json& known) {
    auto object = onDisk ? parsed(*onDisk) : std::nullopt;
    if (!object)
        return {.text = written(known), .losesOld = onDisk.has_value()};
    bool losesOld = false;
    for (const auto& [key, change] : changes) {
        losesOld = losesOld || change.losesOld;
        if (change.value)
            (*object)[key] = *change.value;
        else
            object->erase(key);
    }
    return {.text = written(*object), .losesOld = losesOld};
}

/// Whether the two objects hold the same under the key, or both nothing.
bool agree(const Json& one, const Json& other, const std::string& key) {
    const auto inOne = one.find(key);
    const auto inOther = other.find(key);
    if (inOne == one.end() || inOther == other.end())
        return inOne == one.end() && inOther == other.end();
    return *inOne == *inOther;
}

/// From the first change of the file until it is read: an editor that writes in steps is done then.
constexpr Seconds settling{0.2};
constexpr Seconds latency{0.25}; ///< between reports of the folder's changes

} // namespace

struct DefaultsStore::Contents {
    Json object = Json::object(); ///< what counts
    Json onDisk = Json::object(); ///< what the file held when it was last read or written
    Changes changes = {};         ///< those under way, or whose save failed
    std::uint64_t lastChange = 0;
    std::optional<std::string> refused = {}; ///< the text that was told to be no JSON object
    mutable std::set<std::string, std::less<>> unreadable =
        {}; ///< keys that hold what no reader takes

    std::vector<std::string> adopt(Json found);
};

/// Takes over what others changed in the file since it was last seen, and gives the keys that hold
/// something else now. Changes of this program's that are still under way are newer.
std::vector<std::string> DefaultsStore::Contents::adopt(Json found) {
    std::set<std::string> keys;
    for (const auto* side : {&onDisk, &found}) {
        for (const auto& [key, value] : side->items())
            keys.insert(key);
    }
    std::erase_if(keys, [&](const std::string& key) {
        return changes.contains(key) || agree(onDisk, found, key) || agree(object, found, key);
    });
    for (const auto& key : keys) {
        unreadable.erase(key);
        if (const auto value = found.find(key); value != found.end())
            object[key] = *value;
        else
            object.erase(key);
    }
    onDisk = std::move(found);
    refused.reset();
    return {keys.begin(), keys.end()};
}

DefaultsStore::DefaultsStore(MainQueue& queue, StateFile file, Diagnostics& diagnostics)
    : queue_(queue), file_(std::move(file)), diagnostics_(diagnostics),
      contents_(std::make_unique<Contents>()) {
    const auto text = file_.load();
    if (!text)
        return;
    if (auto object = parsed(*text)) {
        contents_->onDisk = *object;
        contents_->object = *std::move(object);
        return;
    }
    contents_->refused = text;
    diagnostics_.log(fmt::format(
        "preferences: {} is no JSON object; the defaults count until it is mended", file_.path()));
}

DefaultsStore::~DefaultsStore() = default;

template <typename T> std::optional<T> DefaultsStore::value(std::string_view key) const {
    const auto found = contents_->object.find(key);
    if (found == contents_->object.end())
        return std::nullopt;
    auto result = read<T>(*found);
    if (!result)
        contents_->unreadable.emplace(key);
    return result;
}

template std::optional<bool> DefaultsStore::value(std::string_view) const;
template std::optional<std::int64_t> DefaultsStore::value(std::string_view) const;
template std::optional<double> DefaultsStore::value(std::string_view) const;
template std::optional<std::string> DefaultsStore::value(std::string_view) const;
template std::optional<std::vector<std::string>> DefaultsStore::value(std::string_view) const;
template std::optional<std::vector<double>> DefaultsStore::value(std::string_view) const;
template std::optional<std::map<std::string, std::string>>
    DefaultsStore::value(std::string_view) const;
template std::optional<std::map<std::string, bool>> DefaultsStore::value(std::string_view) const;
template std::optional<std::map<std::string, std::int64_t>>
    DefaultsStore::value(std::string_view) const;

void DefaultsStore::set(std::string_view key, const DefaultsValue& value) {
    requireMainThread(queue_);
    contents_->object[std::string(key)] =
        std::visit([](const auto& held) { return Json(held); }, value);
    change(key);
}

void DefaultsStore::remove(std::string_view key) {
    requireMainThread(queue_);
    if (contents_->object.erase(std::string(key)) > 0)
        change(key);
}

/// Brings what the key holds now to the disk.
void DefaultsStore::change(std::string_view key) {
    auto& change = contents_->changes[std::string(key)];
    const auto held = contents_->object.find(key);
    change.value = held == contents_->object.end() ? std::nullopt : std::optional<Json>(*held);
    // What the user wrote there by hand counts for nothing, but is not to be lost unseen.
    change.losesOld = contents_->unreadable.erase(std::string(key)) > 0 || change.losesOld;
    change.number = ++contents_->lastChange;
    save();
}

void DefaultsStore::save() {
    file_.rewrite(
        queue_,
        [changes = contents_->changes,
         known = contents_->object](const std::optional<std::string>& onDisk) {
            return changedText(onDisk, changes, known);
        },
        [this, alive = std::weak_ptr(alive_), upTo = contents_->lastChange](
            const std::optional<std::string>& text) {
            if (text && !alive.expired())
                saved(*text, upTo);
        });
}

void DefaultsStore::saved(const std::string& text, std::uint64_t upTo) {
    std::erase_if(contents_->changes,
                  [upTo](const auto& entry) { return entry.second.number <= upTo; });
    // The save may have found an edit that no look has seen yet.
    take(text);
}

void DefaultsStore::follow(DirectoryWatcher& watcher) {
    requireMainThread(queue_);
    watch_ =
        watcher.watch(file_.folders(), latency, [this](const DirectoryChanges&) { lookSoon(); });
}

Subscription DefaultsStore::onEdit(std::function<void(const std::vector<std::string>&)> edited) {
    return observers_.add(std::move(edited));
}

void DefaultsStore::lookSoon() {
    if (std::exchange(looksSoon_, true))
        return;
    queue_.postAfter(settling, [this, alive = std::weak_ptr(alive_)] {
        if (!alive.expired())
            look();
    });
}

void DefaultsStore::look() {
    looksSoon_ = false;
    file_.readLater(queue_,
                    [this, alive = std::weak_ptr(alive_)](const std::optional<std::string>& text) {
                        if (!alive.expired())
                            take(text);
                    });
}

void DefaultsStore::take(const std::optional<std::string>& text) {
    auto object = text ? parsed(*text) : Json::object();
    if (!object) {
        if (std::exchange(contents_->refused, text) != text)
            diagnostics_.log(fmt::format(
                "preferences: {} is no JSON object; what stood before counts until it is mended",
                file_.path()));
        return;
    }
    if (const auto edited = contents_->adopt(*std::move(object)); !edited.empty())
        observers_.tell(edited);
}

} // namespace tessarine
