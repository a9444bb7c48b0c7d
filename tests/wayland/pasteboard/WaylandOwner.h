#pragma once

#include "launcherapp/platform/linux/files/FileDescriptor.h"
#include "launcherapp/platform/linux/pasteboard/wayland/DataControl.h"
#include "launcherapp/platform/linux/wayland/WaylandConnection.h"

#include <atomic>
#include <csignal>
#include <functional>
#include <poll.h>
#include <pthread.h>
#include <string>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

namespace tessarine {

/// Another program with the clipboard, which answers as a test says on a thread of its own.
class WaylandOwner {
public:
    /// Called for each program that wants a content; the pipe closes when it is let go of.
    using Answer = std::function<void(WaylandOwner&, const std::string& type, FileDescriptor into)>;

    /// Owns the clipboard when this returns.
    WaylandOwner(const std::vector<std::string>& types, Answer answer)
        : answer_(std::move(answer)), control_(std::make_unique<DataControl>(display_)) {
        control_->hasSeat();
        control_->put(types);
        display_.roundTrip();
        thread_ = std::thread([this] { serve(); });
    }

    /// The program ends, and with it what it owns.
    ~WaylandOwner() {
        isOver = true;
        thread_.join();
        control_.reset();
    }

    WaylandOwner(const WaylandOwner&) = delete;
    WaylandOwner& operator=(const WaylandOwner&) = delete;

    /// False when nobody takes it.
    bool write(const FileDescriptor& into, const std::string& bytes) {
        std::size_t written = 0;
        while (written < bytes.size()) {
            const auto count =
                ::write(into.number(), bytes.data() + written, bytes.size() - written);
            if (count <= 0)
                return false;
            written += static_cast<std::size_t>(count);
        }
        writtenBytes += written;
        return true;
    }

    std::atomic<int> timesAsked = 0; ///< how often it was asked
    std::atomic<std::size_t> writtenBytes = 0;
    std::atomic<bool> isOver = false;

private:
    void serve() {
        sigset_t broken;
        sigemptyset(&broken);
        sigaddset(&broken, SIGPIPE);
        pthread_sigmask(SIG_BLOCK, &broken, nullptr);
        while (!isOver) {
            pollfd door{.fd = display_.descriptor(), .events = POLLIN, .revents = 0};
            constexpr int pauseMilliseconds = 10;
            ::poll(&door, 1, pauseMilliseconds);
            if (!display_.dispatchWhatCame())
                return;
            for (auto& event : control_->take()) {
                if (auto* wanted = std::get_if<DataControl::Wanted>(&event)) {
                    ++timesAsked;
                    answer_(*this, wanted->type, std::move(wanted->into));
                }
            }
        }
    }

    Answer answer_;
    WaylandConnection display_;
    std::unique_ptr<DataControl> control_;
    std::thread thread_;
};

} // namespace tessarine
