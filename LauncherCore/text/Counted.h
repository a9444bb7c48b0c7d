#pragma once

#include <fmt/format.h>

#include <concepts>
#include <string>
#include <string_view>

namespace tessarine {

/// "1 file", "2 files": for words that take an "s" in the plural. Pure; any thread.
std::string counted(std::integral auto count, std::string_view one) {
    return fmt::format("{} {}{}", count, one, count == 1 ? "" : "s");
}

} // namespace tessarine
