#pragma once

#include "launcherapp/platform/MainQueue.h"
#include "launcherapp/platform/ProgramReader.h"
#include "launcherapp/platform/linux/files/FileDescriptor.h"

#include <atomic>
#include <cstddef>
#include <functional>
#include <optional>
#include <span>
#include <sys/types.h>

namespace tessarine {

/// One program whose output is being read. What RunningProcess declares is any thread's; the rest
/// is the reading thread's alone, and its owner's when that thread has ended.
class PipeReading : public RunningProcess {
public:
    static constexpr Seconds longestSleep{3600}; ///< of the reading thread, at once
    /// For output after the end, held open by others: what a program itself has printed is in the
    /// pipe when it ends.
    static constexpr Seconds grace{0.3};
    static constexpr Seconds patience{2.0}; ///< from the request to end until the kill

    /// `output` doesn't block. `ended` is called by the main queue. `wakeUp` wakes the reading
    /// thread, and is called by any.
    PipeReading(pid_t process,
                FileDescriptor output,
                std::size_t keepBytes,
                std::function<void(ProcessEnd)> ended,
                std::function<void()> wakeUp);

    bool isRunning() const override { return isRunning_; }

    void terminate() override;

    /// What to wait for: output, and the end of the process. None of what has come already.
    const FileDescriptor& output() const { return output_; }

    const FileDescriptor& end() const { return end_; }

    /// How long until something is due that neither of them tells.
    Seconds untilNextStep(Seconds now) const;

    /// Does what is due, without waiting. `chunk` is room to read into.
    void step(MainQueue& queue, std::span<char> chunk);

    /// Nothing is left to be done.
    bool isOver() const { return !ended_ && !output_ && isReaped_; }

    /// Nobody looks after it from here on: kills it if it was asked to end.
    void letGo();

private:
    void readOutput(std::span<char> chunk);
    void lookForEnd(Seconds now);
    void endGroup(Seconds now);
    void tell(MainQueue& queue);

    const pid_t process_;
    FileDescriptor output_;
    FileDescriptor end_;
    std::size_t keepBytes_; ///< of what is still to come
    ProcessEnd result_;
    std::function<void(ProcessEnd)> ended_; ///< none once it was called
    const std::function<void()> wakeUp_;
    std::atomic<bool> isRunning_ = true;
    std::atomic<bool> isAskedToEnd_ = false;
    std::optional<Seconds> endedAt_;
    std::optional<Seconds> askedAt_;
    bool isKilled_ = false;
    bool isReaped_ = false;
};

} // namespace tessarine
