#pragma once

#include "launcherapp/shell/Invitation.h"

#include <string_view>

namespace tessarine {

class DefaultsStore;
class DesktopPresence;
class Diagnostics;
class MainQueue;
struct DesktopSurroundings;

/// Tells the user which key brings the panel up, and where the program holds none, how to make one
/// of the desktop's own: in the terminal at each start and once on the screen, until such a key has
/// called. Main thread only.
class PanelInvitation {
public:
    /// Whether a notification on the screen may tell it too, and be remembered.
    enum class Notices { allowed, none };

    /// What it is given outlives it.
    PanelInvitation(DesktopPresence& presence,
                    DefaultsStore& defaults,
                    const DesktopSurroundings& desktop,
                    Diagnostics& diagnostics,
                    Notices notices);

    /// Tells it as soon as it is known whether the panel has its key, and what is known by then
    /// after a while in which the desktop asks its user.
    void tellOnceKnown(MainQueue& queue);

    /// The desktop's own key may have called. A menu calls the same way, but where there is no key
    /// of the program's, a key is what calls.
    void noteCall();

    /// Why there is no panel to be brought up.
    static void tellWithoutPanel(const DesktopSurroundings& desktop);

private:
    void tell();
    void showNotice(const Invitation::Notice& notice);
    bool remembers(std::string_view preference) const;

    DesktopPresence& presence_;
    DefaultsStore& defaults_;
    const DesktopSurroundings& desktop_;
    Diagnostics& diagnostics_;
    const Notices notices_;
};

} // namespace tessarine
