#pragma once

#include "launcherapp/platform/HotkeyRegistrar.h"

#include <memory>
#include <string>

namespace tessarine {

class MainQueue;
struct DesktopSurroundings;

/// Chords by passive key grabs on Qt's own X11 connection, so that the panel can take the keyboard
/// over from them; a grab of another connection would hold it until the key is up. From a press on
/// the display holds back all keys until its action has run: what is typed meanwhile goes to the
/// panel that the action brings up, however long that takes. Main thread only, with Qt's event
/// loop, while an application object of Qt on X11 lives.
class X11HotkeyRegistrar : public HotkeyRegistrar {
public:
    explicit X11HotkeyRegistrar(MainQueue& queue);
    ~X11HotkeyRegistrar() override;
    X11HotkeyRegistrar(const X11HotkeyRegistrar&) = delete;
    X11HotkeyRegistrar& operator=(const X11HotkeyRegistrar&) = delete;

    void setEvents(Events events) override;
    HotkeyOutcome grab(std::uint32_t id, const HotkeyBinding& binding) override;
    void release(std::uint32_t id) override;
    std::optional<HotkeyBinding> chord(std::uint32_t key, std::uint32_t state) const override;

private:
    class Keys;
    std::unique_ptr<Keys> keys_;
};

/// The registrar of the desktop as it was found. Where that is not X11's, even if Qt runs on an X11
/// display inside it, the one that asks the desktop's portal, which knows the program as
/// `applicationID`; without a session bus one that refuses, with its reason.
std::unique_ptr<HotkeyRegistrar> hotkeyRegistrar(MainQueue& queue,
                                                 const DesktopSurroundings& desktop,
                                                 const std::string& applicationID);

} // namespace tessarine
