#pragma once

#include "launcherapp/platform/MainQueue.h"
#include "launcherapp/platform/ProgramReader.h"
#include "launcherapp/platform/linux/files/FileDescriptor.h"

#include <atomic>
#include <functional>
#include <optional>
#include <sys/types.h>

namespace tessarine {

/// One program whose output is being read. What RunningProcess declares is any thread's; the rest
/// is the reading thread's alone, and its owner's when that thread has ended.
class PipeReading : public RunningProcess {
public:
    static constexpr Seconds forEver{3600}; ///< as long as a thread sleeps at once

    /// `output` doesn't block. `ended` is called by the main queue.
    PipeReading(pid_t process,
                FileDescriptor output,
                std::size_t keepBytes,
                std::function<void(ProcessEnd)> ended);

    bool isRunning() const override { return isRunning_; }

    void terminate() override;

    /// Wakes the reading thread; set before it has the program.
    std::function<void()> wakeUp;

    /// What to wait for: output, and the end of the process. None of what has come already.
    const FileDescriptor& output() const { return output_; }

    const FileDescriptor& end() const { return end_; }

    /// How long until something is due that neither of them tells.
    Seconds patience(Seconds now) const;

    /// Does what is due, without waiting.
    void step(MainQueue& queue);

    /// Nothing is left to be done.
    bool isOver() const { return !ended_ && !output_ && isReaped_; }

    /// Nobody looks after it from here on: kills it if it was asked to end.
    void letGo();

private:
    void readOutput();
    void lookForEnd(Seconds now);
    void endGroup(Seconds now);
    void tell(MainQueue& queue);

    const pid_t process_;
    FileDescriptor output_;
    FileDescriptor end_;
    std::size_t keepBytes_; ///< of what is still to come
    ProcessEnd result_;
    std::function<void(ProcessEnd)> ended_; ///< none once it was called
    std::atomic<bool> isRunning_ = true;
    std::atomic<bool> isAskedToEnd_ = false;
    std::optional<Seconds> endedAt_;
    std::optional<Seconds> askedAt_;
    bool isKilled_ = false;
    bool isReaped_ = false;
};

} // namespace tessarine
