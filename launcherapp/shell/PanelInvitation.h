#pragma once

#include "launcherapp/platform/DesktopTable.h"
#include "launcherapp/platform/Subscription.h"
#include "launcherapp/shell/Invitation.h"

#include <optional>
#include <string_view>

namespace tessarine {

class DefaultsStore;
class DesktopPresence;
class Diagnostics;
class MainQueue;

/// Tells the user which key brings the panel up, and where the program holds none, how to make one
/// of the desktop's own: in the terminal at each start, and once on the screen of each desktop that
/// no such key has called on. Main thread only.
class PanelInvitation {
public:
    /// Whether a notification on the screen may tell it too, and be remembered.
    enum class Notices { allowed, none };

    /// What it is given outlives it.
    PanelInvitation(DesktopPresence& presence,
                    DefaultsStore& defaults,
                    DesktopSurroundings desktop,
                    Diagnostics& diagnostics,
                    Notices notices);

    /// Tells it as soon as it is known whether the panel has its key, and again when that changes;
    /// and what is known by then after a while in which the desktop asks its user.
    void tellOnceKnown(MainQueue& queue);

    /// The desktop's own key may have called, where the panel turns out to have none. A menu calls
    /// the same way, so what is told from then on doesn't promise it.
    void noteCall();

    /// Why there is no panel to be brought up.
    static void tellWithoutPanel(const DesktopSurroundings& desktop);

private:
    void look();
    void tell();
    void showNotice(const Invitation::Notice& notice);
    bool remembers(std::string_view preference) const;
    void remember(std::string_view preference);

    DesktopPresence& presence_;
    DefaultsStore& defaults_;
    const DesktopSurroundings desktop_;
    Diagnostics& diagnostics_;
    const Notices notices_;
    std::optional<Invitation::Chord> told_; ///< last; nothing before the first time
    bool hasCalled_ = false;                ///< a key may have, while the desktop was asked
    bool looksSoon_ = false;
    Subscription changes_;
};

} // namespace tessarine
