#include "launcherapp/platform/linux/files/RunFolder.h"

#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <sys/stat.h>
#include <unistd.h>

namespace tessarine {

namespace {

namespace fs = std::filesystem;

[[noreturn]] void fail(const std::string& path, int error) {
    throw std::runtime_error("the folder " + path + " could not be made: " + std::strerror(error));
}

void makeFolder(const std::string& path) {
    if (::mkdir(path.c_str(), 0700) != 0 && errno != EEXIST)
        fail(path, errno);
}

/// The process that a folder "<name>-<number>" is of.
std::optional<pid_t> processOf(std::string_view folder, std::string_view name) {
    if (!folder.starts_with(name) || !folder.substr(name.size()).starts_with('-'))
        return std::nullopt;
    const auto digits = folder.substr(name.size() + 1);
    pid_t process = 0;
    const auto [end, error] =
        std::from_chars(digits.data(), digits.data() + digits.size(), process);
    const bool isNumber = error == std::errc{} && end == digits.data() + digits.size();
    return isNumber && process > 0 ? std::optional(process) : std::nullopt;
}

bool runs(pid_t process) {
    return process != ::getpid() && (::kill(process, 0) == 0 || errno != ESRCH);
}

void removeLeftovers(const std::string& parent, std::string_view name) {
    std::error_code error;
    for (fs::directory_iterator entry(parent, error), end; !error && entry != end;
         entry.increment(error)) {
        const auto process = processOf(entry->path().filename().native(), name);
        std::error_code ignored; // it stays where it is, which harms nobody
        if (process && !runs(*process))
            fs::remove_all(entry->path(), ignored);
    }
}

/// Of a name that nobody can foresee, since others write there too.
std::string temporaryFolder(const Environment& environment, std::string_view name) {
    auto path = environment.temporaryDir + "/tessarine-" + std::string(name) + "-XXXXXX";
    if (!::mkdtemp(path.data()))
        fail(path, errno);
    return path;
}

} // namespace

RunFolder::RunFolder(const Environment& environment, std::string_view name) {
    if (!environment.runtimeDir) {
        path_ = temporaryFolder(environment, name);
        return;
    }
    const auto parent = *environment.runtimeDir + "/tessarine";
    std::error_code ignored; // then the next line fails, and says so
    fs::create_directories(*environment.runtimeDir, ignored);
    makeFolder(parent);
    removeLeftovers(parent, name);
    path_ = parent + "/" + std::string(name) + "-" + std::to_string(::getpid());
    if (::mkdir(path_.c_str(), 0700) != 0)
        fail(path_, errno);
}

RunFolder::~RunFolder() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
}

} // namespace tessarine
