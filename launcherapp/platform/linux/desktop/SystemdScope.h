#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// Units of systemd's user manager, in which a started application is accounted for by itself and
/// not ended with the launcher.
namespace tessarine::SystemdScope {

/// The unit's name by systemd's convention for applications:
/// "app-tessarine-<name>-<process>.scope"; a name too long for a unit is cut.
std::string unitName(std::int64_t process, std::string_view name);

/// Asks for a scope around a process. Returns at once; without a session bus or a systemd on it
/// nothing happens. Main thread.
void request(std::int64_t process, std::string_view name);

/// The application that a process is, from the name of the unit that it runs in: that of a sandbox
/// ("app-flatpak-org.x.Y-99.scope"), or one that a launcher made for this very process
/// ("app-gnome-org.x.Y-123.scope" for 123). Empty for any other: what a terminal's user starts
/// runs in the terminal's unit too, and is another application.
std::string applicationID(std::string_view unit, std::int64_t process);

} // namespace tessarine::SystemdScope
