#include "tests/desktop/Program.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <spawn.h>
#include <sstream>
#include <stdexcept>
#include <sys/wait.h>
#include <thread>

namespace tessarine {

namespace {

namespace fs = std::filesystem;

/// How often a condition is looked at while waiting for it.
constexpr std::chrono::milliseconds glance{5};

std::vector<char*> pointers(std::vector<std::string>& texts) {
    std::vector<char*> result;
    for (auto& text : texts)
        result.push_back(text.data());
    result.push_back(nullptr);
    return result;
}

} // namespace

bool waitUntil(std::chrono::milliseconds atMost, const std::function<bool()>& holds) {
    const auto end = std::chrono::steady_clock::now() + atMost;
    while (!holds()) {
        if (std::chrono::steady_clock::now() >= end)
            return false;
        std::this_thread::sleep_for(glance);
    }
    return true;
}

TemporaryFolder::TemporaryFolder() {
    auto pattern = (fs::temp_directory_path() / "tessarine-test-XXXXXX").string();
    if (!::mkdtemp(pattern.data()))
        throw std::runtime_error("no temporary folder");
    path_ = pattern;
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
}

void TemporaryFolder::write(const std::string& below, const std::string& bytes) const {
    const fs::path file = path_ + below;
    fs::create_directories(file.parent_path());
    std::ofstream(file) << bytes;
}

std::vector<std::string> TemporaryFolder::contents() const {
    std::vector<std::string> result;
    for (const auto& entry : fs::recursive_directory_iterator(path_))
        result.push_back(entry.path().string().substr(path_.size()));
    std::ranges::sort(result);
    return result;
}

Program::Program(const std::vector<std::string>& words, const Variables& environment) {
    std::vector<std::string> arguments{TESSARINE_EXECUTABLE};
    arguments.insert(arguments.end(), words.begin(), words.end());

    // One wrong key of a test must not reach the machine: neither its services nor its drives.
    Variables variables{{"HOME", files_.path("/home")},
                        {"PATH", "/usr/bin:/bin"},
                        {"DBUS_SYSTEM_BUS_ADDRESS", "unix:path=" + files_.path("/no-system-bus")},
                        {"TESSARINE_HARMLESS", "1"}};
    for (const auto& [name, value] : environment)
        variables[name] = value;
    std::vector<std::string> settings;
    for (const auto& [name, value] : variables) {
        if (!value.empty())
            settings.push_back(name + "=" + value);
    }

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
    const auto out = files_.path("/out");
    const auto error = files_.path("/error");
    posix_spawn_file_actions_addopen(&actions, 1, out.c_str(), O_WRONLY | O_CREAT, 0600);
    posix_spawn_file_actions_addopen(&actions, 2, error.c_str(), O_WRONLY | O_CREAT, 0600);
    start_ = std::chrono::steady_clock::now();
    const int failure = ::posix_spawn(&pid_,
                                      TESSARINE_EXECUTABLE,
                                      &actions,
                                      nullptr,
                                      pointers(arguments).data(),
                                      pointers(settings).data());
    posix_spawn_file_actions_destroy(&actions);
    if (failure != 0)
        throw std::runtime_error("the executable could not be started");
}

Program::~Program() {
    if (pid_ < 0)
        return;
    ::kill(pid_, SIGKILL);
    ::waitpid(pid_, nullptr, 0);
}

std::optional<Program::Output> Program::finish(std::chrono::milliseconds atMost) {
    int status = 0;
    if (!waitUntil(atMost, [&] { return ::waitpid(pid_, &status, WNOHANG) == pid_; }))
        return std::nullopt;
    pid_ = -1;
    return Output{.status = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status),
                  .out = read("/out"),
                  .error = read("/error"),
                  .took = std::chrono::duration_cast<std::chrono::milliseconds>(
                      std::chrono::steady_clock::now() - start_)};
}

bool Program::waitForError(const std::string& text, std::chrono::milliseconds atMost) {
    return waitUntil(atMost, [&] { return read("/error").find(text) != std::string::npos; });
}

std::string Program::read(const char* name) const {
    std::ostringstream text;
    text << std::ifstream(files_.path(name)).rdbuf();
    return text.str();
}

Program::Output run(const std::vector<std::string>& words, const Program::Variables& environment) {
    Program program(words, environment);
    if (auto output = program.finish())
        return *std::move(output);
    throw std::runtime_error("the executable did not end");
}

} // namespace tessarine
