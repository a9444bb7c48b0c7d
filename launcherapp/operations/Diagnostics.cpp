#include "launcherapp/operations/Diagnostics.h"

#include "launcherapp/platform/FileStore.h"
#include "launcherapp/platform/MainQueue.h"
#include "launcherapp/platform/WorkQueues.h"

#include <fmt/chrono.h>
#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <ctime>
#include <utility>

namespace tessarine {

namespace {

constexpr std::size_t keptSamples = 50;

/// UTC with milliseconds, so that lines of two machines or of a clock change stay in order.
std::string stamp(double now) {
    const auto milliseconds = static_cast<std::int64_t>(now * 1000);
    // Broken down here: the library's own formatting of a time point shows the local clock.
    const auto moment = fmt::gmtime(static_cast<std::time_t>(milliseconds / 1000));
    return fmt::format("{:%Y-%m-%dT%H:%M:%S}.{:03}Z", moment, milliseconds % 1000);
}

/// The message on one line, whatever a file name in it holds.
std::string oneLine(std::string_view message) {
    std::string line(message);
    std::ranges::replace_if(
        line, [](char c) { return c == '\n' || c == '\r'; }, ' ');
    return line;
}

void keep(std::deque<double>& samples, double milliseconds) {
    samples.push_back(milliseconds);
    if (samples.size() > keptSamples)
        samples.pop_front();
}

} // namespace

/// The file's side, touched by the serial queue's jobs alone.
struct Diagnostics::Log {
    FileStore& files;
    std::function<std::string()> supportDir;
    Run run;
    bool begun = false;
    std::size_t bytes = 0; ///< written since then

    void write(const std::string& line) {
        try {
            // Each time: the folder may have been removed under the running program.
            const auto folder = supportDir();
            files.makeDirectories(folder);
            const auto path = folder + "/tessarine.log";
            if (run == Run::resident && (!begun || bytes + line.size() > rotationBytes))
                beginAnew(path, folder + "/log.txt");
            files.append(path, line);
            bytes += line.size();
        } catch (const FileError&) {
            // There is no better place to tell it: logging never troubles its caller.
        }
    }

    void beginAnew(const std::string& path, const std::string& previous) {
        if (files.info(path))
            files.rename(path, previous);
        begun = true;
        bytes = 0;
    }
};

Diagnostics::Diagnostics(MainQueue& queue,
                         WorkQueues& work,
                         FileStore& files,
                         std::function<std::string()> supportDir,
                         Run run)
    : queue_(queue), logQueue_(work.serial("com.corvane.tessarine.log")),
      log_(std::make_shared<Log>(
          Log{.files = files, .supportDir = std::move(supportDir), .run = run})) {}

void Diagnostics::recordShow(double milliseconds) {
    keep(showTimes_, milliseconds);
}

void Diagnostics::recordPress(double milliseconds) {
    keep(pressTimes_, milliseconds);
}

void Diagnostics::recordSearch(double milliseconds) {
    keep(searchTimes_, milliseconds);
}

std::optional<double> Diagnostics::median(std::vector<double> values) {
    if (values.empty())
        return std::nullopt;
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::ranges::nth_element(values, middle);
    return *middle;
}

void Diagnostics::log(std::string_view message) {
    auto line = fmt::format("{} {}\n", stamp(queue_.now()), oneLine(message));
    logQueue_.submit([log = log_, line = std::move(line)] { log->write(line); });
}

} // namespace tessarine
