#pragma once

#include "launcherapp/platform/Alerts.h"

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace tessarine {

/// Notes what the user was asked and told; the test answers.
class FakeAlerts : public Alerts {
public:
    void ask(const AlertQuestion& question, std::function<void(bool confirmed)> answered) override {
        questions.push_back(question);
        answers.push_back(std::move(answered));
    }

    void tell(const std::string& title, const std::string& text) override {
        told.emplace_back(title, text);
    }

    Subscription
    wait(const std::string& title, const std::string&, std::function<void()> takenBack) override {
        waiting.push_back(title);
        takeBack = std::move(takenBack);
        return Subscription([this, title] { std::erase(waiting, title); });
    }

    std::vector<std::string> waiting; ///< titles of the windows that are shown
    std::function<void()> takeBack;   ///< the button of the last of them
    std::vector<AlertQuestion> questions;
    std::vector<std::function<void(bool)>> answers; ///< one for each question
    std::vector<std::pair<std::string, std::string>> told;
};

} // namespace tessarine
