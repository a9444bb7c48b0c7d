#include "launcherapp/platform/linux/files/FileResidentCopies.h"

#include "launcherapp/platform/Environment.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <optional>
#include <string_view>
#include <sys/file.h>
#include <sys/stat.h>
#include <thread>

namespace tessarine {

namespace {

constexpr std::string_view filePrefix = "resident-";

std::optional<std::int64_t> processOf(std::string_view fileName) {
    if (!fileName.starts_with(filePrefix))
        return std::nullopt;
    fileName.remove_prefix(filePrefix.size());
    std::int64_t process = 0;
    const auto end = fileName.data() + fileName.size();
    const auto [rest, error] = std::from_chars(fileName.data(), end, process);
    return error == std::errc{} && rest == end && process > 0 ? std::optional(process)
                                                              : std::nullopt;
}

bool isLocked(const std::string& path) {
    const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW));
    return file && ::flock(file.number(), LOCK_SH | LOCK_NB) != 0 && errno == EWOULDBLOCK;
}

} // namespace

FileResidentCopies::FileResidentCopies(const Environment& environment)
    : folder_(environment.runtimeDir ? *environment.runtimeDir + "/tessarine" : "") {}

void FileResidentCopies::announce() {
    if (folder_.empty())
        return;
    ::mkdir(folder_.c_str(), 0700);
    // Locked before it has its name, or another copy could take it for one left over.
    const auto unnamed = folder_ + "/starting-" + std::to_string(::getpid());
    own_ = FileDescriptor(::open(unnamed.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
    if (own_ && ::flock(own_.number(), LOCK_EX | LOCK_NB) == 0)
        std::rename(unnamed.c_str(), fileOf(::getpid()).c_str());
}

std::vector<std::int64_t> FileResidentCopies::others() const {
    std::vector<std::int64_t> result;
    if (folder_.empty())
        return result;
    std::error_code error;
    for (auto it = std::filesystem::directory_iterator(folder_, error);
         !error && it != std::filesystem::directory_iterator();
         it.increment(error)) {
        const auto process = processOf(it->path().filename().string());
        if (!process || *process == ::getpid())
            continue;
        if (isLocked(it->path().string()))
            result.push_back(*process);
        else
            ::unlink(it->path().c_str()); // left over from a copy that ended
    }
    std::ranges::sort(result);
    return result;
}

void FileResidentCopies::terminate(std::int64_t process) {
    if (!isGone(process))
        ::kill(static_cast<pid_t>(process), SIGTERM);
}

void FileResidentCopies::forceTerminate(std::int64_t process) {
    if (!isGone(process))
        ::kill(static_cast<pid_t>(process), SIGKILL);
}

bool FileResidentCopies::isGone(std::int64_t process) const {
    // One that has ended but whose parent has not asked for its status still has its id.
    const bool noSuchProcess = ::kill(static_cast<pid_t>(process), 0) != 0 && errno == ESRCH;
    return noSuchProcess || !isLocked(fileOf(process));
}

void FileResidentCopies::pause(std::chrono::milliseconds duration) {
    std::this_thread::sleep_for(duration);
}

std::string FileResidentCopies::fileOf(std::int64_t process) const {
    return folder_ + "/" + std::string(filePrefix) + std::to_string(process);
}

} // namespace tessarine
