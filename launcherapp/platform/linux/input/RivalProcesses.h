#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// The launchers of the table among the user's processes, as /proc tells them. Any thread; takes
/// some milliseconds.
namespace tessarine::RivalProcesses {

struct Found {
    std::int64_t process = 0;
    std::string name; ///< of the rival

    bool operator==(const Found&) const = default;
};

std::vector<Found> look();

} // namespace tessarine::RivalProcesses
