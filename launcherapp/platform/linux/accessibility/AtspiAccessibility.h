#pragma once

#include "launcherapp/platform/Accessibility.h"
#include "launcherapp/platform/linux/accessibility/PrivateBus.h"

#include <chrono>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace tessarine {

/// Other programs' buttons over AT-SPI, the accessibility bus of Linux desktops. It is spoken to
/// directly: its own client library dispatches in the main thread and waits 5 to 19 seconds for one
/// program that hangs. One thread at a time; the destructor waits 0.3 seconds at most.
class AtspiAccessibility : public Accessibility {
public:
    /// The accessibility bus may have to be started, which takes a busy machine a second or two.
    static constexpr std::chrono::milliseconds patienceWithBus{3000};
    /// One search, so that a button that comes late is looked for again within a name's four
    /// seconds; a press that isn't answered takes AtspiSearch::patience more.
    static constexpr std::chrono::milliseconds longestPress{3000};

    AtspiAccessibility() = default;
    /// Has programs that start from now on be silent again, if it was us who had woken them and no
    /// screen reader has come since.
    ~AtspiAccessibility() override;

    Ability ability() override;
    bool runs(const AccessibleProgram& program) override;
    Before wake() override;
    PressAttempt press(const AccessibleProgram& program, std::string_view name) override;

private:
    using Deadline = PrivateBus::Clock::time_point;

    bool connectSession(Deadline deadline);
    bool connect(Deadline deadline);
    std::vector<BusPlace> roots(const AccessibleProgram& program, Deadline deadline);
    std::vector<BusPlace> rootsByName(const std::vector<BusPlace>& candidates,
                                      const std::set<std::string>& names,
                                      Deadline deadline);

    std::unique_ptr<PrivateBus> session_; ///< null while there is none
    std::unique_ptr<PrivateBus> bus_;     ///< the accessibility bus; null while there is none
    bool wokeThem_ = false;
};

} // namespace tessarine
