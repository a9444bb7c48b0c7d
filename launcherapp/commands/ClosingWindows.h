#pragma once

#include "launcherapp/platform/MainQueue.h"
#include "launcherapp/platform/Subscription.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tessarine {

class Alerts;

/// An ordinary window of another program.
struct OpenWindow {
    std::uint64_t id = 0;
    std::string name;                    ///< of its application, as far as it tells one
    std::optional<std::string> bundleID; ///< nothing for an application that isn't installed

    bool operator==(const OpenWindow&) const = default;
};

/// Asks all windows to close before the session ends, and waits until none is open: their programs
/// may ask the user about unsaved work. The user can take the waiting back. Main thread only.
class ClosingWindows {
public:
    struct Services {
        MainQueue& queue;
        Alerts& alerts;
        /// Those of all programs but our own, oldest first; asks the display each time.
        std::function<std::vector<OpenWindow>()> openWindows;
        std::function<void(std::uint64_t window)> close; ///< as its close button would
    };

    enum class End {
        closed,    ///< no window is open
        takenBack, ///< by the user, or by `takeBack`
        timeOver,  ///< some were open still after `patience`
    };

    /// With the names of the applications that have windows open.
    using Done = std::function<void(End end, std::vector<std::string> open)>;

    /// How long apps may take, with the user answering their questions.
    static constexpr Seconds patience{60};

    /// After so long the user is told what is waited for: most apps have gone by then.
    static constexpr Seconds quiet{2};

    explicit ClosingWindows(Services services) : services_(std::move(services)) {}

    ClosingWindows(const ClosingWindows&) = delete;
    ClosingWindows& operator=(const ClosingWindows&) = delete;

    /// Takes back the waiting that is under way. `done` is called once, later or within the call;
    /// never when this object has gone. What opens meanwhile is waited for too, but not asked.
    void start(Done done);

    /// Nothing happens when nothing is waited for.
    void takeBack();

private:
    struct Waiting {
        Done done;
        Seconds since;
        std::vector<std::string> told; ///< whom the window names
        Subscription window;
    };

    void look(const std::shared_ptr<Waiting>& waiting);
    void tell(const std::shared_ptr<Waiting>& waiting, std::vector<std::string> names);
    void end(End how, std::vector<std::string> open);

    Services services_;
    std::shared_ptr<Waiting> waiting_; ///< null when nothing is waited for; a poll has it weakly
};

} // namespace tessarine
