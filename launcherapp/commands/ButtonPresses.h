#pragma once

#include "LauncherCore/catalog/AppRegistry.h"
#include "launcherapp/platform/MainQueue.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tessarine {

class Accessibility;
class RunningApps;
class WindowList;
class WorkQueues;

/// Presses buttons by their names, one after the other, in one application: waits until it runs and
/// until each button is there. It runs when the desktop tells a window of it, or when it shows one
/// to the accessibility service, since native windows of a Wayland session are told there alone.
/// Every wait is a timer, and every look at the application is a job of the serial queue
/// "tessarine.jump". Main thread only.
class ButtonPresses {
public:
    static constexpr Seconds appCheck{0.1}; ///< between two looks whether the application runs
    static constexpr Seconds retry{0.12};   ///< between two searches for one button
    static constexpr Seconds pause{0.15};   ///< after a press, before the next name
    /// What programs that were silent get to begin to speak, before one that doesn't counts as not
    /// running. Spent once a session at most, so as long as nobody minds; no toolkit tells its own.
    static constexpr Seconds timeToSpeak{0.3};
    static constexpr const char* serialQueue = "tessarine.jump";

    struct Services {
        MainQueue& queue;
        WorkQueues& work;
        const RunningApps& running;
        const WindowList& windows;
        std::shared_ptr<Accessibility> accessibility;
    };

    struct Order {
        InstalledApp app;
        std::vector<std::string> names; ///< at least one
        /// Called at most once, when it is found not to run; null: nobody starts it from here.
        std::function<void()> start;
        Seconds waitForApp{0}; ///< from the beginning, or from its start; 0: it has to run already
        Seconds waitPerName{0};
    };

    /// The name that stopped it.
    struct Missing {
        std::string name;
        std::string reason; ///< why it was not pressed, as a phrase
    };

    struct Result {
        bool ran = true;                  ///< false when it didn't run in time
        bool started = false;             ///< whether `start` was called
        std::vector<std::string> pressed; ///< in order
        std::optional<Missing> missing;   ///< nothing when all were pressed
    };

    explicit ButtonPresses(Services services);
    ~ButtonPresses();
    ButtonPresses(const ButtonPresses&) = delete;
    ButtonPresses& operator=(const ButtonPresses&) = delete;

    /// `done` is called once, later; never when this object goes before. One order at a time: the
    /// next may be given from within `done` at the earliest.
    void press(Order order, std::function<void(Result result)> done);

private:
    class Run;
    Services services_;
    std::shared_ptr<Run> run_;
};

} // namespace tessarine
