#pragma once

#include "launcherapp/platform/ProcessLauncher.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <string>

namespace tessarine {

/// What is kept of what a program prints. All of it is read, so that none stops at a full pipe.
struct OutputReading {
    enum class Errors { merged, dropped };

    Errors errors = Errors::merged;
    std::size_t keepBytes = std::size_t{64} << 10; ///< from the beginning
};

/// How a program ended whose output was read.
struct ProcessEnd {
    int status = 0;     ///< as a shell tells it: the exit status, or 128 and the signal's number
    std::string output; ///< bytes of any kind
    bool isCut = false; ///< it printed more than was to be kept

    bool operator==(const ProcessEnd&) const = default;
};

/// A program whose output is being read. Letting go of it leaves the program alone.
class RunningProcess {
public:
    virtual ~RunningProcess() = default;

    virtual bool isRunning() const = 0;

    /// Asks the program and all of its group to end; what doesn't within two seconds is killed.
    /// Nothing happens once the program has ended.
    virtual void terminate() = 0;
};

/// Starts programs for what they print. Main thread only.
class ProgramReader {
public:
    virtual ~ProgramReader() = default;

    /// Starts a program of its own session and process group, with its input on the null device
    /// and its output read off the main thread. `ended` is called once, later: when the program
    /// has ended and its output with it, or soon after the program when something that it left
    /// behind holds the output open; that may go on printing. A program with a name gets a scope of
    /// its own where systemd runs. Throws ProcessError when it can't be executed.
    virtual std::shared_ptr<RunningProcess> start(const ProcessSpec& spec,
                                                  const OutputReading& reading,
                                                  std::function<void(ProcessEnd end)> ended) = 0;
};

} // namespace tessarine
