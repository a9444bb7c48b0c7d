#include "LauncherCore/catalog/DesktopEntry.h"

#include "LauncherCore/text/Folding.h"

#include <algorithm>
#include <charconv>

namespace tessarine {

namespace {

constexpr std::string_view mainGroup = "[Desktop Entry]";

bool isBlank(char c) {
    return c == ' ' || c == '\t';
}

std::string_view withoutBlanks(std::string_view text) {
    while (!text.empty() && isBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

/// Takes the next line off the front of `text`, without its line end.
std::string_view nextLine(std::string_view& text) {
    const auto end = text.find('\n');
    auto line = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    if (line.ends_with('\r'))
        line.remove_suffix(1);
    return line;
}

/// The locale of "Name[de]"; empty for a key without one.
std::string_view localeOf(std::string_view key) {
    const auto bracket = key.find('[');
    if (bracket == std::string_view::npos || !key.ends_with(']'))
        return {};
    return key.substr(bracket + 1, key.size() - bracket - 2);
}

bool isWanted(std::string_view key, std::span<const std::string> languages) {
    if (!key.ends_with(']'))
        return true;
    return std::ranges::find(languages, localeOf(key)) != languages.end();
}

std::string unescaped(std::string_view raw) {
    std::string result;
    result.reserve(raw.size());
    for (std::size_t i = 0; i < raw.size(); ++i) {
        if (raw[i] != '\\' || i + 1 == raw.size()) {
            result += raw[i];
            continue;
        }
        switch (raw[++i]) {
        case 's':
            result += ' ';
            break;
        case 'n':
            result += '\n';
            break;
        case 't':
            result += '\t';
            break;
        case 'r':
            result += '\r';
            break;
        case '\\':
            result += '\\';
            break;
        default: // not for this level: the Exec key and lists have escapes of their own
            result += '\\';
            result += raw[i];
        }
    }
    return result;
}

/// Splits at semicolons that have no backslash before them.
std::vector<std::string> elements(std::string_view raw) {
    std::vector<std::string> result;
    std::string element;
    const auto finish = [&] {
        if (!element.empty())
            result.push_back(unescaped(element));
        element.clear();
    };
    for (std::size_t i = 0; i < raw.size(); ++i) {
        if (raw[i] == '\\' && i + 1 < raw.size()) {
            if (raw[i + 1] != ';')
                element += raw[i];
            element += raw[++i];
        } else if (raw[i] == ';') {
            finish();
        } else {
            element += raw[i];
        }
    }
    finish();
    return result;
}

/// The parts of "language_COUNTRY.ENCODING@MODIFIER".
struct LocaleParts {
    std::string language;
    std::string country;  ///< with its underscore
    std::string modifier; ///< with its at sign
};

LocaleParts parted(std::string_view locale) {
    LocaleParts parts;
    if (const auto at = locale.find('@'); at != std::string_view::npos) {
        parts.modifier = locale.substr(at);
        locale = locale.substr(0, at);
    }
    locale = locale.substr(0, locale.find('.'));
    if (const auto underscore = locale.find('_'); underscore != std::string_view::npos) {
        parts.country = locale.substr(underscore);
        locale = locale.substr(0, underscore);
    }
    parts.language = locale;
    return parts;
}

bool hasNoTranslation(std::string_view locale) {
    const auto language = parted(locale).language;
    return language.empty() || language == "C" || language == "POSIX";
}

void addVariants(std::vector<std::string>& languages, std::string_view locale) {
    if (hasNoTranslation(locale))
        return;
    const auto [language, country, modifier] = parted(locale);
    const auto inCountry = language + country;
    for (const auto& variant : {inCountry + modifier, inCountry, language + modifier, language}) {
        if (std::ranges::find(languages, variant) == languages.end())
            languages.push_back(variant);
    }
}

} // namespace

std::optional<DesktopEntry> DesktopEntry::parse(std::string_view bytes,
                                                std::span<const std::string> languages) {
    if (bytes.find('\0') != std::string_view::npos || !Folding::isUtf8(bytes))
        return std::nullopt;
    if (bytes.starts_with("\xef\xbb\xbf")) // a byte order mark, which some editors leave
        bytes.remove_prefix(3);
    Keys keys;
    bool inMainGroup = false;
    bool found = false;
    while (!bytes.empty()) {
        const auto line = nextLine(bytes);
        const auto content = withoutBlanks(line);
        if (content.empty() || content.front() == '#')
            continue;
        if (content.front() == '[') {
            inMainGroup = !found && content == mainGroup;
            found |= inMainGroup;
            continue;
        }
        if (!inMainGroup)
            continue;
        const auto equals = content.find('=');
        if (equals == std::string_view::npos)
            continue;
        const auto key = withoutBlanks(content.substr(0, equals));
        if (!key.empty() && isWanted(key, languages))
            keys.try_emplace(std::string(key), withoutBlanks(content.substr(equals + 1)));
    }
    if (!found)
        return std::nullopt;
    return DesktopEntry(std::move(keys));
}

std::optional<std::string_view> DesktopEntry::raw(std::string_view key) const {
    const auto found = keys_.find(key);
    return found == keys_.end() ? std::nullopt : std::optional<std::string_view>(found->second);
}

std::optional<std::string> DesktopEntry::text(std::string_view key) const {
    const auto value = raw(key);
    return value ? std::optional(unescaped(*value)) : std::nullopt;
}

std::optional<std::string> DesktopEntry::localized(std::string_view key,
                                                   std::span<const std::string> languages) const {
    for (const auto& language : languages) {
        if (auto value = text(std::string(key) + "[" + language + "]"))
            return value;
    }
    return text(key);
}

std::vector<std::string> DesktopEntry::list(std::string_view key) const {
    const auto value = raw(key);
    return value ? elements(*value) : std::vector<std::string>{};
}

std::vector<std::string> DesktopEntry::localizedList(std::string_view key,
                                                     std::span<const std::string> languages) const {
    for (const auto& language : languages) {
        if (const auto value = raw(std::string(key) + "[" + language + "]"))
            return elements(*value);
    }
    return list(key);
}

bool DesktopEntry::flag(std::string_view key) const {
    const auto value = raw(key).value_or("");
    if (value == "true")
        return true;
    int number = 0;
    const auto end = value.data() + value.size();
    const auto [rest, error] = std::from_chars(value.data(), end, number);
    return error == std::errc{} && rest == end && number != 0;
}

std::vector<std::string> desktopLanguages(std::string_view languagePriority,
                                          std::string_view locale) {
    std::vector<std::string> languages;
    if (hasNoTranslation(locale))
        return languages;
    while (!languagePriority.empty()) {
        const auto end = std::min(languagePriority.find(':'), languagePriority.size());
        addVariants(languages, languagePriority.substr(0, end));
        languagePriority.remove_prefix(std::min(end + 1, languagePriority.size()));
    }
    addVariants(languages, locale);
    return languages;
}

} // namespace tessarine
