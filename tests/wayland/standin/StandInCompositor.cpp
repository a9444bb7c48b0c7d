#include "tests/wayland/standin/StandInCompositor.h"

#include <wayland-server-protocol.h>
#include <wayland-server.h>

#include <cstdint>
#include <future>
#include <memory>
#include <stdexcept>
#include <sys/eventfd.h>
#include <utility>

namespace tessarine {

namespace {

/// It has no devices, so nobody asks for one.
constexpr struct wl_seat_interface seatRequests {};

StandInCompositor::Service& seat() {
    static StandInCompositor::Service service{.interface = &wl_seat_interface,
                                              .requests = &seatRequests};
    return service;
}

} // namespace

StandInCompositor::StandInCompositor()
    : wake_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)), display_(wl_display_create()) {
    const char* const name = display_ ? wl_display_add_socket_auto(display_) : nullptr;
    if (!name || !wake_)
        throw std::runtime_error("no stand-in for a compositor");
    qputenv("WAYLAND_DISPLAY", name);
    wakes_ = wl_event_loop_add_fd(wl_display_get_event_loop(display_),
                                  wake_.number(),
                                  WL_EVENT_READABLE,
                                  &StandInCompositor::runTasks,
                                  this);
    addSeat();
    thread_ = std::thread([this] { wl_display_run(display_); });
}

StandInCompositor::~StandInCompositor() {
    qputenv("WAYLAND_DISPLAY", displayBefore_);
    disconnectAll();
    run([this] { wl_display_terminate(display_); });
    thread_.join();
    wl_event_source_remove(wakes_);
    wl_display_destroy(display_);
}

void StandInCompositor::run(const std::function<void()>& task) {
    const auto done = std::make_shared<std::promise<void>>();
    {
        const std::lock_guard lock(mutex_);
        tasks_.emplace_back([this, task, done] {
            task();
            flush();
            done->set_value();
        });
    }
    (void)::eventfd_write(wake_.number(), 1);
    done->get_future().wait();
}

int StandInCompositor::runTasks(int descriptor, std::uint32_t, void* compositor) {
    auto& self = *static_cast<StandInCompositor*>(compositor);
    eventfd_t ignored = 0;
    (void)::eventfd_read(descriptor, &ignored);
    std::vector<std::function<void()>> tasks;
    {
        const std::lock_guard lock(self.mutex_);
        tasks = std::exchange(self.tasks_, {});
    }
    for (const auto& task : tasks)
        task();
    return 0;
}

void StandInCompositor::onItsThread(const std::function<void()>& task) {
    if (!thread_.joinable() || std::this_thread::get_id() == thread_.get_id())
        task();
    else
        run(task);
}

void StandInCompositor::flush() {
    wl_display_flush_clients(display_);
}

void StandInCompositor::addSeat() {
    onItsThread(
        [this] { seat_ = wl_global_create(display_, &wl_seat_interface, 1, &seat(), bind); });
}

void StandInCompositor::removeSeat() {
    // The global itself goes with the display: a program may bind it that hasn't heard of its end.
    onItsThread([this] { wl_global_remove(std::exchange(seat_, nullptr)); });
}

void StandInCompositor::offer(const Service& service) {
    onItsThread([&] {
        wl_global_create(
            display_, service.interface, service.version, const_cast<Service*>(&service), bind);
    });
}

std::vector<std::string> StandInCompositor::heard() {
    std::vector<std::string> all;
    run([&] { all = heard_; });
    return all;
}

void StandInCompositor::disconnectAll() {
    run([this] { wl_display_destroy_clients(display_); });
}

void StandInCompositor::bind(wl_client* client,
                             void* service,
                             std::uint32_t version,
                             std::uint32_t id) {
    const auto& bound = *static_cast<const Service*>(service);
    auto* const made = wl_resource_create(client, bound.interface, static_cast<int>(version), id);
    wl_resource_set_implementation(made, bound.requests, bound.data, nullptr);
    if (bound.bound)
        bound.bound(made);
}

} // namespace tessarine
