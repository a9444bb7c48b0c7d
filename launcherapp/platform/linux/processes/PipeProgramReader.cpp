#include "launcherapp/platform/linux/processes/PipeProgramReader.h"

#include "launcherapp/platform/Environment.h"
#include "launcherapp/platform/linux/desktop/SystemdScope.h"
#include "launcherapp/platform/linux/processes/PipeReading.h"
#include "launcherapp/platform/linux/processes/Spawning.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <mutex>
#include <poll.h>
#include <sys/eventfd.h>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

namespace tessarine {

namespace {

using Pending = std::shared_ptr<PipeReading>;

/// Read at once: as much as a pipe holds.
constexpr std::size_t chunkBytes = std::size_t{64} << 10;

struct Pipe {
    FileDescriptor reading;
    FileDescriptor writing;
};

/// Beyond the standard streams, which a start of a program leads elsewhere one after the other.
FileDescriptor aboveStreams(const FileDescriptor& descriptor) {
    return FileDescriptor(::fcntl(descriptor.number(), F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
}

Pipe openPipe(const std::string& program) {
    int ends[2] = {-1, -1};
    if (::pipe2(ends, O_CLOEXEC) == 0) {
        const FileDescriptor reading(ends[0]);
        const FileDescriptor writing(ends[1]);
        Pipe pipe{.reading = aboveStreams(reading), .writing = aboveStreams(writing)};
        // The two ends are files of their own: the program's stays as programs expect it.
        if (pipe.reading && pipe.writing &&
            ::fcntl(pipe.reading.number(), F_SETFL, O_NONBLOCK) == 0)
            return pipe;
    }
    throw ProcessError(program +
                       " could not be started: " + std::generic_category().message(errno));
}

/// Hands the output to a program that reads it when we no longer do.
void drain(const FileDescriptor& output, const std::string& home) {
    ::fcntl(output.number(), F_SETFL, 0);
    try {
        const auto process =
            Spawning::start({.arguments = {"cat"}}, home, {.input = output.number()});
        SystemdScope::request(process, "output");
    } catch (const ProcessError&) {
        // Then a program that prints ends at the broken pipe; there is nobody left to tell.
    }
}

} // namespace

/// What the thread and the main thread share.
class PipeProgramReader::Thread {
public:
    /// Throws std::system_error when there is no descriptor or no thread to be had.
    explicit Thread(MainQueue& queue)
        : queue_(queue), wake_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
        if (!wake_)
            throw std::system_error(errno, std::generic_category());
        thread_ = std::thread([this] { run(); });
    }

    ~Thread() { join(); }

    Thread(const Thread&) = delete;
    Thread& operator=(const Thread&) = delete;

    void add(Pending program) {
        {
            const std::lock_guard lock(mutex_);
            arrived_.push_back(std::move(program));
        }
        wakeUp();
    }

    void wakeUp() const { (void)::eventfd_write(wake_.number(), 1); }

    /// Ends the thread, which never waits for long, and gives what it had under way.
    std::vector<Pending> leave() {
        join();
        takeArrivals();
        return std::exchange(programs_, {});
    }

private:
    void join() {
        if (!thread_.joinable())
            return;
        {
            const std::lock_guard lock(mutex_);
            isEnding_ = true;
        }
        wakeUp();
        thread_.join();
    }

    /// False when the end has come.
    bool takeArrivals() {
        const std::lock_guard lock(mutex_);
        programs_.insert(programs_.end(), arrived_.begin(), arrived_.end());
        arrived_.clear();
        return !isEnding_;
    }

    void run() {
        while (takeArrivals()) {
            std::vector<pollfd> doors{{.fd = wake_.number(), .events = POLLIN}};
            auto sleep = PipeReading::longestSleep;
            const auto now = queue_.uptime();
            for (const auto& program : programs_) {
                doors.push_back({.fd = program->output().number(), .events = POLLIN});
                doors.push_back({.fd = program->end().number(), .events = POLLIN});
                sleep = std::min(sleep, program->untilNextStep(now));
            }
            const auto milliseconds = std::chrono::ceil<std::chrono::milliseconds>(sleep);
            ::poll(doors.data(), doors.size(), static_cast<int>(milliseconds.count()));
            eventfd_t ignored = 0;
            (void)::eventfd_read(wake_.number(), &ignored);
            for (const auto& program : programs_)
                program->step(queue_, chunk_);
            std::erase_if(programs_, [](const auto& program) { return program->isOver(); });
        }
    }

    MainQueue& queue_;
    const FileDescriptor wake_;
    std::mutex mutex_; ///< held for the length of a hand-over alone
    std::vector<Pending> arrived_;
    bool isEnding_ = false;
    std::vector<Pending> programs_;                           ///< the thread's own while it runs
    std::vector<char> chunk_ = std::vector<char>(chunkBytes); ///< likewise
    std::thread thread_;                                      ///< uses all the others
};

PipeProgramReader::PipeProgramReader(MainQueue& queue, const Environment& environment)
    : queue_(queue), home_(environment.home) {}

PipeProgramReader::~PipeProgramReader() {
    if (!thread_)
        return;
    for (const auto& program : thread_->leave()) {
        program->letGo();
        if (program->output())
            drain(program->output(), home_);
    }
}

std::shared_ptr<RunningProcess> PipeProgramReader::start(const ProcessSpec& spec,
                                                         const OutputReading& reading,
                                                         std::function<void(ProcessEnd)> ended) {
    requireMainThread(queue_);
    const std::string program = spec.arguments.empty() ? "a program" : spec.arguments.front();
    try {
        if (!thread_)
            thread_ = std::make_shared<Thread>(queue_);
    } catch (const std::system_error&) {
        throw ProcessError(fmt::format(
            "{} could not be started: the system grants no thread to read it", program));
    }
    auto pipe = openPipe(program);
    const auto errors = reading.errors == OutputReading::Errors::merged
                            ? std::optional(pipe.writing.number())
                            : std::nullopt;
    const auto process =
        Spawning::start(spec, home_, {.output = pipe.writing.number(), .errors = errors});
    if (!spec.name.empty())
        SystemdScope::request(process, spec.name);
    auto running = std::make_shared<PipeReading>(process,
                                                 std::move(pipe.reading),
                                                 reading.keepBytes,
                                                 std::move(ended),
                                                 [thread = std::weak_ptr(thread_)] {
                                                     if (const auto reader = thread.lock())
                                                         reader->wakeUp();
                                                 });
    thread_->add(running);
    return running;
}

} // namespace tessarine
