#include "launcherapp/platform/linux/processes/PipeReading.h"

#include "launcherapp/platform/linux/processes/Spawning.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace tessarine {

namespace {

/// How often to look for the end of a process where the kernel doesn't tell.
constexpr Seconds lookInterval{0.1};

/// A program that prints without end leaves its neighbours their turn.
constexpr int readsPerTurn = 16;

/// As a shell has it.
int statusOf(const siginfo_t& end) {
    constexpr int bySignal = 128;
    return end.si_code == CLD_EXITED ? end.si_status : bySignal + end.si_status;
}

} // namespace

PipeReading::PipeReading(pid_t process,
                         FileDescriptor output,
                         std::size_t keepBytes,
                         std::function<void(ProcessEnd)> ended,
                         std::function<void()> wakeUp)
    : process_(process), output_(std::move(output)), end_(Spawning::endOf(process)),
      keepBytes_(keepBytes), ended_(std::move(ended)), wakeUp_(std::move(wakeUp)) {}

void PipeReading::terminate() {
    isAskedToEnd_ = true;
    wakeUp_();
}

Seconds PipeReading::untilNextStep(Seconds now) const {
    auto sleep = longestSleep;
    const auto waitUntil = [&](Seconds due) { sleep = std::clamp(due - now, Seconds{0}, sleep); };
    if (isAskedToEnd_ && !askedAt_ && !isReaped_)
        return Seconds{0}; // asked before the thread had it: the call to wake up is spent
    if (!endedAt_ && !end_)
        waitUntil(now + lookInterval);
    if (endedAt_ && ended_)
        waitUntil(*endedAt_ + grace);
    if (askedAt_ && !isKilled_)
        waitUntil(*askedAt_ + patience);
    return sleep;
}

void PipeReading::step(MainQueue& queue, std::span<char> chunk) {
    const auto now = queue.uptime();
    if (!endedAt_)
        lookForEnd(now);
    // After the look for the end, so that all that a program printed before it is here.
    readOutput(chunk);
    endGroup(now);
    if (ended_ && endedAt_ && (!output_ || now >= *endedAt_ + grace))
        tell(queue);
}

void PipeReading::readOutput(std::span<char> chunk) {
    for (int i = 0; output_ && i < readsPerTurn; ++i) {
        const auto count = ::read(output_.number(), chunk.data(), chunk.size());
        if (count < 0 && errno == EAGAIN)
            return;
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0) {
            output_ = FileDescriptor();
            return;
        }
        const auto read = static_cast<std::size_t>(count);
        const auto kept = std::min(read, keepBytes_);
        result_.output.append(chunk.data(), kept);
        result_.isCut = result_.isCut || kept < read;
        keepBytes_ -= kept;
    }
}

void PipeReading::lookForEnd(Seconds now) {
    siginfo_t end{};
    // Left unreaped for now: its number, which is the group's, can't become another's until then.
    const int failure =
        ::waitid(P_PID, static_cast<id_t>(process_), &end, WEXITED | WNOHANG | WNOWAIT);
    if (failure == 0 && end.si_pid == 0)
        return;
    if (failure == 0)
        result_.status = statusOf(end);
    endedAt_ = now;
    end_ = FileDescriptor();
    isRunning_ = false;
}

void PipeReading::endGroup(Seconds now) {
    if (isReaped_)
        return;
    if (isAskedToEnd_ && !askedAt_) {
        askedAt_ = now;
        ::kill(-process_, SIGTERM);
    }
    if (askedAt_ && !isKilled_ && now >= *askedAt_ + patience) {
        isKilled_ = true;
        ::kill(-process_, SIGKILL);
    }
    // The group of one that was asked may outlast it, and is killed by its number.
    if (endedAt_ && (!askedAt_ || isKilled_)) {
        ::waitpid(process_, nullptr, WNOHANG);
        isReaped_ = true;
    }
}

void PipeReading::tell(MainQueue& queue) {
    keepBytes_ = 0;
    queue.post([ended = std::exchange(ended_, nullptr), result = std::move(result_)]() mutable {
        ended(std::move(result));
    });
}

void PipeReading::letGo() {
    ended_ = nullptr;
    if (isAskedToEnd_ && !isReaped_) {
        ::kill(-process_, SIGKILL);
        output_ = FileDescriptor();
    }
}

} // namespace tessarine
