#pragma once

#include "LauncherCore/answers/CurrencyReading.h"
#include "LauncherCore/catalog/CatalogApp.h"
#include "LauncherCore/commands/CommandSpec.h"
#include "LauncherCore/query/Keywords.h"
#include "launcherapp/query/PersonCard.h"
#include "launcherapp/query/ResultRow.h"
#include "launcherapp/query/RowAction.h"
#include "launcherapp/query/RowPreview.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tessarine {

using Rows = std::vector<ResultRow>;

enum class ListMode {
    mixed,   ///< among the rows of the main list
    keyword, ///< the source has the whole list, by its keyword
};

/// A family that may claim the whole list for itself.
struct TakeOverRows {
    Rows rows;
    bool takeover = false;
};

/// The computed answers to one query.
struct AnswerRows {
    std::optional<ResultRow> main;  ///< the answer itself
    std::optional<ResultRow> graph; ///< drawn where there is no answer
    Rows currencyFan;
    Rows unitFan;
    Rows zones;
    Rows earlier; ///< calculations made before, shown below a calculation
    std::optional<CurrencyReading> currencyReading; ///< an amount and nothing else, as money
};

/// One entry of the clipboard's filter menu.
struct FilterMenuItem {
    std::string key; ///< of a category or taught group; `everything` for no filter
    std::string title;
    std::int64_t count = 0;

    static constexpr std::string_view everything = "__all";

    bool operator==(const FilterMenuItem&) const = default;
};

/// The sources of rows outside the query engine, each at its named place in the pipeline. A source
/// sets its function when it comes to be; until then the family gives nothing. None may touch
/// disk, process, network or bus: a source publishes what it has read, and its function looks
/// there. A query is trimmed; an argument is what follows a keyword. Main thread only.
struct RowFamilies {
    using Family = std::function<Rows(std::string_view query)>;
    using ModeFamily = std::function<Rows(std::string_view query, ListMode mode)>;
    using TakeOverFamily = std::function<TakeOverRows(std::string_view query)>;

    // Lists of their own.
    std::function<Rows(std::string_view query, const std::optional<std::string>& filter)> clipboard;
    std::function<Rows(const std::string& personID, std::string_view query)> personCard;
    std::function<Rows(const std::string& folder, std::string_view query)> browse;
    std::function<Rows(const CommandSpec& command, std::string_view argument)> engaged;
    Family clearClipboard;
    Family agenda;

    // Parts of the main list, in its order.
    TakeOverFamily chromeProfiles;
    TakeOverFamily slack;
    Family contactVerbs;
    std::function<AnswerRows(std::string_view query)> answers;
    Family files;
    ModeFamily tabs;
    ModeFamily people;
    Family windows;
    Family dictation;
    ModeFamily calcHistory;
    Family snippets;       ///< set while its companion is live
    Family farsillDevices; ///< set while its companion is live
    Family laneryGroups;   ///< set while its companion is live
    Family drives;
    Family glowcap;
    Family emoji;

    // What they are read from.
    std::function<bool(const ResultRow& row)> isUserCommand; ///< of the user's own file
    /// The user's, packs' and system's, for the present turn of the event loop.
    std::function<std::span<const CommandSpec>()> commands;
    /// What a command's row says of it; nothing for its keyword.
    std::function<std::optional<std::string>(const CommandSpec& command)> commandDetail;
    std::function<std::optional<std::string>()> commandsError; ///< why their file can't be read
    std::function<std::vector<CatalogApp>()> recentApps;       ///< running, most recent first
    /// The person whose card the row opens; nothing for any other row.
    std::function<std::optional<std::string>(const ResultRow& row)> personID;
    /// Whose card is open; nothing for somebody who is no longer known.
    std::function<std::optional<PersonCard>(const std::string& personID)> person;
    /// The folder that the row stands for; nothing for any other row.
    std::function<std::optional<std::string>(const ResultRow& row)> folderPath;
    std::function<bool(const std::string& folder)> isBrowseRoot; ///< leaving it ends browsing

    /// Starts loading contacts, or the calendar, unless that is done; recomputes when it ends.
    std::function<void()> loadPeople;
    std::function<void()> loadAgenda;

    /// Starts looking the word up off the main thread; `found` is called on it, with the first
    /// lines of the definition, only when there is one.
    std::function<void(const std::string& word, std::function<void(std::string text)> found)>
        lookUp;

    // The clipboard's filter menu.
    std::function<std::vector<FilterMenuItem>()> filterMenu;
    std::function<std::optional<std::string>(std::string_view argument)> resolveFilter;
    /// The keys of the taught groups that a word names partly, also of those that have nothing and
    /// so no place in the menu.
    std::function<std::vector<std::string>(std::string_view argument)> partialFilters;
    /// What a filter is called, whether or not anything is left of what it narrows to.
    std::function<std::string(const std::string& key)> filterTitle;
    std::function<void(const std::string& clippingID)> removeClipping;
    std::function<bool(const std::string& clippingID)> copyClippingToTop;
    /// What is shown beside the list while the row is selected; nothing for most.
    std::function<std::optional<RowPreview>(const ResultRow& row)> preview;

    /// What the actions menu offers for a row of the source beyond what its kind has.
    std::function<std::vector<RowAction>(const ResultRow& row)> menuActions;

    /// What copying a row of the source copies; nothing for what it leaves to the row's kind.
    std::function<std::optional<std::string>(const ResultRow& row)> copyText;

    /// Whether the source is there that the keyword's word leads to.
    bool serves(BuiltinKeyword keyword) const;
};

/// The rows of a family, or none while it has no source.
template <typename Function, typename... Arguments>
auto rowsOf(const Function& family, Arguments&&... arguments) {
    using Result = decltype(family(std::forward<Arguments>(arguments)...));
    return family ? family(std::forward<Arguments>(arguments)...) : Result{};
}

} // namespace tessarine
