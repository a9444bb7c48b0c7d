#pragma once

#include "LauncherCore/clipboard/ClipRetention.h"
#include "LauncherCore/commands/HotkeyBinding.h"
#include "launcherapp/shell/DefaultsStore.h"

#include <algorithm>
#include <array>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

namespace tessarine {

/// The stored words of an enumeration, in the order of its cases; specialised beside each.
template <typename Enum> struct StoredNames;

/// How a value of a preference is stored. Nothing for what is stored but can't be read so.
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

/// One setting: its default until the user sets it, and written through to the file at once. Main
/// thread only.
template <typename T> class Preference {
public:
    using Changed = std::function<void(std::string_view key)>;

    /// Reads the stored value. `changed` is called after each `set`.
    Preference(DefaultsStore& store, std::string_view key, T byDefault, const Changed& changed)
        : store_(store), key_(key), changed_(changed),
          value_(StoredForm<T>::fromStore(store, key).value_or(std::move(byDefault))) {}

    const T& operator()() const { return value_; }

    std::string_view key() const { return key_; }

    void set(T value) {
        value_ = std::move(value);
        store_.set(key_, StoredForm<T>::toStore(value_));
        changed_(key_);
    }

    /// Replaces the value in memory alone, for a stored one that is read in a newer way.
    void reinterpret(T value) { value_ = std::move(value); }

private:
    DefaultsStore& store_;
    std::string_view key_;
    const Changed& changed_;
    T value_;
};

} // namespace tessarine
