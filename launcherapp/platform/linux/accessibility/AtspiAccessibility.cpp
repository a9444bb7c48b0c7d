#include "launcherapp/platform/linux/accessibility/AtspiAccessibility.h"

#include "launcherapp/platform/linux/accessibility/AtspiSearch.h"
#include "launcherapp/platform/linux/accessibility/PressableThings.h"
#include "launcherapp/platform/linux/desktop/SessionBus.h"

#include <dbus/dbus-shared.h>

#include <algorithm>
#include <fstream>
#include <string>
#include <utility>

namespace tessarine {

namespace {

using std::chrono::milliseconds;

constexpr auto accessible = AtspiSearch::accessible;
constexpr auto statusInterface = "org.a11y.Status";
/// All programs together, for what they are called: one that hangs leaves most of a search's time.
constexpr milliseconds patienceWithName{500};
constexpr milliseconds patienceAtTheEnd{100}; ///< each of three calls, as a log-out waits for us

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

/// A sandboxed program speaks through a process that isn't its window's.
bool isSandboxProxy(std::int64_t process) {
    std::string name;
    std::getline(std::ifstream("/proc/" + std::to_string(process) + "/comm"), name);
    return name == "xdg-dbus-proxy";
}

enum class Telling { off, on };

BusCall setTelling(Telling telling) {
    return {.place = statusPlace(),
            .interface = DBUS_INTERFACE_PROPERTIES,
            .method = "Set",
            .arguments = {std::string(statusInterface),
                          std::string("IsEnabled"),
                          BusCall::Flag{.value = telling == Telling::on}}};
}

} // namespace

AtspiAccessibility::~AtspiAccessibility() {
    if (!wokeThem_ || !connectSession(in(patienceAtTheEnd)))
        return;
    const auto reader =
        session_->call(BusCall::property(statusPlace(), statusInterface, "ScreenReaderEnabled"),
                       in(patienceAtTheEnd));
    // The desktop keeps the setting over log-outs, so it isn't left to stay by accident.
    if (reader.number() == 0)
        session_->call(setTelling(Telling::off), in(patienceAtTheEnd));
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
    if (!connect(deadline))
        return false;
    AtspiSearch search(*bus_, "", deadline);
    return search.showsWindow(roots(program, deadline));
}

Accessibility::Before AtspiAccessibility::wake() {
    const auto deadline = in(patienceWithBus);
    if (!connectSession(deadline))
        return Before::speaking;
    const auto enabled =
        session_->call(BusCall::property(statusPlace(), statusInterface, "IsEnabled"), deadline);
    if (enabled.number() != 0 || !session_->call(setTelling(Telling::on), deadline).succeeded())
        return Before::speaking;
    wokeThem_ = true;
    return Before::silent;
}

PressAttempt AtspiAccessibility::press(const AccessibleProgram& program, std::string_view name) {
    const auto deadline = in(longestPress);
    if (!connect(deadline))
        return {};
    AtspiSearch search(*bus_, name, deadline);
    return search.pressBelow(roots(program, deadline));
}

bool AtspiAccessibility::connectSession(Deadline deadline) {
    if (session_ && !session_->isConnected())
        session_.reset();
    const auto address = session_ ? std::nullopt : sessionBusAddress();
    if (address)
        session_ = PrivateBus::connect(*address, deadline);
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
                return PressableThings::likeness(text, name) == PressableThings::Likeness::same;
            }))
            found.push_back(candidates[i]);
    }
    return found;
}

} // namespace tessarine
