#pragma once

#include "LauncherCore/commands/WindowVerb.h"
#include "LauncherCore/query/Keywords.h"
#include "launcherapp/commands/QuittableApp.h"
#include "launcherapp/query/ResultRow.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tessarine {

/// What the rows of window verbs and of quitting are made of. The functions that ask are called
/// only for a query that begins with one of their words. Those that act take the panel away first.
/// Where one is empty, the rows that need it are left out.
struct WindowRowSources {
    /// Why something can't be done on this desktop, in words; nothing where it can.
    using Problem = std::function<std::optional<std::string>()>;

    const Keywords& keywords;
    Problem movingProblem;
    std::function<void(WindowVerb verb)> apply;
    Problem quittingProblem;
    Problem killingProblem; ///< why what runs can be quit, but not by force
    Problem quittingGap;    ///< why some that run may be missing among those below
    /// Running applications, in the order of their rows.
    std::function<std::span<const QuittableApp>()> runningApps;
    std::function<void(const QuittableApp& app)> quit;
    std::function<void(const QuittableApp& app)> forceQuit;
};

/// At most so many applications are offered to be quit.
inline constexpr std::size_t quitRowLimit = 8;

/// The row of the verb whose word the query is, or those of the applications to quit that follow
/// such a word. A verb takes nothing after its word. After the bare word their score is below that
/// of the row that tells of the word: Return ends nothing there, unless the user has made one of
/// them a favourite. What this desktop can't do is a hint that says so. What else ends with an
/// application is told on its row.
std::vector<ResultRow> windowRows(const WindowRowSources& sources, std::string_view query);

} // namespace tessarine
