#pragma once

#include "launcherapp/platform/DictionarySource.h"
#include "launcherapp/platform/MainQueue.h"

#include <map>
#include <utility>
#include <vector>

namespace tessarine {

/// A dictionary of a few words, slow to answer.
class FakeDictionarySource : public DictionarySource {
public:
    explicit FakeDictionarySource(MainQueue& queue) : queue_(queue) {}

    void define(const std::string& word,
                std::function<void(std::optional<std::string>)> done) override {
        asked.push_back(word);
        const auto found = definitions.find(word);
        const auto text = found == definitions.end() ? std::nullopt : std::optional(found->second);
        queue_.postAfter(delay, [done = std::move(done), text] { done(text); });
    }

    std::map<std::string, std::string> definitions;
    std::vector<std::string> asked;
    Seconds delay{0.1};

private:
    MainQueue& queue_;
};

} // namespace tessarine
