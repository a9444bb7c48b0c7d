#pragma once

#include "launcherapp/platform/DesktopAppearance.h"
#include "launcherapp/platform/Environment.h"
#include "launcherapp/platform/MainQueue.h"
#include "launcherapp/platform/MountTable.h"
#include "launcherapp/platform/ProcessLauncher.h"
#include "launcherapp/platform/ProgramReader.h"
#include "launcherapp/platform/WorkQueues.h"

#include <QDBusConnection>
#include <functional>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace tessarine {

/// Called once, later, with nothing on success, else with the problem in words.
using EffectDone = std::function<void(std::optional<std::string> problem)>;

/// How long others are waited for.
struct SystemPatience {
    Seconds question{5};    ///< a service or program that only has to look
    Seconds act{60};        ///< one that does something: a disk may have much to write
    Seconds disk{300};      ///< one that gets on; what shows no sign for so long counts as dead
    Seconds user{600};      ///< a person who is asked for a password or for a part of the screen
    Seconds probe{10};      ///< until what has not answered counts as not there
    Seconds systemBus{30};  ///< the greeting of a bus that is busy with the user's login
    Seconds leaving{1};     ///< until a program that was told to end takes no more orders
    Seconds keyRelease{.5}; ///< until Return is up again, which would wake the screen
    Seconds lookAgain{60};  ///< how old what was found may be before it is looked for again
};

/// What the machine's actions work through. Nothing of the machine is reached in another way, so
/// that tests stand in for all of it. The functions are called on the main thread, except
/// `systemBus` and `blockHolders`.
struct SystemDoors {
    MainQueue& queue;
    WorkQueues& work;
    ProgramReader& programs;
    ProcessLauncher& launcher;
    const MountTable& mounts;
    const Environment& environment;

    std::function<void(const std::string& line)> log;

    /// Puts the picture file into the clipboard.
    std::function<void(const std::string& path, EffectDone done)> copyImage;

    /// The desktop-file id of the program that opens folders; empty when there is none. Cheap, as
    /// it is asked for every row.
    std::function<std::string()> folderOpener;

    std::function<void(const std::string& url, EffectDone done)> openUrl;

    /// The kernel's names of the block devices that are made from one; nothing when that can't be
    /// told. Any thread but the main one; it outlives these doors.
    std::function<std::optional<std::vector<std::string>>(const std::string& device)> blockHolders;

    /// What the desktop is set to now.
    std::function<ColorScheme()> colorScheme;

    /// Nothing when no session bus runs.
    std::function<std::optional<QDBusConnection>()> sessionBus;

    /// May wait, as it runs on a thread of its own; not connected when none runs.
    std::function<QDBusConnection()> systemBus;

    uid_t user;            ///< whose trash and drives they are
    std::string sessionID; ///< XDG_SESSION_ID; may be empty
    SystemPatience patience;
    std::optional<std::string> sessionType; ///< XDG_SESSION_TYPE
};

} // namespace tessarine
