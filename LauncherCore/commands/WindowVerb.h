#pragma once

#include "LauncherCore/geometry/Rectangle.h"
#include "LauncherCore/query/Keywords.h"

#include <array>
#include <optional>
#include <string_view>

namespace tessarine {

/// What can be done with the window in front. In the order in which rows offer them.
enum class WindowVerb { left, right, top, bottom, max, center, display };

inline constexpr auto allWindowVerbs = std::to_array<WindowVerb>({WindowVerb::left,
                                                                  WindowVerb::right,
                                                                  WindowVerb::top,
                                                                  WindowVerb::bottom,
                                                                  WindowVerb::max,
                                                                  WindowVerb::center,
                                                                  WindowVerb::display});

/// The verb whose word the keyword is; nothing for a keyword of anything else. Pure; any thread.
std::optional<WindowVerb> windowVerb(BuiltinKeyword keyword);

/// What is known of each verb. Pure; any thread.
namespace WindowVerbs {

std::string_view name(WindowVerb verb);   ///< for the log: "left"
std::string_view title(WindowVerb verb);  ///< of its row: "Left half"
std::string_view symbol(WindowVerb verb); ///< of its row

/// Where the window goes on a screen's work area; `window` is where it is now, border included.
/// In whole pixels, halves without a gap or overlap between them. `center` and `display` keep the
/// window's size, also when that is more than the work area has.
Rectangle frame(WindowVerb verb, const Rectangle& workArea, const Rectangle& window);

} // namespace WindowVerbs
} // namespace tessarine
