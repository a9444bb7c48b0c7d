#pragma once

#include "LauncherCore/clipboard/ClipRetention.h"
#include "LauncherCore/commands/HotkeyBinding.h"
#include "launcherapp/shell/DefaultsStore.h"

#include <algorithm>
#include <array>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

namespace tessarine {

/// The stored words of an enumeration, in the order of its cases; specialised beside each.
template <typename Enum> struct StoredNames;

/// How a preference's value is stored. Reading gives nothing when what is stored is no such value.
template <typename T, typename = void> struct StoredForm {
    static DefaultsValue toStore(const T& value) { return value; }

    static std::optional<T> fromStore(const DefaultsStore& store, std::string_view key) {
        return store.value<T>(key);
    }
};

template <typename Enum> struct StoredForm<Enum, std::enable_if_t<std::is_enum_v<Enum>>> {
    static DefaultsValue toStore(Enum value) {
        return std::string(StoredNames<Enum>::names[static_cast<std::size_t>(value)]);
    }

    static std::optional<Enum> fromStore(const DefaultsStore& store, std::string_view key) {
        const auto name = store.value<std::string>(key);
        const auto& names = StoredNames<Enum>::names;
        const auto found = name ? std::ranges::find(names, *name) : names.end();
        if (found == names.end())
            return std::nullopt;
        return static_cast<Enum>(found - names.begin());
    }
};

template <> struct StoredForm<HotkeyBinding> {
    static DefaultsValue toStore(const HotkeyBinding& value);
    static std::optional<HotkeyBinding> fromStore(const DefaultsStore& store, std::string_view key);
};

template <> struct StoredForm<ClipRetention> {
    static DefaultsValue toStore(const ClipRetention& value);
    static std::optional<ClipRetention> fromStore(const DefaultsStore& store, std::string_view key);
};

/// What the preferences of one file have in common. Main thread only.
struct PreferenceGroup {
    DefaultsStore& store;
    std::function<void(std::string_view key)> changed = nullptr; ///< after each change
    /// By key: reads the stored value again, and says whether it is another one now.
    std::map<std::string_view, std::function<bool()>> rereads = {};
};

/// One setting: its default until the user sets it, and written through to the file at once. Main
/// thread only.
template <typename T> class Preference {
public:
    /// Reads the stored value.
    Preference(PreferenceGroup& group, std::string_view key, T byDefault)
        : group_(group), key_(key), byDefault_(std::move(byDefault)), value_(stored()) {
        group_.rereads.emplace(key_, [this] { return reread(); });
    }

    Preference(const Preference&) = delete;
    Preference& operator=(const Preference&) = delete;

    const T& operator()() const { return value_; }

    /// What holds while nothing is stored.
    const T& byDefault() const { return byDefault_; }

    std::string_view key() const { return key_; }

    void set(T value) {
        value_ = std::move(value);
        group_.store.set(key_, StoredForm<T>::toStore(value_));
        group_.changed(key_);
    }

    /// Changes what was read by `newer`, now and at each later reading: for a setting that an
    /// older version wrote in another way. The file keeps the old form until `set`.
    void readAs(std::function<T(const T& stored)> newer) {
        newer_ = std::move(newer);
        value_ = newer_(value_);
    }

private:
    T stored() const { return StoredForm<T>::fromStore(group_.store, key_).value_or(byDefault_); }

    bool reread() {
        auto value = newer_ ? newer_(stored()) : stored();
        if (value == value_)
            return false;
        value_ = std::move(value);
        return true;
    }

    PreferenceGroup& group_;
    std::string_view key_;
    T byDefault_;
    std::function<T(const T& stored)> newer_;
    T value_;
};

} // namespace tessarine
