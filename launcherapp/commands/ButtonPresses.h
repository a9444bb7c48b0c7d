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
/// until each button is there. Every wait is a timer, and every look at the application is a job of
/// the serial queue "tessarine.jump". Main thread only.
class ButtonPresses {
public:
    static constexpr Seconds appCheck{0.1}; ///< between two looks whether the application runs
    static constexpr Seconds retry{0.12};   ///< between two searches for one button
    static constexpr Seconds pause{0.15};   ///< after a press, before the next name
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
        Seconds waitForApp{0};          ///< 0: it has to run already
        Seconds waitPerName{0};
    };

    struct Result {
        bool ran = true;                    ///< false when it didn't run in time
        std::vector<std::string> pressed;   ///< in order
        std::optional<std::string> missing; ///< the name that stopped it; nothing when none did
        std::string note;                   ///< why that one was not pressed, as a phrase

        bool operator==(const Result&) const = default;
    };

    explicit ButtonPresses(Services services);
    ~ButtonPresses();
    ButtonPresses(const ButtonPresses&) = delete;
    ButtonPresses& operator=(const ButtonPresses&) = delete;

    /// `done` is called once, later; never when this object goes before. One order at a time.
    void press(Order order, std::function<void(Result result)> done);

private:
    class Run;
    Services services_;
    std::shared_ptr<Run> run_;
};

} // namespace tessarine
