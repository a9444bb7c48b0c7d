#include "launcherapp/query/SearchModel.h"

#include "LauncherCore/query/Keywords.h"
#include "LauncherCore/text/Folding.h"
#include "LauncherCore/text/Graphemes.h"
#include "launcherapp/catalog/AppCatalog.h"
#include "launcherapp/operations/Diagnostics.h"
#include "launcherapp/platform/MainQueue.h"
#include "launcherapp/query/RankByUse.h"
#include "launcherapp/query/UsageStore.h"
#include "launcherapp/query/rows/AppRows.h"
#include "launcherapp/query/rows/ClearClipRows.h"
#include "launcherapp/query/rows/CommandRows.h"
#include "launcherapp/query/rows/HintRows.h"
#include "launcherapp/query/rows/WebRows.h"
#include "launcherapp/shell/Prefs.h"

#include <algorithm>
#include <chrono>
#include <iterator>
#include <utility>

namespace tessarine {

namespace {

constexpr std::size_t shortestFileQuery = 2;  ///< characters before files, tabs, people are asked
constexpr std::size_t shortestDefinition = 4; ///< characters before a word is looked up unasked
constexpr std::size_t sparseList = 2;         ///< rows up to which a definition may join
constexpr std::size_t emojiLimit = 12;
constexpr std::string_view drivePrefix = "drive:";

/// A flag that is up for as long as this object lives, however its scope is left.
class Raised {
public:
    explicit Raised(bool& flag) : flag_(flag) { flag_ = true; }

    ~Raised() { flag_ = false; }

    Raised(const Raised&) = delete;
    Raised& operator=(const Raised&) = delete;

private:
    bool& flag_;
};

void append(Rows& rows, Rows more) {
    rows.insert(
        rows.end(), std::make_move_iterator(more.begin()), std::make_move_iterator(more.end()));
}

/// A drive that is also among the files is shown once, as the drive.
void dropFilesThatAreDrives(Rows& rows, const Rows& drives) {
    std::erase_if(rows, [&](const ResultRow& row) {
        return row.kind == RowKind::file &&
               std::ranges::any_of(drives, [&](const ResultRow& drive) {
                   return drive.id.starts_with(drivePrefix) && drive.url && drive.url == row.url;
               });
    });
}

} // namespace

SearchModel::SearchModel(Services services) : services_(services) {}

Subscription SearchModel::onChange(std::function<void()> changed) {
    return observers_.add(std::move(changed));
}

void SearchModel::changed() {
    observers_.tell();
}

const ResultRow* SearchModel::selectedRow() const {
    return selection_ < rows_.size() ? &rows_[selection_] : nullptr;
}

std::size_t SearchModel::rowsAtATime() const {
    const auto& prefs = services_.prefs;
    const auto clips = clipboardMode_ ? heldClipRows_.value_or(prefs.clipRows()) : 0;
    const auto most = clips > 0 ? clips : prefs.resultRows();
    return static_cast<std::size_t>(std::max<std::int64_t>(0, most));
}

bool SearchModel::showsClippings() const {
    return clipboardMode_ || std::ranges::any_of(rows_, [](const ResultRow& row) {
               return row.id.starts_with(clearingRowPrefix);
           });
}

bool SearchModel::isAtRest() const {
    return query_.empty() && hasBuiltRows_ && !clipboardMode_ && !browsePath_ && !personPath_;
}

void SearchModel::setQuery(std::string text) {
    // The word alone enters the mode and empties the field, so the blank that is typed after it
    // comes as the first character there, where it would only be in the way of Escape.
    if (clipboardMode_ && Folding::trimmed(text).empty())
        text.clear();
    if (text != query_) {
        selection_ = 0;
        expandedGroups_.clear();
        forgetActions();
        query_ = std::move(text);
    }
    recompute();
}

void SearchModel::queryWithoutRecompute(std::string text) {
    const Raised quietly(settingQuietly_);
    setQuery(std::move(text));
}

void SearchModel::reset() {
    leaveModes();
    filterMenuOpen_ = false;
    forgetActions();
    setQuery({});
}

void SearchModel::leaveModes() {
    clipboardMode_ = false;
    clipFilter_.reset();
    browsePath_.reset();
    personPath_.reset();
}

void SearchModel::enterClipboardMode() {
    clipboardMode_ = true;
    setQuery({});
}

void SearchModel::expandGroup(const std::string& sameNameKey) {
    expandedGroups_.insert(sameNameKey);
    recompute();
}

void SearchModel::recompute() {
    requireMainThread(services_.queue);
    if (settingQuietly_)
        return;
    if (recomputing_) {
        services_.diagnostics.log("recompute re-entered; dropped");
        return;
    }
    hasBuiltRows_ = true;
    const auto started = services_.queue.uptime();
    const Raised recomputing(recomputing_);
    finish(builtRows(), started);
}

void SearchModel::finish(Rows rows, Seconds started) {
    if (rows.size() > maximumRows)
        rows.erase(rows.begin() + maximumRows, rows.end());
    rows_ = std::move(rows);
    selection_ = rows_.empty() ? 0 : std::min(selection_, rows_.size() - 1);
    forgetActionsOfAnotherRow();
    lastMillis_ =
        std::chrono::duration<double, std::milli>(services_.queue.uptime() - started).count();
    services_.diagnostics.recordSearch(lastMillis_);
    changed();
}

Rows SearchModel::builtRows() {
    // Copied, since a row builder that calls back may change the query under this run.
    const auto query = query_;
    const std::string q(Folding::trimmed(query));
    engaged_.reset();
    currencyReading_.reset();
    if (auto rows = modeRows(q))
        return *std::move(rows);
    if (auto rows = keywordRows(q))
        return *std::move(rows);

    auto profiles = rowsOf(families.chromeProfiles, q);
    if (profiles.takeover)
        return std::move(profiles.rows);
    auto conversations = rowsOf(families.slack, q);
    if (conversations.takeover)
        return std::move(conversations.rows);
    auto kept = std::move(profiles.rows);
    append(kept, std::move(conversations.rows));

    const auto commands = rowsOf(families.commands);
    running_ = services_.prefs.showRunningDot() ? services_.catalog.runningBundleIDs()
                                                : std::set<std::string>{};
    // The blank that makes a keyword engage may be the last thing typed, so only the front is
    // trimmed.
    const auto typed =
        q.empty() ? std::string_view() : std::string_view(query).substr(query.find(q));
    if (auto engagement = tessarine::engagement(commands, typed)) {
        engaged_ = engagement->command;
        const bool hasListOfItsOwn =
            engaged_->kind == CommandKind::files || engaged_->kind == CommandKind::list;
        return hasListOfItsOwn ? rowsOf(families.engaged, *engaged_, engagement->argument)
                               : engagedRows(*engaged_, commandRowSources(), engagement->argument);
    }
    if (q.empty())
        return atRestRows(commands);
    return mainRows(q, commands, std::move(kept));
}

std::optional<Rows> SearchModel::modeRows(std::string_view q) {
    if (clipboardMode_)
        return clippingRows(q);
    if (personPath_)
        return cardRows(*personPath_, q);
    if (browsePath_)
        return rowsOf(families.browse, *browsePath_, q);
    return std::nullopt;
}

std::optional<Rows> SearchModel::keywordRows(std::string_view q) {
    const auto& keywords = services_.prefs.keywords();
    if (auto argument = keywords.argument(BuiltinKeyword::clipboard, q))
        return clipboardKeywordRows(*std::move(argument));
    // A word without a source behind it is a word like any other.
    const auto argumentOf = [&](BuiltinKeyword keyword) {
        return families.serves(keyword) ? keywords.argument(keyword, q) : std::nullopt;
    };
    if (const auto argument = argumentOf(BuiltinKeyword::clearClipboard))
        return families.clearClipboard(*argument);
    if (const auto argument = argumentOf(BuiltinKeyword::tabs))
        return families.tabs(*argument, ListMode::keyword);
    if (const auto argument = argumentOf(BuiltinKeyword::people)) {
        if (families.loadPeople)
            families.loadPeople();
        return ranked(families.people(*argument, ListMode::keyword), q);
    }
    if (const auto argument = argumentOf(BuiltinKeyword::agenda)) {
        if (families.loadAgenda)
            families.loadAgenda();
        return families.agenda(*argument);
    }
    if (const auto argument = argumentOf(BuiltinKeyword::calcHistory))
        return families.calcHistory(*argument, ListMode::keyword);
    if (const auto argument = argumentOf(BuiltinKeyword::snippets))
        return families.snippets(*argument);
    if (const auto argument = argumentOf(BuiltinKeyword::farsillDevices))
        return families.farsillDevices(*argument);
    if (const auto argument = argumentOf(BuiltinKeyword::laneryGroups))
        return families.laneryGroups(*argument);
    return std::nullopt;
}

Rows SearchModel::clipboardKeywordRows(std::string argument) {
    clipboardMode_ = true;
    if (auto filter = rowsOf(families.resolveFilter, argument)) {
        clipFilter_ = std::move(filter);
        argument.clear();
    } else if (const auto partial = rowsOf(families.partialFilters, argument);
               partial.size() >= 2) {
        openFilterMenu(partial);
        argument.clear();
    }
    queryWithoutRecompute(argument);
    return clippingRows(query_);
}

/// An empty list says why it is empty.
Rows SearchModel::clippingRows(std::string_view q) {
    refreshFilterMenu();
    if (!families.clipboard)
        return {missingClipboardRow()};
    auto rows = families.clipboard(q, clipFilter_);
    // Where nothing is left at all, the filter is not to blame, and Tab leads nowhere.
    const bool isNarrowed = clipFilter_ && canFilter();
    if (rows.empty())
        rows.push_back(
            emptyClipboardRow(q, isNarrowed ? std::optional(filterTitle()) : std::nullopt));
    return rows;
}

Rows SearchModel::cardRows(const std::string& personID, std::string_view q) {
    personCache_ = rowsOf(families.person, personID);
    auto rows = rowsOf(families.personCard, personID, q);
    if (rows.empty() && personCache_)
        rows.push_back(emptyCardRow(personCache_->name, q));
    return rows;
}

CommandRowSources SearchModel::commandRowSources() {
    return {.verbs = verbs,
            .detail = families.commandDetail,
            .typeWord = [this](const std::string& text) { setQuery(text); }};
}

Rows SearchModel::atRestRows(std::span<const CommandSpec> commands) {
    const auto& prefs = services_.prefs;
    const AppRowSources sources{.apps = services_.catalog.apps(),
                                .hidden = prefs.hiddenApps(),
                                .running = running_,
                                .verbs = verbs};
    Rows rows;
    const auto add = [&](ResultRow row, std::string_view detail) {
        row.subtitle = detail;
        rows.push_back(std::move(row));
    };
    switch (prefs.emptyMode()) {
    case EmptyMode::clean:
        break;
    case EmptyMode::recents:
        for (const auto& app : rowsOf(families.recentApps))
            add(appRow(sources, app), "running");
        break;
    case EmptyMode::mostUsed: {
        const auto limit = static_cast<std::size_t>(std::max<std::int64_t>(0, prefs.resultRows()));
        std::set<std::string> shown;
        for (const auto& id : services_.usage.ranking().topIds(services_.queue.now(), 2 * limit)) {
            const auto app = std::ranges::find(sources.apps, id, &CatalogApp::id);
            const auto command = std::ranges::find_if(commands, [&](const CommandSpec& each) {
                return id == std::string(commandRowPrefix) + each.id;
            });
            if (app != sources.apps.end() && isOffered(sources, *app))
                add(appRow(sources, *app), "most used");
            else if (command != commands.end())
                rows.push_back(commandRow(*command, commandRowSources()));
            shown.insert(id);
        }
        for (const auto& app : sources.apps) {
            if (rows.size() == maximumRows)
                break;
            if (isOffered(sources, app) && !shown.contains(app.id))
                rows.push_back(appRow(sources, app));
        }
        break;
    }
    }
    return rows;
}

Rows SearchModel::mainRows(std::string_view q,
                           std::span<const CommandSpec> commands,
                           Rows keptRows) {
    auto rows = rowsOf(families.contactVerbs, q);
    append(rows,
           appRows({.apps = services_.catalog.apps(),
                    .hidden = services_.prefs.hiddenApps(),
                    .running = running_,
                    .verbs = verbs},
                   q));
    append(rows, commandRows(commands, commandRowSources(), q));
    addAnswersAndSources(rows, q);
    append(rows, std::move(keptRows));
    auto drives = rowsOf(families.drives, q);
    dropFilesThatAreDrives(rows, drives);
    append(rows, std::move(drives));
    append(rows, rowsOf(families.glowcap, q));
    if (q.starts_with(':')) {
        auto emoji = rowsOf(families.emoji, q);
        emoji.resize(std::min(emoji.size(), emojiLimit));
        append(emoji, std::move(rows));
        rows = std::move(emoji);
    }
    lookUpWord(rows, q);
    if (const auto error = rowsOf(families.commandsError))
        rows.insert(rows.begin(), brokenCommandsRow(*error, verbs));
    addWebRows(rows, q);
    return ranked(std::move(rows), q);
}

void SearchModel::addAnswersAndSources(Rows& rows, std::string_view q) {
    auto answers = rowsOf(families.answers, q);
    if (Graphemes::count(q) >= shortestFileQuery) {
        if (!answers.main && answers.unitFan.empty() && answers.zones.empty())
            append(rows, rowsOf(families.files, q));
        append(rows, rowsOf(families.tabs, q, ListMode::mixed));
        if (!answers.main) {
            if (families.loadPeople)
                families.loadPeople();
            append(rows, rowsOf(families.people, q, ListMode::mixed));
        }
    }
    append(rows,
           featureRows(
               services_.prefs.keywords(),
               q,
               [this](BuiltinKeyword keyword) { return families.serves(keyword); },
               [this](const std::string& text) { setQuery(text); }));
    append(rows, rowsOf(families.windows, q));
    append(rows, rowsOf(families.dictation, q));
    if (answers.main)
        rows.push_back(*std::move(answers.main));
    else if (answers.graph)
        rows.push_back(*std::move(answers.graph));
    currencyReading_ = std::move(answers.currencyReading);
    append(rows, std::move(answers.currencyFan));
    append(rows, std::move(answers.unitFan));
    append(rows, std::move(answers.zones));
    append(rows, std::move(answers.earlier));
    append(rows, rowsOf(families.calcHistory, q, ListMode::mixed));
    append(rows, rowsOf(families.snippets, q));
    append(rows, rowsOf(families.farsillDevices, q));
    append(rows, rowsOf(families.laneryGroups, q));
}

void SearchModel::addWebRows(Rows& rows, std::string_view q) {
    if (looksLikeURL(q))
        rows.push_back(urlRow(q, verbs));
    if (std::ranges::all_of(rows, [](const ResultRow& row) { return row.kind == RowKind::file; }))
        rows.push_back(webRow(q, verbs));
}

void SearchModel::lookUpWord(const Rows& rows, std::string_view q) {
    if (!families.lookUp)
        return;
    const auto asked = services_.prefs.keywords().argument(BuiltinKeyword::define, q);
    std::string word = asked.value_or("");
    const bool isSparseWord = Graphemes::count(q) >= shortestDefinition &&
                              q.find(' ') == std::string_view::npos && rows.size() <= sparseList;
    if (word.empty() && isSparseWord)
        word = q;
    if (word.empty())
        return;
    families.lookUp(word, [this, asking = std::string(q), word](const std::string& text) {
        addDefinition(asking, word, text);
    });
}

void SearchModel::addDefinition(const std::string& asked,
                                const std::string& word,
                                const std::string& text) {
    // The user has typed on, or gone into a mode.
    if (Folding::trimmed(query_) != asked || clipboardMode_ || browsePath_ || personPath_)
        return;
    const auto isDefinition = [](const ResultRow& row) { return row.id == "define"; };
    if (rows_.size() >= maximumRows || std::ranges::any_of(rows_, isDefinition))
        return;
    rows_.push_back(definitionRow(word, text, verbs));
    changed();
}

Rows SearchModel::ranked(Rows rows, std::string_view q) {
    return rankByUse(std::move(rows),
                     q,
                     {.log = services_.usage.ranking(),
                      .groupOrder = services_.prefs.resultOrder(),
                      .favorites = services_.prefs.favorites(),
                      .now = services_.queue.now()});
}

} // namespace tessarine
