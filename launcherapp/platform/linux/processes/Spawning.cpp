#include "launcherapp/platform/linux/processes/Spawning.h"

#include "launcherapp/platform/linux/processes/OwnVariables.h"

#include <fmt/format.h>

#include <QFileInfo>
#include <QStandardPaths>
#include <algorithm>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <map>
#include <spawn.h>
#include <sys/syscall.h>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace tessarine {

namespace {

bool isExecutableFile(const QString& path) {
    const QFileInfo file(path);
    return file.isFile() && file.isExecutable();
}

bool holdsNul(const std::string& text) {
    return text.find('\0') != std::string::npos;
}

/// The folder asked for, or the nearest thing to it that is there.
std::string workingDirectory(const std::string& wanted, const std::string& home) {
    for (const auto& candidate : {wanted, home}) {
        if (!candidate.empty() && QFileInfo(QString::fromStdString(candidate)).isDir())
            return candidate;
    }
    return "/";
}

/// A list of texts as the C library takes them. The texts must outlive it.
std::vector<char*> pointers(std::vector<std::string>& texts) {
    std::vector<char*> result;
    result.reserve(texts.size() + 1);
    for (auto& text : texts)
        result.push_back(text.data());
    result.push_back(nullptr);
    return result;
}

/// The user's own variables, without those of this process alone, and with some set on top.
std::vector<std::string> surroundings(const std::map<std::string, std::string>& changes) {
    auto variables = changes;
    for (char** entry = environ; *entry; ++entry) {
        const std::string_view line = *entry;
        const auto equals = line.find('=');
        if (equals != std::string_view::npos && line.substr(equals + 1) != ownVariableValue)
            variables.try_emplace(std::string(line.substr(0, equals)), line.substr(equals + 1));
    }
    std::vector<std::string> result;
    result.reserve(variables.size());
    for (const auto& [name, value] : variables)
        result.push_back(fmt::format("{}={}", name, value));
    return result;
}

/// What a program starts with: the state that a fresh login would give it, since what we ignore,
/// block or hold open is ours alone.
class FreshState {
public:
    FreshState(const std::string& directory, Spawning::Streams streams) {
        ::posix_spawn_file_actions_init(&actions_);
        lead(STDOUT_FILENO, streams.output);
        lead(STDERR_FILENO, streams.errors);
        lead(STDIN_FILENO, streams.input);
        ::posix_spawn_file_actions_addclosefrom_np(&actions_, STDERR_FILENO + 1);
        ::posix_spawn_file_actions_addchdir_np(&actions_, directory.c_str());

        ::posix_spawnattr_init(&attributes_);
        sigset_t signals;
        ::sigfillset(&signals);
        ::posix_spawnattr_setsigdefault(&attributes_, &signals);
        ::sigemptyset(&signals);
        ::posix_spawnattr_setsigmask(&attributes_, &signals);
        ::posix_spawnattr_setflags(
            &attributes_, POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);
    }

    ~FreshState() {
        ::posix_spawn_file_actions_destroy(&actions_);
        ::posix_spawnattr_destroy(&attributes_);
    }

    FreshState(const FreshState&) = delete;
    FreshState& operator=(const FreshState&) = delete;

    /// The process, or nothing and errno.
    std::optional<pid_t> start(std::vector<std::string> arguments,
                               std::vector<std::string> environment) const {
        pid_t process = 0;
        errno = ::posix_spawn(&process,
                              arguments.front().c_str(),
                              &actions_,
                              &attributes_,
                              pointers(arguments).data(),
                              pointers(environment).data());
        return errno == 0 ? std::optional(process) : std::nullopt;
    }

private:
    void lead(int stream, std::optional<int> target) {
        // A terminal or log that ends with us would take what it started along.
        if (target)
            ::posix_spawn_file_actions_adddup2(&actions_, *target, stream);
        else
            ::posix_spawn_file_actions_addopen(&actions_, stream, "/dev/null", O_RDWR, 0);
    }

    posix_spawn_file_actions_t actions_{};
    posix_spawnattr_t attributes_{};
};

} // namespace

std::optional<std::string> Spawning::executable(std::string_view program) {
    const auto name = QString::fromUtf8(program.data(), static_cast<qsizetype>(program.size()));
    if (name.contains(QLatin1Char('/')))
        return isExecutableFile(name) ? std::optional(name.toStdString()) : std::nullopt;
    const auto path = QStandardPaths::findExecutable(name);
    return path.isEmpty() ? std::nullopt : std::optional(path.toStdString());
}

pid_t Spawning::start(const ProcessSpec& spec, const std::string& home, Streams streams) {
    if (spec.arguments.empty())
        throw ProcessError("there is no program to start");
    const auto program = executable(spec.arguments.front());
    if (!program)
        throw ProcessError(spec.arguments.front() + " could not be started: no such program");
    if (std::ranges::any_of(spec.arguments, holdsNul))
        throw ProcessError(*program + " could not be started: an argument holds a NUL");

    auto arguments = spec.arguments;
    arguments.front() = *program;
    const FreshState state(workingDirectory(spec.workingDirectory, home), streams);
    const auto process = state.start(arguments, surroundings(spec.environment));
    if (!process)
        throw ProcessError(*program +
                           " could not be started: " + std::generic_category().message(errno));
    return *process;
}

FileDescriptor Spawning::endOf(pid_t process) {
    return FileDescriptor(static_cast<int>(::syscall(SYS_pidfd_open, process, 0)));
}

} // namespace tessarine
