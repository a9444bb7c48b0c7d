#include "LauncherCore/clipboard/ClipMatcher.h"

#include "LauncherCore/text/Folding.h"
#include "LauncherCore/text/LineBreaks.h"

#include <algorithm>
#include <array>
#include <utility>

namespace tessarine {

namespace {

using FileState = ClipMatcher::FileState;

/// In the order of the enumeration.
constexpr auto stateNames =
    std::to_array<std::string_view>({"named", "missing", "contains", "lacks"});

bool asksOfText(const ClipMatcher& rule) {
    return rule.contains || rule.firstLineEndsWith || rule.firstLineContains || rule.startsWith ||
           rule.regex || rule.maxLength || rule.minLength;
}

/// Whether the clipping was pasted, or certainly wasn't: before pastes were marked nobody knows.
bool isPasted(const ClipboardEntry& entry, bool wanted, double trackingSince) {
    const bool marked = entry.pasteCount() > 0;
    if (wanted)
        return marked;
    return !marked && (trackingSince <= 0 || entry.firstSeen >= trackingSince);
}

bool isInState(FileState state, const ClipFileFact& fact) {
    switch (state) {
    case FileState::named:
        return true;
    case FileState::missing:
        return !fact.exists;
    case FileState::contains:
        return fact.exists && fact.hasNeedle;
    case FileState::lacks:
        return fact.exists && !fact.hasNeedle;
    }
    return false;
}

bool namesFileInState(const ClipMatcher& rule,
                      FileState state,
                      std::string_view text,
                      const ClipFacts& facts) {
    const auto path = rule.namedPath(text);
    if (!path)
        return false;
    // Whether the text names one is known without a look at the disk.
    if (state == FileState::named)
        return true;
    return isInState(state, facts.file ? facts.file(*path, rule.fileNeedle) : ClipFileFact());
}

} // namespace

bool ClipMatcher::isEmpty() const {
    return !asksOfText(*this) && !pasted && !filePattern && !fileState && !kind;
}

bool ClipMatcher::matches(const ClipText& text) const {
    if (contains && !text.holds(Folding::fold(*contains)))
        return false;
    if (firstLineEndsWith && !LineBreaks::firstLine(text.string()).ends_with(*firstLineEndsWith))
        return false;
    // Folding neither makes nor removes a line break.
    if (firstLineContains &&
        LineBreaks::firstLine(text.folded()).find(Folding::fold(*firstLineContains)) ==
            std::string_view::npos)
        return false;
    if (startsWith && !text.folded().starts_with(Folding::fold(*startsWith)))
        return false;
    if (maxLength && std::cmp_greater(text.characters(), *maxLength))
        return false;
    if (minLength && std::cmp_less(text.characters(), *minLength))
        return false;
    if (regex && !compiledRegex.match(*regex, Pattern::Case::ignored, text.string()))
        return false;
    return asksOfText(*this);
}

bool ClipMatcher::matches(const ClipboardEntry& entry, const ClipFacts& facts) const {
    if (kind && *kind != entry.kind)
        return false;
    if (pasted && !isPasted(entry, *pasted, facts.pasteTrackingSince))
        return false;
    if (asksOfText(*this) ? !matches(entry.text) : !kind && !pasted)
        return false;
    // A file is looked at last: all else is cheaper.
    return !fileState || namesFileInState(*this, *fileState, entry.text.string(), facts);
}

std::optional<std::string> ClipMatcher::namedPath(std::string_view text) const {
    if (!filePattern)
        return std::nullopt;
    const auto match = compiledFilePattern.match(*filePattern, Pattern::Case::sensitive, text);
    if (!match || match->groups.size() < 2 || !match->has(1))
        return std::nullopt;
    const auto path = Folding::trimmed((*match)[1]);
    if (path.empty())
        return std::nullopt;
    return std::string(path);
}

bool ClipMatcher::compiles(std::string_view regex) {
    return Pattern::compiled(regex, Pattern::Case::ignored, Pattern::Anchors::lines).has_value();
}

std::string_view ClipMatcher::rawValue(FileState state) {
    return stateNames[static_cast<std::size_t>(state)];
}

std::optional<FileState> ClipMatcher::stateNamed(std::string_view rawValue) {
    const auto found = std::ranges::find(stateNames, rawValue);
    if (found == stateNames.end())
        return std::nullopt;
    return static_cast<FileState>(found - stateNames.begin());
}

} // namespace tessarine
