#include "LauncherCore/query/Keywords.h"

#include "LauncherCore/text/Folding.h"

#include <algorithm>
#include <utility>

namespace tessarine {

namespace {

using enum BuiltinKeyword;

constexpr auto table = std::to_array<KeywordInfo>({
    {clipboard, "clipboard", "clip", "Clipboard history"},
    {clearClipboard, "clearClipboard", "clear", "Clear clipboard history"},
    {tabs, "tabs", "t", "Browser tabs"},
    {define, "define", "define", "Dictionary"},
    {people, "people", "who", "Contacts"},
    {agenda, "agenda", "next", "Calendar"},
    {quit, "quit", "quit", "Quit an app"},
    {forceQuit, "forceQuit", "kill", "Force quit an app"},
    {calcHistory, "calcHistory", "calc", "Calculator history"},
    {snippets, "snippets", "snip", "Snippets"},
    {farsillDevices, "farsillDevices", "farsill", "Farsill devices"},
    {drives, "drives", "drives", "Connected drives and devices"},
    {chromeProfiles, "chromeProfiles", "chrome", "Chrome profiles"},
    {slack, "slack", "slack", "Slack channels and messages"},
    {laneryGroups, "laneryGroups", "lanery", "Lanery tab groups"},
    {windowLeft, "windowLeft", "left", "Move window left"},
    {windowRight, "windowRight", "right", "Move window right"},
    {windowTop, "windowTop", "top", "Move window to the top"},
    {windowBottom, "windowBottom", "bottom", "Move window to the bottom"},
    {windowMax, "windowMax", "max", "Maximize window"},
    {windowCenter, "windowCenter", "center", "Center window"},
    {windowDisplay, "windowDisplay", "display", "Move window to the next display"},
});

} // namespace

std::span<const KeywordInfo> Keywords::all() {
    return table;
}

const KeywordInfo& Keywords::info(BuiltinKeyword keyword) {
    return table[static_cast<std::size_t>(keyword)];
}

std::optional<BuiltinKeyword> Keywords::fromRawValue(std::string_view rawValue) {
    const auto found = std::ranges::find(table, rawValue, &KeywordInfo::rawValue);
    return found == table.end() ? std::nullopt : std::optional(found->keyword);
}

Keywords::Keywords(std::map<std::string, std::string> words, std::set<std::string> disabled)
    : words_(std::move(words)), disabled_(std::move(disabled)) {}

std::string Keywords::word(BuiltinKeyword keyword) const {
    const auto own = words_.find(std::string(info(keyword).rawValue));
    // Neither an empty word nor one with a blank could ever be typed; the file may hold them.
    const bool usable =
        own != words_.end() && !own->second.empty() && own->second.find(' ') == std::string::npos;
    return usable ? own->second : std::string(info(keyword).defaultWord);
}

bool Keywords::isEnabled(BuiltinKeyword keyword) const {
    return !disabled_.contains(std::string(info(keyword).rawValue));
}

std::optional<std::string> Keywords::argument(BuiltinKeyword keyword,
                                              std::string_view query) const {
    if (!isEnabled(keyword))
        return std::nullopt;
    const auto lowered = Folding::lowercase(query);
    const auto own = Folding::lowercase(word(keyword));
    if (own.empty() || !lowered.starts_with(own))
        return std::nullopt;
    // Lower-casing can change a text's length, so the argument is found by its blank.
    std::string_view rest;
    if (lowered.size() > own.size()) {
        if (lowered[own.size()] != ' ')
            return std::nullopt;
        rest = query.substr(query.find(' ') + 1);
    }
    // Of two keywords with one word, which enabling can bring about, the earlier one answers.
    const auto other = holder(own, keyword);
    if (other && *other < keyword)
        return std::nullopt;
    return std::string(Folding::trimmed(rest));
}

std::optional<std::string> Keywords::setWord(BuiltinKeyword keyword, std::string_view word) {
    const auto trimmed = Folding::trimmed(word);
    const std::string key(info(keyword).rawValue);
    if (trimmed.find(' ') != std::string_view::npos)
        return "A keyword cannot contain a space: the space is what starts the argument.";
    const auto wanted = trimmed.empty() ? info(keyword).defaultWord : trimmed;
    if (!trimmed.empty()) {
        if (const auto other = holder(wanted, keyword))
            return std::string(info(*other).name) + " is already " + std::string(wanted) +
                   ". Two built-ins on one word means the other one silently never fires.";
    }
    if (wanted == info(keyword).defaultWord)
        words_.erase(key);
    else
        words_[key] = std::string(wanted);
    return std::nullopt;
}

void Keywords::enable(BuiltinKeyword keyword) {
    disabled_.erase(std::string(info(keyword).rawValue));
}

void Keywords::disable(BuiltinKeyword keyword) {
    disabled_.emplace(info(keyword).rawValue);
}

std::vector<std::string>
Keywords::matchNames(BuiltinKeyword keyword, std::span<const std::string_view> alternatives) const {
    std::vector<std::string> names{word(keyword)};
    const auto add = [&](std::string_view name) {
        if (std::ranges::find(names, name) == names.end())
            names.emplace_back(name);
    };
    add(info(keyword).defaultWord);
    std::ranges::for_each(alternatives, add);
    return names;
}

std::optional<BuiltinKeyword> Keywords::holder(std::string_view word, BuiltinKeyword except) const {
    const auto wanted = Folding::lowercase(word);
    for (const auto& each : table) {
        if (each.keyword != except && isEnabled(each.keyword) &&
            Folding::lowercase(this->word(each.keyword)) == wanted)
            return each.keyword;
    }
    return std::nullopt;
}

} // namespace tessarine
