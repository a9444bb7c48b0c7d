#pragma once

namespace tessarine {

/// The variables by which compositors tell programs where to ask them, beside WAYLAND_DISPLAY. They
/// name one process of the compositor's: when it has died and come back they are wrong, while the
/// display has its old name; and what the session bus starts may lack them.
namespace CompositorVariables {

/// Makes WAYLAND_DISPLAY name the one compositor that listens in XDG_RUNTIME_DIR, for a program
/// that the session bus has started (DBUS_STARTER_ADDRESS) without any display, as it does where
/// nobody has told it of one. With none there, or several, and for any other start nothing is
/// changed. Waits for nobody. To be called before there are other threads, and before `renew`.
void findDisplay();

/// Makes SWAYSOCK and HYPRLAND_INSTANCE_SIGNATURE name the compositor that has the display, for
/// this program and those it starts. One that names nobody alive is taken out. Without a Wayland
/// compositor nothing is changed. Waits for nobody. To be called before there are other threads.
void renew();

} // namespace CompositorVariables
} // namespace tessarine
