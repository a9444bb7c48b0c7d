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

ClipMatcher::Verdict ClipMatcher::verdict(const ClipboardEntry& entry) const {
    if (kind && *kind != entry.kind)
        return {};
    if (asksOfText(*this) ? !matches(entry.text) : !kind && !pasted)
        return {};
    if (!fileState)
        return {.holds = true};
    auto path = namedPath(entry.text.string());
    if (!path)
        return {};
    // Whether the text names one is known without a look at the disk.
    if (*fileState == FileState::named)
        path.reset();
    return {.holds = true, .path = std::move(path)};
}

bool ClipMatcher::matches(const Verdict& verdict,
                          const ClipboardEntry& entry,
                          const ClipFacts& facts) const {
    if (!verdict.holds || (pasted && !isPasted(entry, *pasted, facts.pasteTrackingSince)))
        return false;
    if (!verdict.path)
        return true;
    const auto fact = facts.file ? facts.file(*verdict.path, fileNeedle) : ClipFileFact();
    return fact && isInState(*fileState, *fact);
}

bool ClipMatcher::matches(const ClipboardEntry& entry, const ClipFacts& facts) const {
    return matches(verdict(entry), entry, facts);
}

std::optional<std::string> ClipMatcher::namedPath(std::string_view text) const {
    if (!filePattern)
        return std::nullopt;
    const auto match = compiledFilePattern.match(*filePattern, Pattern::Case::sensitive, text);
    if (!match || match->groups.size() < 2 || !match->has(1))
        return std::nullopt;
    const auto path = Folding::trimmed((*match)[1]);
    // To the system a NUL ends a path, so this would be the name of another file.
    if (path.empty() || path.find('\0') != std::string_view::npos)
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
