#pragma once

#include "launcherapp/platform/linux/files/FileDescriptor.h"

#include <QByteArray>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

struct wl_client;
struct wl_display;
struct wl_event_source;
struct wl_global;
struct wl_interface;
struct wl_resource;

namespace tessarine {

/// A Wayland compositor on a thread of its own, which has nothing but a seat until a test gives it
/// more: for what no real one at hand offers or does. What connects while this lives connects to
/// it. Main thread only, except where something says otherwise.
class StandInCompositor {
public:
    /// Throws std::runtime_error when it can't be connected to.
    StandInCompositor();
    ~StandInCompositor();
    StandInCompositor(const StandInCompositor&) = delete;
    StandInCompositor& operator=(const StandInCompositor&) = delete;

    /// Runs this on the compositor's thread. When this returns it is done, and what it tells is on
    /// its way.
    void run(const std::function<void()>& task);

    /// Sends what has been told; on the compositor's thread, for a task that waits after it.
    void flush();

    /// As programs see it come and go. It is there from the beginning. On any thread.
    void addSeat();
    void removeSeat();

    /// The requests of one interface, as the generated code has them, and what they are about. To
    /// outlive all programs that are connected.
    struct Service {
        const wl_interface* interface = nullptr;
        int version = 1;
        const void* requests = nullptr;
        void* data = nullptr;
        std::function<void(wl_resource* made)> bound = {}; ///< on the compositor's thread
    };

    void offer(const Service& service);

    /// What programs wanted of the services, in order, each in the words of its service.
    std::vector<std::string> heard();

    /// On the compositor's thread.
    void note(std::string request) { heard_.push_back(std::move(request)); }

    /// Lets all programs go, so that nobody asks for any service any more.
    void disconnectAll();

private:
    static void bind(wl_client* client, void* service, std::uint32_t version, std::uint32_t id);
    static int runTasks(int descriptor, std::uint32_t ready, void* compositor);
    void onItsThread(const std::function<void()>& task);

    const QByteArray displayBefore_ = qgetenv("WAYLAND_DISPLAY");
    const FileDescriptor wake_;
    wl_display* display_;
    wl_event_source* wakes_ = nullptr;
    wl_global* seat_ = nullptr;
    std::vector<std::string> heard_; ///< of its thread
    std::mutex mutex_;               ///< of the tasks
    std::vector<std::function<void()>> tasks_;
    std::thread thread_;
};

} // namespace tessarine
