#pragma once

#include <optional>
#include <string>

namespace tessarine {

/// The zone that this computer's clock is set to. Without state of its own; any thread. Reads a
/// link and at most one small file each time, as a traveller's zone changes while programs run.
class SystemZone {
public:
    /// `variable` is TZ as the process was started with; nothing when it is unset.
    /// `configurationFolder` is where "localtime" and "timezone" lie.
    explicit SystemZone(std::optional<std::string> variable,
                        std::string configurationFolder = "/etc");

    /// An IANA name, from TZ, else the link "localtime", else the file "timezone"; for a TZ that
    /// writes out its rules the fixed offset of now, as in "GMT-03:00"; "Etc/UTC" for a computer
    /// that says nothing.
    std::string identifier() const;

private:
    std::optional<std::string> variable_;
    std::string folder_;
};

} // namespace tessarine
