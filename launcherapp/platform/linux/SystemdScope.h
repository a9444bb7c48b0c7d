#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// Units of systemd's user manager, in which a started application is accounted for by itself and
/// not ended with the launcher.
namespace tessarine::SystemdScope {

/// The unit's name by systemd's convention for applications:
/// "app-tessarine-<name>-<process>.scope".
std::string unitName(std::int64_t process, std::string_view name);

/// Asks for a scope around a process. Returns at once; without a session bus or a systemd on it
/// nothing happens. Main thread.
void request(std::int64_t process, std::string_view name);

/// The application id in the name of a unit that some launcher made, as in
/// "app-gnome-org.x.Y-123.scope" or "app-org.x.Y@1f.service"; empty for any other name.
std::string applicationID(std::string_view unit);

} // namespace tessarine::SystemdScope
