#pragma once

#include <optional>
#include <string>
#include <vector>

namespace tessarine {

/// The kernel's names ("dm-0", "md127") of the block devices that are made from one, as it tells
/// them below "/sys/class/block". Nothing when it tells none of this device. Any thread but the
/// main one.
std::optional<std::vector<std::string>> blockHolders(const std::string& folder,
                                                     const std::string& device);

} // namespace tessarine
