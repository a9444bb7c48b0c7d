#pragma once

#include "tests/desktop/Program.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <memory>
#include <string>
#include <vector>

namespace tessarine {

/// What a variable of the test's own environment holds; empty when it isn't set.
std::string variable(const char* name);

/// All that is in a file; empty when there is none.
std::string textOf(const std::string& path);

/// The real program on a desktop, with a home folder and applications of its own.
class ProgramOnDesktop : public testing::Test {
protected:
    /// `display` are the variables that name it.
    explicit ProgramOnDesktop(const Program::Variables& display);
    ~ProgramOnDesktop() override;

    /// An application that leaves a mark when it is launched.
    void install(const std::string& id, const std::string& name) const;
    bool started(const std::string& id) const;
    /// Whether it was, by now; forgets it.
    bool hasStarted(const std::string& id) const;

    /// The text of the file of preferences, a JSON object. Before the start.
    void prefer(const std::string& json) const;

    /// Starts the program and waits until it says this; throws std::runtime_error when it doesn't.
    void start(const std::string& invitation = "Super+Space brings it up");

    static void run(const std::string& command);

    /// Starts a program on the display that goes on beside the test.
    void launch(const std::string& command) const;
    /// Ends all of those.
    void endOthers() const;

    /// How often the log has a line with this text.
    int logged(const std::string& text) const;
    bool becomes(int count, const std::string& text) const;

    /// A file of what the program keeps.
    std::string support(const std::string& name) const;
    /// What the clipboard's history holds, as it lies on disk; a null for no document.
    nlohmann::json history() const;
    std::vector<std::string> keptTexts() const;
    bool keeps(const std::vector<std::string>& texts) const;
    /// Until the program watches what is copied.
    void startWatching();

    static constexpr std::chrono::seconds patience{15};
    const std::string shown = "panel show: visible=true key=true";
    const std::string hidden = "panel hide";
    TemporaryFolder folder;
    Program::Variables environment;
    std::unique_ptr<Program> program;

private:
    std::string onDisplay(const std::string& command) const;

    Program::Variables display_;
    const std::string others_ = folder.path("/processes");
};

} // namespace tessarine
