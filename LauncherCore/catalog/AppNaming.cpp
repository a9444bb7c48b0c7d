#include "LauncherCore/catalog/AppNaming.h"

#include "LauncherCore/text/Folding.h"

#include <algorithm>
#include <array>
#include <optional>

namespace tessarine {

namespace {

struct Purpose {
    std::string_view bundleID;
    std::array<std::string_view, 3> words;
};

constexpr auto purposes = std::to_array<Purpose>({
    {"com.electron.wispr-flow", {"dictation", "voice typing", "speech to text"}},
    {"com.superduper.superwhisper", {"dictation", "voice typing", "speech to text"}},
    {"com.goodsnooze.MacWhisper", {"dictation", "transcription", "speech to text"}},
});

constexpr std::string_view extension = ".desktop";

/// A reverse-domain name has at least three parts, "org.gnome.Nautilus"; with two it may be a
/// version number.
constexpr auto fewestDomainDots = 2;

void append(std::vector<std::string>& candidates, std::optional<std::string> text) {
    if (!text)
        return;
    const auto trimmed = Folding::trimmed(*text);
    if (!trimmed.empty())
        candidates.emplace_back(trimmed);
}

} // namespace

std::span<const std::string_view> AppNaming::purposeWords(std::string_view bundleID) {
    const auto found = std::ranges::find(purposes, bundleID, &Purpose::bundleID);
    if (found == purposes.end())
        return {};
    return found->words;
}

std::string AppNaming::fileName(std::string_view path) {
    auto name = path.substr(path.rfind('/') + 1);
    if (name.ends_with(extension))
        name.remove_suffix(extension.size());
    const bool hasBlank = name.find(' ') != std::string_view::npos;
    if (!hasBlank && std::ranges::count(name, '.') >= fewestDomainDots && !name.ends_with('.'))
        name = name.substr(name.rfind('.') + 1);
    return std::string(name);
}

AppNaming::Names AppNaming::names(const DesktopEntry& entry,
                                  std::string_view path,
                                  std::string_view bundleID,
                                  std::span<const std::string> languages) {
    std::vector<std::string> candidates;
    append(candidates, entry.localized("Name", languages));
    append(candidates, entry.text("Name"));
    append(candidates, entry.localized("GenericName", languages));
    append(candidates, entry.text("GenericName"));

    Names names;
    const auto file = fileName(path);
    names.name = candidates.empty() ? file : candidates.front();
    for (const auto word : purposeWords(bundleID))
        names.aliases.emplace_back(word);
    const auto add = [&](const std::string& alias) {
        const auto same = [&](const std::string& held) {
            return Folding::equalIgnoringCase(held, alias);
        };
        if (!same(names.name) && std::ranges::none_of(names.aliases, same))
            names.aliases.push_back(alias);
    };
    add(file);
    std::ranges::for_each(candidates, add);
    std::vector<std::string> keywords;
    for (auto& keyword : entry.localizedList("Keywords", languages))
        append(keywords, std::move(keyword));
    for (auto& keyword : entry.list("Keywords"))
        append(keywords, std::move(keyword));
    std::ranges::for_each(keywords, add);
    return names;
}

} // namespace tessarine
