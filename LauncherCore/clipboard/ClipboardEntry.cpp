#include "LauncherCore/clipboard/ClipboardEntry.h"

#include "LauncherCore/text/Folding.h"
#include "LauncherCore/text/Graphemes.h"
#include "LauncherCore/text/LineBreaks.h"

#include <algorithm>
#include <utility>

namespace tessarine {

namespace {

constexpr std::size_t longestPreview = 120; // characters

/// The first line that isn't empty; empty when there is none.
std::string_view firstFilledLine(std::string_view text) {
    while (const auto lineBreak = LineBreaks::lengthAt(text, 0))
        text.remove_prefix(lineBreak);
    return LineBreaks::firstLine(text);
}

} // namespace

ClipboardEntry ClipboardEntry::make(Copy copy) {
    ClipboardEntry entry;
    entry.id = std::move(copy.id);
    entry.kind = copy.kind;
    entry.preview = makePreview(copy.text.string());
    entry.text = std::move(copy.text);
    entry.imageFile = std::move(copy.imageFile);
    entry.fullFile = std::move(copy.fullFile);
    entry.firstSeen = copy.at;
    entry.lastSeen = copy.at;
    entry.sourceApp = std::move(copy.sourceApp);
    entry.fromOtherDevice = copy.fromOtherDevice;
    return entry;
}

std::string ClipboardEntry::makePreview(std::string_view text) {
    const auto line = Folding::trimmed(firstFilledLine(text));
    const auto shown = Graphemes::prefix(line, longestPreview);
    return shown.size() < line.size() ? std::string(shown) + "…" : std::string(line);
}

std::vector<std::string_view> ClipboardEntry::paths() const {
    std::vector<std::string_view> paths;
    std::string_view rest = text.string();
    while (!rest.empty()) {
        const auto end = std::min(rest.find('\n'), rest.size());
        if (const auto path = rest.substr(0, end); !path.empty())
            paths.push_back(path);
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return paths;
}

} // namespace tessarine
