#include "LauncherCore/clipboard/ClipExpression.h"

#include "LauncherCore/text/Printable.h"

#include <utility>

namespace tessarine {

ClipExpression::ClipExpression(const ClipExpression& other) : compiled_(other.compiled()) {}

ClipExpression& ClipExpression::operator=(const ClipExpression& other) {
    if (this == &other)
        return *this;
    auto compiled = other.compiled();
    const std::lock_guard lock(lock_);
    compiled_ = std::move(compiled);
    return *this;
}

std::optional<Pattern::Match> ClipExpression::match(std::string_view expression,
                                                    Pattern::Case letters,
                                                    std::string_view text) const {
    const auto compiledNow = compiled(expression, letters);
    if (!compiledNow->pattern)
        return std::nullopt;
    return compiledNow->pattern->match(Printable::beginning(text, longestText));
}

std::shared_ptr<const ClipExpression::Compiled> ClipExpression::compiled() const {
    const std::lock_guard lock(lock_);
    return compiled_;
}

std::shared_ptr<const ClipExpression::Compiled>
ClipExpression::compiled(std::string_view expression, Pattern::Case letters) const {
    auto known = compiled();
    if (known && known->expression == expression && known->letters == letters)
        return known;
    auto made = std::make_shared<const Compiled>(
        Compiled{.expression = std::string(expression),
                 .letters = letters,
                 .pattern = Pattern::compiled(expression, letters, Pattern::Anchors::lines)});
    const std::lock_guard lock(lock_);
    compiled_ = made;
    return made;
}

} // namespace tessarine
