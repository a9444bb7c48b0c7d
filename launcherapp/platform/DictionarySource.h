#pragma once

#include <functional>
#include <optional>
#include <string>

namespace tessarine {

/// Definitions of words, from what is installed on this machine. Main thread only.
class DictionarySource {
public:
    virtual ~DictionarySource() = default;

    /// Looks the word up without holding up the main thread. `done` is called once, later, on the
    /// main thread: with the beginning of the definition on one line, or with nothing when there
    /// is no dictionary, no such word, or no answer within a few seconds.
    virtual void define(const std::string& word,
                        std::function<void(std::optional<std::string> text)> done) = 0;
};

} // namespace tessarine
