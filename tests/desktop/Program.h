#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace tessarine {

/// Looks again and again until the condition holds; false when it doesn't in time.
bool waitUntil(std::chrono::milliseconds atMost, const std::function<bool()>& holds);

/// A folder below the system's temporary one, removed with all it holds.
class TemporaryFolder {
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    std::string path(const std::string& below = "") const { return path_ + below; }

    /// Writes a file, making its folders.
    void write(const std::string& below, const std::string& bytes) const;

    /// Everything below, sorted, as paths from the folder.
    std::vector<std::string> contents() const;

private:
    std::string path_;
};

/// The real executable as a process, with an environment of its own: a home folder, no display and
/// no session bus unless they are passed on.
class Program {
public:
    using Variables = std::map<std::string, std::string>;

    static constexpr std::chrono::seconds patience{30};

    struct Output {
        int status = -1; ///< exit status; minus the signal's number when one ended it
        std::string out;
        std::string error;
        std::chrono::milliseconds took{0};
    };

    /// Starts it. A variable with an empty value is left out.
    Program(const std::vector<std::string>& words, const Variables& environment);
    /// Kills it if it still runs.
    ~Program();
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    pid_t pid() const { return pid_; }

    /// Waits for the end; nothing when it still runs after `atMost`.
    std::optional<Output> finish(std::chrono::milliseconds atMost = patience);

    /// Waits until `text` stands in what it has written to standard error.
    bool waitForError(const std::string& text, std::chrono::milliseconds atMost = patience);

private:
    std::string read(const char* name) const;

    TemporaryFolder files_;
    pid_t pid_ = -1;
    std::chrono::steady_clock::time_point start_;
};

/// Runs it to its end.
Program::Output run(const std::vector<std::string>& words, const Program::Variables& environment);

} // namespace tessarine
