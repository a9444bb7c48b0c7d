#include "launcherapp/query/rows/HintRows.h"

namespace tessarine {

ResultRow brokenCommandsRow(const std::string& error, const RowVerbs& verbs) {
    return {
        .id = "commands-broken",
        .kind = RowKind::hint,
        .title = "Your commands file could not be read",
        .subtitle = error,
        .symbol = "exclamationmark.triangle.fill",
        .primary =
            [open = verbs.openSettings] {
                if (open)
                    open();
            },
        .primaryLabel = "open Settings",
        .group = std::string(RowGroup::answers),
        .score = 20000,
    };
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
