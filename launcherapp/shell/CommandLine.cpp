#include "launcherapp/shell/CommandLine.h"

#include <algorithm>
#include <utility>

namespace tessarine {

CommandLine::CommandLine(std::vector<std::string> arguments) : arguments_(std::move(arguments)) {}

std::optional<std::string> CommandLine::value(std::string_view flag) const {
    const auto at = position(flag);
    if (!at || *at + 1 >= arguments_.size())
        return std::nullopt;
    return arguments_[*at + 1];
}

std::optional<std::string>
CommandLine::firstUnknown(std::span<const std::string_view> knownFlags,
                          std::span<const std::string_view> families) const {
    for (std::size_t i = 0; i < arguments_.size(); ++i) {
        const std::string_view word = arguments_[i];
        if (!word.starts_with("--") || isFreeText(i))
            continue;
        const bool known = std::ranges::find(knownFlags, word) != knownFlags.end() ||
                           std::ranges::any_of(families, [&](std::string_view family) {
                               return word.starts_with(family);
                           });
        if (!known)
            return arguments_[i];
    }
    return std::nullopt;
}

std::optional<std::size_t> CommandLine::position(std::string_view flag) const {
    for (std::size_t i = 0; i < arguments_.size(); ++i) {
        if (arguments_[i] == flag && !isFreeText(i))
            return i;
    }
    return std::nullopt;
}

bool CommandLine::isFreeText(std::size_t index) const {
    return index > 0 && arguments_[index - 1] == "--arg";
}

} // namespace tessarine
