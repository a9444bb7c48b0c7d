#pragma once

#include "launcherapp/platform/linux/files/FileDescriptor.h"
#include "tests/wayland/windows/ipc/ListeningSocket.h"

#include <algorithm>
#include <functional>
#include <mutex>
#include <optional>
#include <poll.h>
#include <string>
#include <sys/socket.h>
#include <thread>
#include <vector>

namespace tessarine {

/// A compositor that answers and tells as Hyprland does, in a thread of its own.
class FakeHyprland {
public:
    /// `answer` gives what a request is answered with, in that thread; nothing for never.
    FakeHyprland(const std::string& folder,
                 std::function<std::optional<std::string>(const std::string& request)> answer)
        : answer_(std::move(answer)), requests_(listeningSocket(folder + "/.socket.sock")),
          events_(listeningSocket(folder + "/.socket2.sock")),
          thread_([this](const std::stop_token& stop) { serve(stop); }) {}

    /// To all who listen.
    void tell(const std::string& event) {
        const std::lock_guard lock(mutex_);
        for (const auto& listener : listeners_)
            ::send(listener.number(), event.data(), event.size(), MSG_NOSIGNAL);
    }

    /// What it was asked and ordered, in order.
    std::vector<std::string> asked() {
        const std::lock_guard lock(mutex_);
        return asked_;
    }

private:
    void serve(const std::stop_token& stop) {
        while (!stop.stop_requested()) {
            pollfd wanted[]{{.fd = requests_.number(), .events = POLLIN, .revents = 0},
                            {.fd = events_.number(), .events = POLLIN, .revents = 0}};
            constexpr int untilStopIsSeen = 20;
            ::poll(wanted, 2, untilStopIsSeen);
            if (wanted[0].revents != 0)
                serve(FileDescriptor(::accept(requests_.number(), nullptr, nullptr)));
            if (wanted[1].revents != 0) {
                const std::lock_guard lock(mutex_);
                listeners_.emplace_back(::accept(events_.number(), nullptr, nullptr));
            }
        }
    }

    void serve(FileDescriptor client) {
        char bytes[4096];
        const auto count = ::recv(client.number(), bytes, sizeof bytes, 0);
        const std::string request(bytes, static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
        const std::lock_guard lock(mutex_);
        asked_.push_back(request);
        if (const auto answer = answer_(request))
            ::send(client.number(), answer->data(), answer->size(), MSG_NOSIGNAL);
        else
            unanswered_.push_back(std::move(client));
    }

    std::function<std::optional<std::string>(const std::string& request)> answer_;
    FileDescriptor requests_;
    FileDescriptor events_;
    std::mutex mutex_;
    std::vector<FileDescriptor> listeners_;
    std::vector<FileDescriptor> unanswered_;
    std::vector<std::string> asked_;
    std::jthread thread_;
};

} // namespace tessarine
