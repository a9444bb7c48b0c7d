#pragma once

#include "LauncherCore/commands/WindowVerb.h"
#include "LauncherCore/query/Keywords.h"
#include "launcherapp/commands/QuittableApp.h"
#include "launcherapp/query/ResultRow.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tessarine {

/// What the rows of window verbs and of quitting are made of. The functions that ask are called
/// only for a query that begins with one of their words; the ones that act hide the panel first.
/// One that is empty is not to be had: what needs it is not offered.
struct WindowRowSources {
    /// Why something can't be done on this desktop, in words; nothing where it can.
    using Problem = std::function<std::optional<std::string>()>;

    const Keywords& keywords;
    Problem movingProblem;
    std::function<void(WindowVerb verb)> apply;
    std::function<void()> setUp; ///< opens what tells how windows come to be moved
    Problem quittingProblem;
    /// Running applications whose name holds the query, by name.
    std::function<std::vector<QuittableApp>(std::string_view query)> runningApps;
    std::function<void(const QuittableApp& app)> quit;
    std::function<void(const QuittableApp& app)> forceQuit;
};

/// At most so many applications are offered to be quit.
inline constexpr std::size_t quitRowLimit = 8;

/// The row of the verb whose word the query is, or those of the applications to quit that follow
/// such a word. A verb takes nothing after its word. An application is the first row only where
/// the query names it: Return on the bare word ends nothing.
std::vector<ResultRow> windowRows(const WindowRowSources& sources, std::string_view query);

} // namespace tessarine
