#include "launcherapp/query/rows/HintRows.h"

#include "LauncherCore/text/Folding.h"
#include "LauncherCore/text/Paths.h"

#include <fmt/format.h>

namespace tessarine {

namespace {

std::string nothingNamed(std::string_view query) {
    return fmt::format("Nothing here matches “{}”", query);
}

} // namespace

ResultRow
readHint(std::string id, std::string title, std::string subtitle, std::string_view symbol) {
    return {.id = std::move(id),
            .kind = RowKind::hint,
            .title = std::move(title),
            .subtitle = std::move(subtitle),
            .symbol = std::string(symbol),
            .group = std::string(RowGroup::answers)};
}

ResultRow brokenCommandsRow(const std::string& error, const RowVerbs& verbs) {
    return {
        .id = "commands-broken",
        .kind = RowKind::hint,
        .title = "Your commands file could not be read",
        .subtitle = error,
        .symbol = "exclamationmark.triangle.fill",
        .primary =
            [open = verbs.editCommands] {
                if (open)
                    open();
            },
        .primaryLabel = "open Settings",
        .group = std::string(RowGroup::answers),
        .score = 20000,
    };
}

ResultRow missingClipboardRow() {
    return readHint("empty:clipboard",
                    "Clipboard history is not built yet",
                    "What you copy is not kept; Escape leads back to the search",
                    "doc.on.clipboard");
}

ResultRow emptyClipboardRow(std::string_view query, const std::optional<std::string>& filter) {
    if (!query.empty())
        return readHint("empty:clipboard",
                        nothingNamed(query),
                        filter ? "Only “" + *filter + "” is searched; Tab shows the other kinds"
                               : "Copies are searched by what they hold",
                        "magnifyingglass");
    if (filter)
        return readHint("empty:clipboard",
                        "No copies of this kind",
                        "The list shows only “" + *filter + "”; Tab shows the other kinds",
                        "slider.horizontal.3");
    return readHint("empty:clipboard",
                    "Nothing has been copied yet",
                    "What you copy from now on is listed here",
                    "doc.on.clipboard");
}

ResultRow emptyFolderRow(const std::string& folder, std::string_view query) {
    const auto name = Folding::repairedUtf8(Paths::lastPart(folder));
    if (!query.empty())
        return readHint("empty:" + folder,
                        nothingNamed(query),
                        fmt::format("Only “{}” itself is searched", name.empty() ? "/" : name),
                        "magnifyingglass");
    return readHint(
        "empty:" + folder, "This folder is empty", Folding::repairedUtf8(folder), "folder");
}

ResultRow emptyCardRow(const std::string& name, std::string_view query) {
    if (!query.empty())
        return readHint("empty:card",
                        nothingNamed(query),
                        fmt::format("Only the card of {} is searched", name),
                        "magnifyingglass");
    return readHint("empty:card", "This card holds nothing but a name", "", "person.crop.circle");
}

ResultRow definitionRow(const std::string& word, const std::string& text, const RowVerbs& verbs) {
    return {
        .id = "define",
        .kind = RowKind::command,
        .title = word,
        .subtitle = text,
        .symbol = "character.book.closed",
        .primary =
            [lookUp = verbs.lookUpWord, word] {
                if (lookUp)
                    lookUp(word);
            },
        .primaryLabel = "open in Dictionary",
        .group = std::string(RowGroup::apps),
        .credit = RowCreditSpec::dictionary(),
    };
}

} // namespace tessarine
