#include "launcherapp/query/rows/EmojiRows.h"

#include "LauncherCore/answers/Emoji.h"
#include "launcherapp/query/rows/CopyingRows.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace tessarine {

namespace {

constexpr std::size_t limit = 12;
/// Above whatever else the answers give to a text with a leading colon.
constexpr std::int64_t bestScore = 9900;

} // namespace

std::vector<ResultRow> emojiRows(std::string_view query, const RowVerbs& verbs) {
    std::vector<ResultRow> rows;
    const bool isTyped = verbs.typeText && verbs.canType && verbs.canType();
    for (const auto& entry : Emoji::search(query.substr(1), limit)) {
        const std::string emoji(entry.emoji);
        rows.push_back({
            .id = std::string(emojiRowPrefix) + emoji,
            .kind = RowKind::calc,
            .title = std::string(entry.name),
            .subtitle = copyingSubtitle("emoji", verbs),
            .symbol = "face.smiling",
            .primary =
                [copy = verbs.copyText, emoji] {
                    if (copy)
                        copy(emoji);
                },
            .primaryLabel = "copy",
            .group = std::string(RowGroup::answers),
            .glyph = emoji,
            .score = bestScore - static_cast<std::int64_t>(rows.size()),
        });
        if (isTyped) {
            rows.back().secondary = [type = verbs.typeText, emoji] { type(emoji); };
            rows.back().secondaryLabel = "type";
        }
    }
    return rows;
}

} // namespace tessarine
