#pragma once

#include <array>
#include <map>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tessarine {

/// The program's own modes that a word at the front of the field opens. The order is that of the
/// settings, and decides between two that share a word.
enum class BuiltinKeyword {
    clipboard,
    clearClipboard,
    tabs,
    define,
    people,
    agenda,
    quit,
    forceQuit,
    calcHistory,
    snippets,
    farsillDevices,
    drives,
    chromeProfiles,
    slack,
    laneryGroups,
    windowLeft,
    windowRight,
    windowTop,
    windowBottom,
    windowMax,
    windowCenter,
    windowDisplay,
};

/// What is fixed about a keyword.
struct KeywordInfo {
    BuiltinKeyword keyword;
    std::string_view rawValue;    ///< the key of its settings
    std::string_view defaultWord; ///< without the user's own
    std::string_view name;        ///< of the mode, as lists and refusals show it
};

/// The words in force: the defaults, with what the user renamed or switched off. A value; any
/// thread. Words are compared without regard to case.
class Keywords {
public:
    /// Every keyword, in order.
    static std::span<const KeywordInfo> all();
    static const KeywordInfo& info(BuiltinKeyword keyword);
    /// Nothing for a text that is no keyword's raw value.
    static std::optional<BuiltinKeyword> fromRawValue(std::string_view rawValue);

    /// From the stored settings: raw value to the user's word, and the raw values switched off.
    /// What is no keyword's raw value is kept, for a newer program.
    Keywords(std::map<std::string, std::string> words, std::set<std::string> disabled);
    Keywords() = default;

    /// The user's words, by raw value, where they differ from the default.
    const std::map<std::string, std::string>& words() const { return words_; }

    /// Raw values of the keywords switched off.
    const std::set<std::string>& disabled() const { return disabled_; }

    std::string word(BuiltinKeyword keyword) const;
    bool isEnabled(BuiltinKeyword keyword) const;

    /// What follows the keyword in a query that begins with it; empty when nothing does. Nothing
    /// when the query begins with no such word, or the keyword is off or its word an earlier
    /// keyword's.
    std::optional<std::string> argument(BuiltinKeyword keyword, std::string_view query) const;

    /// Gives the keyword another word; an empty one restores the default. Nothing on success,
    /// else the reason why the word stays as it was.
    std::optional<std::string> setWord(BuiltinKeyword keyword, std::string_view word);

    /// Always allowed, also into a clash.
    void enable(BuiltinKeyword keyword);
    void disable(BuiltinKeyword keyword);

    /// The words by which the keyword's own row is found: the current one, the default, and
    /// `alternatives`, each once.
    std::vector<std::string> matchNames(BuiltinKeyword keyword,
                                        std::span<const std::string_view> alternatives) const;

private:
    /// The enabled keyword, other than this one, that has the word; the first in order.
    std::optional<BuiltinKeyword> holder(std::string_view word, BuiltinKeyword except) const;

    std::map<std::string, std::string> words_;
    std::set<std::string> disabled_;
};

} // namespace tessarine
