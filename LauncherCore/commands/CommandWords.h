#pragma once

#include <string>
#include <string_view>
#include <vector>

/// Lists of words by which commands are found. Pure; any thread.
namespace tessarine::CommandWords {

/// The words of a built-in table's column, which has a comma between them and no blank after it.
std::vector<std::string> listed(std::string_view commaSeparated);

/// Words in the order in which they were added, each once when case is ignored.
class Unique {
public:
    /// One that counts as known and isn't among `words`.
    void know(std::string_view word);

    /// Adds the word unless it is empty or known.
    void add(std::string_view word);

    const std::vector<std::string>& words() const { return words_; }

private:
    std::vector<std::string> known_; ///< in lower case
    std::vector<std::string> words_;
};

} // namespace tessarine::CommandWords
