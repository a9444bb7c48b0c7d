#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tessarine {

class FileStore;
class MainQueue;
class SerialQueue;
class WorkQueues;

/// The program's one log: a text file of lines, each a time stamp, a blank and the message.
/// `log` may be called from any thread; the lines are written by one serial queue in the order
/// given, and the caller never waits for the disk. Nothing is created before the first line, and
/// a line that can't be written is dropped.
class Diagnostics {
public:
    enum class Run {
        resident, ///< keeps the text of the run before in "log.txt" and begins anew
        oneShot,  ///< adds to the log that is there
    };

    /// From here the log begins anew even within one run, so that it never fills a disk.
    static constexpr std::size_t rotationBytes = std::size_t{4} << 20;

    /// `supportDir` gives the folder of "tessarine.log"; it is called off the main thread.
    Diagnostics(MainQueue& queue,
                WorkQueues& work,
                FileStore& files,
                std::function<std::string()> supportDir,
                Run run);

    // How long things took, in milliseconds; the newest 50 of each are kept. Main thread.
    void recordShow(double milliseconds);   ///< from the call to the panel drawn
    void recordPress(double milliseconds);  ///< from the hotkey's key to the panel drawn
    void recordSearch(double milliseconds); ///< one recompute of the list

    const std::deque<double>& showTimes() const { return showTimes_; }

    const std::deque<double>& pressTimes() const { return pressTimes_; }

    const std::deque<double>& searchTimes() const { return searchTimes_; }

    /// The middle one of the values; nothing when there are none.
    static std::optional<double> median(std::vector<double> values);

    /// Any thread. One line in plain words, with a topic in lower case before it where it has one.
    void log(std::string_view message);

private:
    struct Log;
    MainQueue& queue_;
    SerialQueue& logQueue_;
    std::shared_ptr<Log> log_;
    std::deque<double> showTimes_;
    std::deque<double> pressTimes_;
    std::deque<double> searchTimes_;
};

} // namespace tessarine
