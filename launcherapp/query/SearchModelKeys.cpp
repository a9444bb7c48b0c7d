// What the keys do to the model: selection, running, completion, favourites, copying, going in and
// out, and the Escape ladder.

#include "LauncherCore/text/Folding.h"
#include "LauncherCore/text/Graphemes.h"
#include "LauncherCore/text/Paths.h"
#include "LauncherCore/text/Urls.h"
#include "launcherapp/operations/Diagnostics.h"
#include "launcherapp/query/SearchModel.h"
#include "launcherapp/query/UsageStore.h"
#include "launcherapp/query/rows/CommandRows.h"
#include "launcherapp/shell/Prefs.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>

namespace tessarine {

namespace {

constexpr std::string_view clippingPrefix = "clip:";

std::string copiedText(const ResultRow& row) {
    if (row.kind == RowKind::file && row.url) {
        if (auto path = Urls::filePath(*row.url))
            return *std::move(path);
    }
    return row.title;
}

} // namespace

bool SearchModel::perform(FieldCommand command, CaretPlace caret) {
    const bool inActions = !actions_.empty();
    const bool inFilterMenu = !inActions && filterMenuOpen_;
    switch (command) {
    case FieldCommand::up:
        inActions ? moveAction(-1) : inFilterMenu ? moveFilterMenu(-1) : moveUp();
        return true;
    case FieldCommand::down:
        inActions ? moveAction(1) : inFilterMenu ? moveFilterMenu(1) : moveDown();
        return true;
    case FieldCommand::enter:
        if (inActions)
            runAction(actionSelection_, ActionDriver::keyboard);
        else if (inFilterMenu)
            commitFilterMenu(filterMenuSelection_);
        else
            runSelected();
        return true;
    case FieldCommand::tab:
        if (inActions)
            return true;
        // Whether or not there is something to complete, the field keeps the keyboard.
        if (inFilterMenu || clipboardMode_)
            filterMenuTab(TabDirection::forward);
        else
            complete();
        return true;
    case FieldCommand::backTab:
        if (inActions)
            return true;
        if (!inFilterMenu && !clipboardMode_)
            return false;
        filterMenuTab(TabDirection::backward);
        return true;
    case FieldCommand::escape:
        escape();
        return true;
    case FieldCommand::right:
        return !inActions && !inFilterMenu && caret == CaretPlace::atEnd && drillIn();
    case FieldCommand::left:
        return !inActions && !inFilterMenu && query_.empty() && drillOut();
    case FieldCommand::deleteToStart:
        return !inActions && !inFilterMenu && deleteSelected();
    case FieldCommand::pageUp:
    case FieldCommand::pageDown:
    case FieldCommand::listStart:
    case FieldCommand::listEnd:
        if (!inActions && !inFilterMenu)
            moveFar(command);
        return true;
    }
    return false;
}

void SearchModel::select(std::size_t row) {
    if (row >= rows_.size() || row == selection_)
        return;
    selection_ = row;
    forgetActionsOfAnotherRow();
    changed();
}

void SearchModel::moveUp() {
    select(selection_ == 0 ? 0 : selection_ - 1);
}

void SearchModel::moveDown() {
    select(std::min(selection_ + 1, rows_.empty() ? 0 : rows_.size() - 1));
}

/// By as many rows as are shown at a time, or to an end of the list.
void SearchModel::moveFar(FieldCommand command) {
    if (rows_.empty())
        return;
    const auto last = static_cast<std::int64_t>(rows_.size()) - 1;
    if (command == FieldCommand::listStart)
        return select(0);
    if (command == FieldCommand::listEnd)
        return select(rows_.size() - 1);
    const auto page = std::max<std::int64_t>(1, static_cast<std::int64_t>(rowsAtATime()));
    const auto wanted =
        static_cast<std::int64_t>(selection_) + (command == FieldCommand::pageUp ? -page : page);
    select(static_cast<std::size_t>(std::clamp<std::int64_t>(wanted, 0, last)));
}

void SearchModel::runSelected() {
    run(selection_);
}

void SearchModel::runDigit(int digit) {
    if (digit >= 1 && digit <= 9)
        run(static_cast<std::size_t>(digit - 1));
}

void SearchModel::run(std::size_t index) {
    if (index >= rows_.size())
        return;
    // A copy: the action may change the list that the row stands in.
    const auto row = rows_[index];
    learn(row);
    if (const auto person = rowsOf(families.personID, row))
        openPerson(*person);
    else if (row.primary)
        row.primary();
}

void SearchModel::runSecondary() {
    const auto* selected = selectedRow();
    if (!selected || !selected->secondary)
        return;
    const auto row = *selected;
    learn(row);
    row.secondary();
}

void SearchModel::learn(const ResultRow& row) {
    if (row.kind == RowKind::hint)
        return;
    // Before the action runs, since one that hides the panel empties the query.
    if (!Folding::trimmed(query_).empty())
        services_.usage.recordChoice(query_, row.id);
    services_.usage.record(row.id);
}

void SearchModel::openPerson(const std::string& personID) {
    queryWithoutRecompute({});
    personPath_ = personID;
    selection_ = 0;
    recompute();
}

bool SearchModel::complete() {
    const auto* row = selectedRow();
    if (!row || row->kind != RowKind::command || !row->id.starts_with(commandRowPrefix))
        return false;
    const auto id = row->id.substr(commandRowPrefix.size());
    const auto commands = rowsOf(families.commands);
    const auto command = std::ranges::find(commands, id, &CommandSpec::id);
    const auto word = command == commands.end() ? std::nullopt : wordToType(*command);
    if (!word)
        return false;
    setQuery(*word);
    return true;
}

void SearchModel::toggleFavorite() {
    const auto* row = selectedRow();
    if (!row)
        return;
    auto favorites = services_.prefs.favorites();
    if (std::erase(favorites, row->id) == 0) {
        favorites.push_back(row->id);
        // Its source may still be loading when the favourite is next to be named.
        auto titles = services_.prefs.favoriteTitles();
        titles[row->id] = row->title;
        services_.prefs.favoriteTitles.set(std::move(titles));
    }
    services_.prefs.favorites.set(std::move(favorites));
    recompute();
}

bool SearchModel::copySelected() {
    const auto* selected = selectedRow();
    if (!selected)
        return false;
    // A copy: copying hides the panel, which empties the list that the row stands in.
    const auto row = *selected;
    if (clipboardMode_)
        return row.id.starts_with(clippingPrefix) && families.copyClippingToTop &&
               families.copyClippingToTop(row.id.substr(clippingPrefix.size()));
    if (!verbs.copyText)
        return false;
    const auto text = rowsOf(families.copyText, row).value_or(copiedText(row));
    verbs.copyText(text);
    services_.diagnostics.log(
        fmt::format("{} characters from a {} row", Graphemes::count(text), name(row.kind)));
    return true;
}

bool SearchModel::drillIn() {
    const auto* row = selectedRow();
    if (!row)
        return false;
    if (const auto person = rowsOf(families.personID, *row)) {
        learn(*row);
        openPerson(*person);
        return true;
    }
    const auto folder = rowsOf(families.folderPath, *row);
    if (!folder)
        return false;
    browsePath_ = folder;
    setQuery({});
    return true;
}

bool SearchModel::drillOut() {
    if (browsePath_) {
        const bool atTop =
            *browsePath_ == "/" || (families.isBrowseRoot && families.isBrowseRoot(*browsePath_));
        if (atTop)
            browsePath_.reset();
        else
            browsePath_ = std::string(Paths::parent(*browsePath_));
    } else if (personPath_) {
        personPath_.reset();
    } else {
        return false;
    }
    selection_ = 0;
    recompute();
    return true;
}

bool SearchModel::deleteSelected() {
    const auto* row = selectedRow();
    if (!row || !row->id.starts_with(clippingPrefix) || !families.removeClipping)
        return false;
    families.removeClipping(row->id.substr(clippingPrefix.size()));
    recompute();
    return true;
}

void SearchModel::escape() {
    if (closeMenu())
        return;
    if ((clipboardMode_ || browsePath_) && !query_.empty()) {
        setQuery({});
    } else if (clipboardMode_ || browsePath_ || personPath_) {
        leaveModes();
        selection_ = 0;
        recompute();
    } else if (dismiss) {
        // The query stays: hiding resets the model anyway.
        dismiss();
    }
}

} // namespace tessarine
