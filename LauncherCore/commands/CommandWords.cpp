#include "LauncherCore/commands/CommandWords.h"

#include "LauncherCore/text/Folding.h"

#include <algorithm>
#include <utility>

namespace tessarine {

std::vector<std::string> CommandWords::listed(std::string_view commaSeparated) {
    std::vector<std::string> words;
    while (!commaSeparated.empty()) {
        const auto end = std::min(commaSeparated.find(','), commaSeparated.size());
        words.emplace_back(commaSeparated.substr(0, end));
        commaSeparated.remove_prefix(std::min(end + 1, commaSeparated.size()));
    }
    return words;
}

void CommandWords::Unique::know(std::string_view word) {
    known_.push_back(Folding::lowercase(word));
}

void CommandWords::Unique::add(std::string_view word) {
    auto lower = Folding::lowercase(word);
    if (lower.empty() || std::ranges::count(known_, lower) > 0)
        return;
    known_.push_back(std::move(lower));
    words_.emplace_back(word);
}

} // namespace tessarine
