#pragma once

#include "LauncherCore/text/Pattern.h"

#include <cstddef>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

namespace tessarine {

/// Keeps the regular expression of a rule compiled, since it is asked of hundreds of clippings.
/// Copies share what is compiled. It is a memory beside a text and none of a value's own, so any
/// two are equal. Any thread.
class ClipExpression {
public:
    /// How much of a text is looked at, as if it ended there; what is copied may have millions of
    /// characters, and an expression may begin anew at each.
    static constexpr std::size_t longestText = 262144; // bytes

    ClipExpression() = default;
    ClipExpression(const ClipExpression& other);
    ClipExpression& operator=(const ClipExpression& other);
    ~ClipExpression() = default;

    /// The first match in the text; nothing when there is none, when the expression doesn't compile
    /// and when it takes too many steps. Anchors match lines. The expression and the case are to be
    /// the same each time, or it is compiled anew.
    std::optional<Pattern::Match>
    match(std::string_view expression, Pattern::Case letters, std::string_view text) const;

    bool operator==(const ClipExpression&) const { return true; }

private:
    struct Compiled {
        std::string expression;
        Pattern::Case letters;
        std::optional<Pattern> pattern; ///< nothing when it doesn't compile
    };

    std::shared_ptr<const Compiled> compiled() const;
    std::shared_ptr<const Compiled> compiled(std::string_view expression,
                                             Pattern::Case letters) const;

    mutable std::mutex lock_;                          ///< held for the length of a hand-over alone
    mutable std::shared_ptr<const Compiled> compiled_; ///< null until it is first asked
};

} // namespace tessarine
