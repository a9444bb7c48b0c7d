#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tessarine {

/// A regular expression in ICU's syntax, compiled once: what the readers of typed text are written
/// in, and what users write themselves. Made at namespace or function scope and kept. Any thread;
/// one match at a time, so a second thread waits for the first.
class Pattern {
public:
    enum class Case { sensitive, ignored };

    /// What "^" and "$" stand for: the ends of the whole text, or of each of its lines.
    enum class Anchors { text, lines };

    /// What a match found. Texts are of the matched text's own bytes.
    struct Match {
        std::vector<std::optional<std::string>> groups; ///< the whole match first; then each group
        std::size_t end = 0;                            ///< bytes of the text up to the match's end

        /// The text of a group; empty for one that took no part.
        const std::string& operator[](std::size_t group) const;

        bool has(std::size_t group) const { return groups[group].has_value(); }
    };

    /// An expression that doesn't compile is a bug; in release it matches nothing.
    explicit Pattern(std::string_view expression, Case letters = Case::sensitive);

    /// An expression that somebody else wrote; nothing when it doesn't compile. It may take more
    /// steps than our own, and all that it reads is counted: 10 milliseconds at the longest,
    /// and up to 25 where it compares a text with what it found before.
    static std::optional<Pattern>
    compiled(std::string_view expression, Case letters, Anchors anchors);

    ~Pattern();
    Pattern(Pattern&&) noexcept;
    Pattern& operator=(Pattern&&) noexcept;

    /// The first match in `text`; nothing when there is none, and for a text that would take more
    /// steps than an interactive answer may.
    std::optional<Match> match(std::string_view text) const;

private:
    struct State;

    explicit Pattern(std::unique_ptr<State> state);

    std::unique_ptr<State> state_;
};

} // namespace tessarine
