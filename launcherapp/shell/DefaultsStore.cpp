#include "launcherapp/shell/DefaultsStore.h"

#include "launcherapp/operations/Diagnostics.h"

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

} // namespace

struct DefaultsStore::Contents {
    Json object = Json::object();
    std::string text; ///< as it was read
    mutable std::set<std::string, std::less<>> unreadable =
        {}; ///< keys that hold what no reader takes
};

DefaultsStore::DefaultsStore(StateFile file, Diagnostics& diagnostics)
    : file_(std::move(file)), contents_(std::make_unique<Contents>()) {
    auto text = file_.load();
    if (!text)
        return;
    auto parsed = Json::parse(*text, nullptr, false);
    if (parsed.is_object()) {
        contents_->object = std::move(parsed);
        contents_->text = *std::move(text);
        return;
    }
    diagnostics.log(fmt::format(
        "preferences: {} is no JSON object; the defaults count until it is mended", file_.path()));
    file_.markDamaged(*std::move(text));
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
    // What the user wrote there by hand counts for nothing, but is not to be lost unseen.
    if (contents_->unreadable.erase(std::string(key)) > 0 && !contents_->text.empty())
        file_.markDamaged(std::exchange(contents_->text, {}));
    contents_->object[std::string(key)] =
        std::visit([](const auto& held) { return Json(held); }, value);
    save();
}

void DefaultsStore::remove(std::string_view key) {
    if (contents_->object.erase(std::string(key)) > 0)
        save();
}

void DefaultsStore::save() {
    file_.save(contents_->object.dump(2, ' ', false, Json::error_handler_t::replace) + "\n");
}

} // namespace tessarine
