#pragma once

#include "LauncherCore/clipboard/ClipExpression.h"
#include "LauncherCore/clipboard/ClipboardEntry.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace tessarine {

/// What is known of a file that a clipping names.
struct ClipFileFact {
    bool exists = false;
    bool hasNeedle = false; ///< the text looked for is within its first bytes

    bool operator==(const ClipFileFact&) const = default;
};

/// What a rule asks of the world beyond the clipping itself.
struct ClipFacts {
    /// Nothing when it isn't known yet: then no rule that asks about the file matches.
    std::function<std::optional<ClipFileFact>(const std::string& path,
                                              const std::optional<std::string>& needle)>
        file;
    /// Seconds since 1970 from which on each paste is known; 0: not known.
    double pasteTrackingSince = 0;
};

/// The rule of a taught group: all fields that are set must hold. A value; any thread.
///
/// Its expressions look at no more of a text than `ClipExpression::longestText`, and one that takes
/// too many steps finds nothing, so that a rule costs milliseconds at the longest, whatever was
/// copied and whatever the user wrote.
struct ClipMatcher {
    enum class FileState {
        named,   ///< the text names a file, whatever is there
        missing, ///< which doesn't exist
        contains,
        lacks ///< it exists and has not the needle
    };

    std::optional<std::string> contains;          ///< folded
    std::optional<std::string> firstLineEndsWith; ///< byte for byte
    std::optional<std::string> firstLineContains; ///< folded
    std::optional<std::string> startsWith;        ///< folded
    std::optional<std::string> regex;             ///< anywhere; case ignored, anchors match lines
    std::optional<std::int64_t> maxLength;        ///< characters
    std::optional<std::int64_t> minLength;
    std::optional<bool> pasted;             ///< has a paste mark, or certainly has none
    std::optional<std::string> filePattern; ///< its first group is a path that the text names
    std::optional<FileState> fileState;
    std::optional<std::string> fileNeedle;
    std::optional<ClipKind> kind;

    /// Whether no condition is set; a needle alone is none.
    bool isEmpty() const;

    bool readsAFile() const { return filePattern && fileState; }

    /// By the seven conditions on texts alone; a rule without one matches no text.
    bool matches(const ClipText& text) const;
    bool matches(const ClipboardEntry& entry, const ClipFacts& facts) const;

    /// What the rule says of a clipping's content, which never changes and may be remembered.
    struct Verdict {
        bool holds = false;
        std::optional<std::string> path; ///< the file that decides; nothing when none is asked
    };

    Verdict verdict(const ClipboardEntry& entry) const;

    /// The same as `matches(entry, facts)`, its verdict on that entry known.
    bool matches(const Verdict& verdict, const ClipboardEntry& entry, const ClipFacts& facts) const;

    /// The path that the text names; nothing without one, and for what can't be one.
    std::optional<std::string> namedPath(std::string_view text) const;

    /// Whether an expression compiles as `regex` does.
    static bool compiles(std::string_view regex);

    static std::string_view rawValue(FileState state);
    static std::optional<FileState> stateNamed(std::string_view rawValue); ///< nothing: unknown

    /// What the two expressions are when compiled; no part of the value.
    ClipExpression compiledRegex;
    ClipExpression compiledFilePattern;

    bool operator==(const ClipMatcher&) const = default;
};

} // namespace tessarine
