#include "launcherapp/platform/linux/accessibility/AtspiAccessibility.h"

#include "launcherapp/platform/linux/accessibility/AtspiSearch.h"
#include "launcherapp/platform/linux/accessibility/PressableThings.h"

#include <dbus/dbus-shared.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <string>
#include <utility>

namespace tessarine {

namespace {

using std::chrono::milliseconds;

constexpr auto accessible = "org.a11y.atspi.Accessible";
constexpr auto statusInterface = "org.a11y.Status";
constexpr milliseconds patienceWithName{500}; ///< all programs together, for what they're called
constexpr milliseconds patienceAtTheEnd{100}; ///< each of three calls

PrivateBus::Clock::time_point in(milliseconds duration) {
    return PrivateBus::Clock::now() + duration;
}

BusPlace busDaemon() {
    return {.owner = DBUS_SERVICE_DBUS, .path = DBUS_PATH_DBUS};
}

BusPlace statusPlace() {
    return {.owner = "org.a11y.Bus", .path = "/org/a11y/bus"};
}

BusPlace registryRoot() {
    return {.owner = "org.a11y.atspi.Registry", .path = "/org/a11y/atspi/accessible/root"};
}

std::string sessionAddress() {
    if (const char* address = std::getenv("DBUS_SESSION_BUS_ADDRESS"); address && *address)
        return address;
    const char* runtime = std::getenv("XDG_RUNTIME_DIR");
    return runtime ? std::string("unix:path=") + runtime + "/bus" : std::string();
}

/// A sandboxed program speaks through a process that isn't its window's.
bool isSandboxProxy(std::int64_t process) {
    std::string name;
    std::getline(std::ifstream("/proc/" + std::to_string(process) + "/comm"), name);
    return name == "xdg-dbus-proxy";
}

BusCall setEnabled(bool enabled) {
    return {.place = statusPlace(),
            .interface = DBUS_INTERFACE_PROPERTIES,
            .method = "Set",
            .arguments = {std::string(statusInterface),
                          std::string("IsEnabled"),
                          BusCall::Flag{.value = enabled}}};
}

} // namespace

AtspiAccessibility::AtspiAccessibility() = default;

AtspiAccessibility::~AtspiAccessibility() {
    if (!wokeThem_ || !connectSession(in(patienceAtTheEnd)))
        return;
    const auto reader =
        session_->call(BusCall::property(statusPlace(), statusInterface, "ScreenReaderEnabled"),
                       in(patienceAtTheEnd));
    // The desktop keeps the setting over log-outs, so it isn't left to stay by accident.
    if (reader.number() == 0)
        session_->call(setEnabled(false), in(patienceAtTheEnd));
}

Ability AtspiAccessibility::ability() {
    const auto deadline = in(patienceWithBus);
    if (!connectSession(deadline))
        return Ability::missing("there is no session bus");
    if (!connect(deadline))
        return Ability::missing("its bus doesn't answer");
    const auto programs =
        bus_->call(BusCall::property(registryRoot(), accessible, "ChildCount"), deadline);
    return programs.succeeded() ? Ability{} : Ability::missing("its registry doesn't answer");
}

bool AtspiAccessibility::runs(const AccessibleProgram& program) {
    const auto deadline = in(longestPress);
    return connect(deadline) && !roots(program, deadline).empty();
}

void AtspiAccessibility::wake(const AccessibleProgram&) {
    const auto deadline = in(patienceWithBus);
    if (!connectSession(deadline))
        return;
    const auto enabled =
        session_->call(BusCall::property(statusPlace(), statusInterface, "IsEnabled"), deadline);
    if (enabled.number() == 0)
        wokeThem_ = session_->call(setEnabled(true), deadline).succeeded() || wokeThem_;
}

PressAttempt AtspiAccessibility::press(const AccessibleProgram& program, std::string_view name) {
    const auto deadline = in(longestPress);
    if (!connect(deadline))
        return {};
    AtspiSearch search(*bus_, name, deadline);
    for (const auto& root : roots(program, deadline)) {
        auto attempt = search.pressBelow(root);
        if (attempt.outcome != PressAttempt::Outcome::notFound)
            return attempt;
    }
    return {};
}

bool AtspiAccessibility::connectSession(Deadline deadline) {
    if (session_ && !session_->isConnected())
        session_.reset();
    if (!session_ && !sessionAddress().empty())
        session_ = PrivateBus::connect(sessionAddress(), deadline);
    return session_ != nullptr;
}

bool AtspiAccessibility::connect(Deadline deadline) {
    if (bus_ && bus_->isConnected())
        return true;
    bus_.reset();
    if (!connectSession(deadline))
        return false;
    const auto address = session_->call(
        {.place = statusPlace(), .interface = "org.a11y.Bus", .method = "GetAddress"}, deadline);
    if (const auto text = address.text(); text && !text->empty())
        bus_ = PrivateBus::connect(*text, deadline);
    return bus_ != nullptr;
}

/// The tops of the program's trees: there are several where several of its processes speak.
std::vector<BusPlace> AtspiAccessibility::roots(const AccessibleProgram& program,
                                                Deadline deadline) {
    const auto programs =
        bus_->call({.place = registryRoot(), .interface = accessible, .method = "GetChildren"},
                   deadline)
            .places();
    if (program.processIDs.empty())
        return rootsByName(programs, program.names, deadline);
    std::vector<BusCall> calls;
    for (const auto& root : programs) {
        calls.push_back({.place = busDaemon(),
                         .interface = DBUS_INTERFACE_DBUS,
                         .method = "GetConnectionUnixProcessID",
                         .arguments = {root.owner}});
    }
    const auto processes = bus_->call(calls, deadline);
    std::vector<BusPlace> found;
    std::vector<BusPlace> sandboxed;
    for (std::size_t i = 0; i < programs.size(); ++i) {
        const auto process = processes[i].number().value_or(0);
        if (program.processIDs.contains(process))
            found.push_back(programs[i]);
        else if (isSandboxProxy(process))
            sandboxed.push_back(programs[i]);
    }
    return found.empty() ? rootsByName(sandboxed, program.names, deadline) : found;
}

std::vector<BusPlace> AtspiAccessibility::rootsByName(const std::vector<BusPlace>& candidates,
                                                      const std::set<std::string>& names,
                                                      Deadline deadline) {
    std::vector<BusCall> calls;
    for (const auto& root : candidates)
        calls.push_back(BusCall::property(root, accessible, "Name"));
    const auto replies = bus_->call(calls, std::min(in(patienceWithName), deadline));
    std::vector<BusPlace> found;
    for (std::size_t i = 0; i < candidates.size(); ++i) {
        const auto text = replies[i].text().value_or("");
        if (std::ranges::any_of(names, [&](const std::string& name) {
                return PressableThings::isCalled(text, name);
            }))
            found.push_back(candidates[i]);
    }
    return found;
}

} // namespace tessarine
