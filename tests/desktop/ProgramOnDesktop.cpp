#include "tests/desktop/ProgramOnDesktop.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <stdexcept>

namespace tessarine {

namespace fs = std::filesystem;

std::string variable(const char* name) {
    const char* const value = std::getenv(name);
    return value ? value : "";
}

std::string textOf(const std::string& path) {
    std::ostringstream text;
    text << std::ifstream(path).rdbuf();
    return text.str();
}

ProgramOnDesktop::ProgramOnDesktop(const Program::Variables& display)
    : environment{{"HOME", folder.path("/home")},
                  {"LC_ALL", "C.UTF-8"}, // the toolkit knows Compose and dead keys by the locale
                  {"XDG_DATA_DIRS", folder.path("/data")},
                  {"XDG_RUNTIME_DIR", folder.path("/runtime")},
                  {"DBUS_SESSION_BUS_ADDRESS", variable("DBUS_SESSION_BUS_ADDRESS")}},
      display_(display) {
    environment.insert(display.begin(), display.end());
    install("zebra", "Zebra Writer");
    install("zeal", "Zeal");
    // A launcher that runs on this machine by chance, or another test's, must not decide the chord.
    prefer(R"({"tookHotkeyDeliberately": true})");
}

ProgramOnDesktop::~ProgramOnDesktop() {
    endOthers();
    if (HasFailure())
        std::cout << "The program's log:\n" << textOf(support("tessarine.log"));
}

void ProgramOnDesktop::install(const std::string& id, const std::string& name) const {
    folder.write("/data/applications/" + id + ".desktop",
                 "[Desktop Entry]\nType=Application\nIcon=x\nName=" + name +
                     "\nExec=/usr/bin/touch " + folder.path("/started-" + id) + "\n");
}

bool ProgramOnDesktop::started(const std::string& id) const {
    return waitUntil(patience, [&] { return fs::exists(folder.path("/started-" + id)); });
}

bool ProgramOnDesktop::hasStarted(const std::string& id) const {
    return fs::remove(folder.path("/started-" + id));
}

void ProgramOnDesktop::prefer(const std::string& json) const {
    folder.write("/home/.config/tessarine/preferences.json", json);
}

void ProgramOnDesktop::start(const std::string& invitation) {
    fs::remove(support("tessarine.log"));
    program = std::make_unique<Program>(std::vector<std::string>{}, environment);
    // The log is written a moment after, and begun anew: what is counted later is all of this run.
    if (!program->waitForError(invitation) || !becomes(1, " launched "))
        throw std::runtime_error("the program did not start as it should");
}

void ProgramOnDesktop::run(const std::string& command) {
    ASSERT_EQ(std::system(command.c_str()), 0) << command;
}

std::string ProgramOnDesktop::onDisplay(const std::string& command) const {
    std::string words = "env";
    for (const auto& [name, value] : display_)
        words += " " + name + "=" + value;
    return words + " " + command;
}

void ProgramOnDesktop::launch(const std::string& command) const {
    run(onDisplay(command) + " >/dev/null 2>&1 & echo $! >> " + others_);
}

void ProgramOnDesktop::endOthers() const {
    run("for process in $(cat " + others_ +
        " 2>/dev/null); do kill $process 2>/dev/null; done; rm -f " + others_);
}

int ProgramOnDesktop::logged(const std::string& text) const {
    std::ifstream log(support("tessarine.log"));
    int count = 0;
    for (std::string line; std::getline(log, line);)
        count += line.find(text) != std::string::npos ? 1 : 0;
    return count;
}

bool ProgramOnDesktop::becomes(int count, const std::string& text) const {
    return waitUntil(patience, [&] { return logged(text) == count; });
}

std::string ProgramOnDesktop::support(const std::string& name) const {
    return folder.path("/home/.local/share/tessarine/" + name);
}

nlohmann::json ProgramOnDesktop::history() const {
    return nlohmann::json::parse(textOf(support("clipboard.json")), nullptr, false);
}

std::vector<std::string> ProgramOnDesktop::keptTexts() const {
    const auto read = history();
    std::vector<std::string> texts;
    if (read.is_object())
        for (const auto& entry : read.at("entries"))
            texts.push_back(entry.at("text"));
    return texts;
}

bool ProgramOnDesktop::keeps(const std::vector<std::string>& texts) const {
    return waitUntil(patience, [&] { return keptTexts() == texts; });
}

void ProgramOnDesktop::startWatching() {
    start();
    ASSERT_TRUE(becomes(1, "recording is on"));
}

} // namespace tessarine
