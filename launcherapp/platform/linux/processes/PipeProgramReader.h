#pragma once

#include "launcherapp/platform/MainQueue.h"
#include "launcherapp/platform/ProgramReader.h"

#include <memory>
#include <string>

namespace tessarine {

struct Environment;

/// Reads programs' output through pipes, all by one thread that the first program starts. What a
/// program leaves behind may go on printing: that is read too, and dropped. Main thread only.
class PipeProgramReader : public ProgramReader {
public:
    PipeProgramReader(MainQueue& queue, const Environment& environment);
    /// Calls no `ended` any more, but for those already on their way to the main queue. Programs
    /// run on, and their output is drained by programs that outlive us, so that none of them ends
    /// at a broken pipe; those asked to end are killed.
    ~PipeProgramReader() override;
    PipeProgramReader(const PipeProgramReader&) = delete;
    PipeProgramReader& operator=(const PipeProgramReader&) = delete;

    std::shared_ptr<RunningProcess> start(const ProcessSpec& spec,
                                          const OutputReading& reading,
                                          std::function<void(ProcessEnd end)> ended) override;

private:
    class Thread;
    MainQueue& queue_;
    std::string home_;
    std::shared_ptr<Thread> thread_; ///< null before the first program
};

} // namespace tessarine
