#include "launcherapp/platform/linux/processes/EndSignals.h"

#include "launcherapp/platform/linux/files/FileDescriptor.h"

#include <QSocketNotifier>
#include <array>
#include <cerrno>
#include <csignal>
#include <sys/eventfd.h>
#include <utility>

namespace tessarine {

namespace {

constexpr auto endSignals = std::to_array({SIGTERM, SIGINT, SIGHUP});

/// The one thing that a signal handler can reach; it stays open as long as the process.
const FileDescriptor& wake() {
    static const FileDescriptor descriptor(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
    return descriptor;
}

void handle(int) {
    const int before = errno;
    (void)::eventfd_write(wake().number(), 1);
    errno = before;
}

/// A second signal of the same kind finds the system's own way again.
void install(void (*handler)(int)) {
    struct sigaction action {};

    action.sa_handler = handler;
    action.sa_flags = SA_RESETHAND | SA_RESTART;
    for (const int number : endSignals)
        ::sigaction(number, &action, nullptr);
}

} // namespace

EndSignals::EndSignals(std::function<void()> asked)
    : arrived_(std::make_unique<QSocketNotifier>(wake().number(), QSocketNotifier::Read)) {
    QObject::connect(
        arrived_.get(), &QSocketNotifier::activated, arrived_.get(), [asked = std::move(asked)] {
            eventfd_t ignored = 0;
            (void)::eventfd_read(wake().number(), &ignored);
            asked();
        });
    install(handle);
}

EndSignals::~EndSignals() {
    install(SIG_DFL);
}

} // namespace tessarine
