#pragma once

#include "launcherapp/platform/linux/accessibility/PrivateBus.h"

#include <nlohmann/json_fwd.hpp>

#include <QObject>
#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tessarine {

/// Scripts of this program's inside KWin (interface org.kde.kwin.Scripting), over a connection of
/// its own to the session bus, of which only what KWin itself says is believed. A script lasts
/// until it is ended here, or this goes; the file that it is loaded from lies in the user's
/// run-time folder as long, so that what a killed program left loaded is found by the next one. Its
/// name tells the bus too: two sessions of a user may share the folder.
/// Main thread only, with Qt's event loop.
class KWinScripts {
public:
    using Clock = PrivateBus::Clock;

    /// What a script tells, as KWinProgram has it, or whatever else came in its place. Null when
    /// KWin refuses the script, or says that it runs and it tells nothing for `silence`: it is
    /// unloaded then.
    using Told = std::function<void(nlohmann::json* message)>;

    /// How long a script that runs may take to tell something, which takes it a few milliseconds:
    /// one that fails as a whole tells nothing ever.
    static constexpr std::chrono::seconds silence{2};

    /// Whether KWin is on the session bus and takes scripts, and there is a run-time folder for
    /// them; one that is there and doesn't answer by the deadline is believed to. Waits that long
    /// at most.
    static bool areTaken(Clock::time_point deadline);

    /// Nothing where they are not taken.
    static std::unique_ptr<KWinScripts> connect(Clock::time_point deadline);

    ~KWinScripts();
    KWinScripts(const KWinScripts&) = delete;
    KWinScripts& operator=(const KWinScripts&) = delete;

    struct Work {
        std::string orders = "[]"; ///< as KWinProgram has them
        bool follows = false;
    };

    /// Has KWin load and run a script; returns its number. Waits for nothing. Throws
    /// std::runtime_error where the script's file can't be written; `told` isn't called then.
    std::uint64_t start(Work work, Told told);

    /// Unloads it. Nothing happens when it has ended.
    void end(std::uint64_t script);

    /// False once KWin has left the bus or the bus has gone, and for ever then.
    bool isConnected() const { return !isLost_ && bus_->isConnected(); }

    /// Of the connection, to be watched.
    int descriptor() const { return bus_->descriptor(); }

    /// Calls the scripts' `told`. Waits for nothing.
    void takeWhatCame() { bus_->takeWhatCame(); }

    /// Waits until something may have come; false when nothing has by then.
    bool wait(Clock::time_point deadline) { return bus_->wait(deadline); }

private:
    struct Script {
        Told told;
        bool hasTold = false;
    };

    KWinScripts(std::unique_ptr<PrivateBus> bus,
                std::string beginning,
                std::string owner,
                std::string folder);

    BusCall call(const char* method, std::vector<BusCall::Argument> arguments) const;
    std::string name(std::uint64_t script) const;
    std::string file(const std::string& name) const;
    BusCall runCall(std::string path) const;
    void runObject(std::uint64_t script, std::uint64_t object, const std::string& taken);
    void tryWays(std::uint64_t script, std::vector<BusCall> ways);
    void watch(std::uint64_t script);
    void fail(std::uint64_t script);
    void hear(const BusNews& news);
    void unload(const std::string& name);
    void unloadLeftovers();

    std::unique_ptr<PrivateBus> bus_;
    std::string beginning_; ///< of the names of this bus's scripts
    std::string owner_;     ///< KWin's unique name
    std::string folder_;    ///< of the scripts' files
    std::uint64_t last_ = 0;
    std::map<std::uint64_t, Script> scripts_;
    bool isLost_ = false;
    QObject context_; ///< what waits for the loop goes with this
};

} // namespace tessarine
