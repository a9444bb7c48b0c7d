#pragma once

#include <string>

namespace tessarine {

/// A new random UUID (RFC 4122, version 4) in lower case. Main thread only.
std::string randomUuid();

} // namespace tessarine
