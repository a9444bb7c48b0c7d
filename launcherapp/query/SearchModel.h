#pragma once

#include "LauncherCore/answers/CurrencyReading.h"
#include "LauncherCore/commands/CommandSpec.h"
#include "LauncherCore/geometry/Rectangle.h"
#include "launcherapp/platform/MainQueue.h"
#include "launcherapp/platform/Observers.h"
#include "launcherapp/platform/Subscription.h"
#include "launcherapp/platform/WindowList.h"
#include "launcherapp/query/ResultRow.h"
#include "launcherapp/query/RowAction.h"
#include "launcherapp/query/RowFamilies.h"
#include "launcherapp/query/RowVerbs.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tessarine {

class AppCatalog;
class Diagnostics;
class Prefs;
class UsageStore;
struct CommandRowSources;

/// A key of the field's editor, which comes here before the editor acts on it.
enum class FieldCommand {
    up,
    down,
    enter,
    tab,
    backTab,
    escape,
    right,
    left,
    deleteToStart, ///< Command-Delete
    pageUp,
    pageDown,
    listStart, ///< Command-Home
    listEnd,   ///< Command-End
};

enum class CaretPlace { atEnd, inside };

/// The state behind the panel: the field's text, the list of rows it gives, recomputed whole with
/// every change of the text, at once and on the main thread, and what the keys do to both. A
/// result never arrives later, except for a word's definition. Main thread only.
class SearchModel {
public:
    static constexpr std::size_t maximumRows = 60;

    struct Services {
        MainQueue& queue;
        Diagnostics& diagnostics;
        AppCatalog& catalog;
        Prefs& prefs;
        UsageStore& usage;
    };

    explicit SearchModel(Services services);
    SearchModel(const SearchModel&) = delete;
    SearchModel& operator=(const SearchModel&) = delete;

    /// The sources of rows and what rows can have done; set while wiring, before the first query.
    RowFamilies families;
    RowVerbs verbs;
    /// Hides the panel; may be empty.
    std::function<void()> dismiss;
    /// The window that was in front when the panel came up, to paste and type into; nothing when
    /// there was none. It stays until the next show.
    std::optional<AppWindow> previousApp;

    /// Calls `changed` after each change of what is shown.
    Subscription onChange(std::function<void()> changed);

    // What is shown.
    const std::string& query() const { return query_; }

    const std::vector<ResultRow>& rows() const { return rows_; }

    std::size_t selection() const { return selection_; }

    const ResultRow* selectedRow() const; ///< null for an empty list

    /// How many rows the settings show at a time, of clippings or of any other list.
    std::size_t rowsAtATime() const;

    /// For a picture: so many clippings at a time, whatever the preferences say.
    void holdClipRows(std::optional<std::int64_t> rows) { heldClipRows_ = rows; }

    const std::optional<CommandSpec>& engaged() const { return engaged_; }

    /// The amount of money that the text is; nothing when it is anything else.
    const std::optional<CurrencyReading>& currencyReading() const { return currencyReading_; }

    double lastMillis() const { return lastMillis_; }

    bool clipboardMode() const { return clipboardMode_; }

    /// Whether the list says anything of the clipboard's history: in its own mode, and where rows
    /// count what a clearing would take.
    bool showsClippings() const;

    const std::optional<std::string>& clipFilter() const { return clipFilter_; }

    const std::optional<std::string>& browsePath() const { return browsePath_; }

    const std::optional<std::string>& personPath() const { return personPath_; }

    /// The person whose card was shown last, which is the open one while there is one.
    const std::optional<PersonCard>& personCache() const { return personCache_; }

    const std::set<std::string>& expandedGroups() const { return expandedGroups_; }

    bool filterMenuOpen() const { return filterMenuOpen_; }

    std::size_t filterMenuSelection() const { return filterMenuSelection_; }

    const std::vector<RowAction>& actions() const { return actions_; } ///< empty: menu closed

    std::size_t actionSelection() const { return actionSelection_; }

    /// Where in the panel the actions menu was asked for; nothing: beside its row.
    const std::optional<Point>& actionAnchor() const { return actionAnchor_; }

    /// Whether the list is the one of an empty field, so that a show need not rebuild it.
    bool isAtRest() const;

    // The text and the list.
    void setQuery(std::string text);
    void queryWithoutRecompute(std::string text);
    void recompute();
    /// Back to an empty field with no mode on, recomputed once.
    void reset();
    void enterClipboardMode();
    /// Shows all the name twins of a group.
    void expandGroup(const std::string& sameNameKey);

    // Keys. A command that gives false is for the field's own editor.
    bool perform(FieldCommand command, CaretPlace caret);
    void select(std::size_t row);
    void moveUp();
    void moveDown();
    void runSelected();
    void runSecondary();
    void runDigit(int digit); ///< 1 to 9, a row by its position
    bool complete();          ///< false when the selected row has no word to complete
    void toggleFavorite();
    bool copySelected();
    bool drillIn();
    bool drillOut();
    bool deleteSelected();
    void escape();

    // The clipboard's filter menu.
    /// As of the last recompute in clipboard mode, so that a position means what is shown there
    /// although clippings come and go.
    const std::vector<FilterMenuItem>& filterMenuItems() const { return filterMenu_; }

    /// Whether there is anything to choose from.
    bool canFilter() const;
    std::string filterTitle() const; ///< of what the list is narrowed to
    enum class TabDirection { forward, backward };
    void filterMenuTab(TabDirection direction); ///< opens the menu, then goes round in it
    void moveFilterMenu(int delta);
    void commitFilterMenu(std::size_t index);

    // The actions menu.
    enum class ActionDriver { keyboard, click };
    /// Of the selected row, or of the panel when there is none.
    void openActions(std::optional<Point> at = std::nullopt);
    void openPanelActions(std::optional<Point> at = std::nullopt); ///< of the panel itself
    void closeActions();
    bool closeMenus(); ///< both of them; false when none was open
    void moveAction(int delta);
    void runAction(std::size_t index, ActionDriver driver);

private:
    // The pipeline, in its order. A list of its own is nothing when the query has none.
    std::optional<Rows> modeRows(std::string_view q);
    std::optional<Rows> keywordRows(std::string_view q);
    Rows clipboardKeywordRows(std::string argument);
    Rows clippingRows(std::string_view q);
    Rows cardRows(const std::string& personID, std::string_view q);
    Rows atRestRows(std::span<const CommandSpec> commands);
    Rows mainRows(std::string_view q, std::span<const CommandSpec> commands, Rows keptRows);
    CommandRowSources commandRowSources();
    void addAnswersAndSources(Rows& rows, std::string_view q);
    void addWebRows(Rows& rows, std::string_view q);
    void lookUpWord(const Rows& rows, std::string_view q);
    void addDefinition(const std::string& asked, const std::string& word, const std::string& text);
    Rows ranked(Rows rows, std::string_view q);
    Rows builtRows();
    void finish(Rows rows, Seconds started);

    void learn(const ResultRow& row);
    void run(std::size_t index);
    void openPerson(const std::string& personID);
    bool closeMenu();
    void forgetActions();
    void forgetActionsOfAnotherRow();
    void refreshFilterMenu();
    void openFilterMenu(std::span<const std::string> wanted);
    void moveFar(FieldCommand command);
    void leaveModes();
    void changed();

    Services services_;
    std::string query_;
    std::size_t selection_ = 0;
    std::vector<ResultRow> rows_;
    std::optional<CommandSpec> engaged_;
    std::optional<CurrencyReading> currencyReading_;
    double lastMillis_ = 0;
    std::optional<std::int64_t> heldClipRows_;
    bool clipboardMode_ = false;
    std::optional<std::string> clipFilter_;
    std::optional<std::string> browsePath_;
    std::optional<std::string> personPath_;
    std::optional<PersonCard> personCache_;
    std::set<std::string> running_;
    std::set<std::string> expandedGroups_;
    bool hasBuiltRows_ = false;
    bool settingQuietly_ = false;
    bool recomputing_ = false;
    std::vector<FilterMenuItem> filterMenu_;
    bool filterMenuOpen_ = false;
    std::size_t filterMenuSelection_ = 0;
    std::vector<RowAction> actions_;
    std::size_t actionSelection_ = 0;
    std::optional<std::string> actionsRow_; ///< id of the row whose actions are open
    std::optional<Point> actionAnchor_;
    Observers<> observers_;
};

} // namespace tessarine
