#pragma once

#include <nlohmann/json_fwd.hpp>

#include <string_view>

/// JSON of programs that put texts of others into it, as window titles are, without looking whether
/// they are UTF-8. Pure; any thread.
namespace tessarine::ForeignJson {

/// Each byte that is no UTF-8 is U+FFFD, as one bad title must not cost all the rest. A text that
/// isn't JSON even so gives a discarded value.
nlohmann::json read(std::string_view text);

} // namespace tessarine::ForeignJson
