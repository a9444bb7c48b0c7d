#pragma once

#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// The "Desktop Entry" group of a desktop entry file, as the desktop entry standard (1.5) of
/// freedesktop.org has it. Pure; any thread.
namespace tessarine {

class DesktopEntry {
public:
    /// Key with its locale, as in "Name[de]", to the raw value (escapes not yet read).
    using Keys = std::map<std::string, std::string, std::less<>>;

    /// Largest file that is read as a desktop entry; real ones with every translation stay below
    /// 100 KB.
    static constexpr std::size_t maximumBytes = std::size_t{1} << 20;

    DesktopEntry() = default;

    explicit DesktopEntry(Keys keys) : keys_(std::move(keys)) {}

    /// Nothing when the bytes are no UTF-8, hold a NUL, or have no "Desktop Entry" group. Lines
    /// that are no key and value are passed over; of a key given twice the first counts. Of the
    /// localised keys only those of `languages` are kept.
    static std::optional<DesktopEntry> parse(std::string_view bytes,
                                             std::span<const std::string> languages);

    /// The raw value, escapes unread; nothing when the key is absent.
    std::optional<std::string_view> raw(std::string_view key) const;

    /// The value with \s \n \t \r \\ read; nothing when the key is absent.
    std::optional<std::string> text(std::string_view key) const;

    /// The value in the first of `languages` that has one, else the untranslated one.
    std::optional<std::string> localized(std::string_view key,
                                         std::span<const std::string> languages) const;

    /// The elements of a list, split at semicolons with "\;" read; empty elements left out.
    std::vector<std::string> list(std::string_view key) const;
    std::vector<std::string> localizedList(std::string_view key,
                                           std::span<const std::string> languages) const;

    /// True for "true" and for a number that isn't zero (the form of old files); false otherwise.
    bool flag(std::string_view key) const;

    const Keys& keys() const { return keys_; }

private:
    Keys keys_;
};

/// The locale suffixes under which a reader's translations are looked for, best first:
/// "sr_YU@Latn", "sr_YU", "sr@Latn", "sr" for the locale "sr_YU.UTF-8@Latn".
/// `languagePriority` is the colon-separated value of LANGUAGE and goes first, unless `locale` is
/// "C" or "POSIX", which mean no translation at all.
std::vector<std::string> desktopLanguages(std::string_view languagePriority,
                                          std::string_view locale);

} // namespace tessarine
