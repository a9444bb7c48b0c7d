#include "launcherapp/platform/linux/processes/QtProcessLauncher.h"

#include "launcherapp/platform/Environment.h"
#include "launcherapp/platform/linux/desktop/SystemdScope.h"
#include "launcherapp/platform/linux/processes/Spawning.h"

#include <QCoreApplication>
#include <QSocketNotifier>
#include <memory>
#include <sys/wait.h>

namespace tessarine {

namespace {

/// Takes note of a program's end, so that the kernel can forget it. Where the kernel can't tell
/// of it, that waits until we end ourselves.
void awaitEnd(pid_t process) {
    // Shared, since Qt copies what it calls; it is closed with the notifier.
    const auto descriptor = std::make_shared<const FileDescriptor>(Spawning::endOf(process));
    if (!*descriptor)
        return;
    auto* ended = new QSocketNotifier(descriptor->number(), QSocketNotifier::Read, qApp);
    QObject::connect(ended, &QSocketNotifier::activated, ended, [ended, descriptor, process] {
        ::waitpid(process, nullptr, WNOHANG);
        ended->setEnabled(false);
        ended->deleteLater();
    });
}

} // namespace

QtProcessLauncher::QtProcessLauncher(const Environment& environment) : home_(environment.home) {}

std::int64_t QtProcessLauncher::startDetached(const ProcessSpec& spec) {
    const auto process = Spawning::start(spec, home_, {});
    awaitEnd(process);
    SystemdScope::request(process, spec.name);
    return process;
}

std::optional<std::string> QtProcessLauncher::executable(std::string_view program) const {
    return Spawning::executable(program);
}

} // namespace tessarine
