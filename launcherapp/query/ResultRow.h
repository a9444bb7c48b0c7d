#pragma once

#include "LauncherCore/answers/AnswerSource.h"
#include "LauncherCore/query/RowCredit.h"
#include "launcherapp/platform/Image.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace tessarine {

enum class RowKind {
    app,     ///< an application from the catalog
    command, ///< a user's command, a system command, anything that runs a verb
    file,    ///< a file or folder
    calc,    ///< a computed value that Return copies
    web,     ///< a URL or a web search
    hint,    ///< no result: says what to do, or why nothing is there; never learned
};

/// The kind's name as `--search` prints it.
std::string_view name(RowKind kind);

/// Result groups, compared as plain strings. Any other group sorts after these.
namespace RowGroup {
inline constexpr std::string_view answers = "answers"; ///< leads the list
inline constexpr std::string_view apps = "apps";
inline constexpr std::string_view commands = "commands";
inline constexpr std::string_view files = "files";
inline constexpr std::string_view people = "people";
inline constexpr std::string_view tabs = "tabs";
inline constexpr std::string_view web = "web"; ///< always last
} // namespace RowGroup

/// Anything the panel can show, from whatever source: the one vocabulary between the sources and
/// the list. Main thread only.
///
/// `id` is what the usage log, favourites and the selection remember a row by, so it is the same
/// in every run, and each source keeps to a name space of its own: an application or file its
/// path; a command "cmd:" and its id (a system command "cmd:sys."); "answer" and "graph"; "url";
/// "web"; "calcrecent:…"; "commands-broken"; "drive:…"; "win:…" and "quit:…"; "agenda:…".
struct ResultRow {
    using Action = std::function<void()>;

    std::string id;
    RowKind kind = RowKind::app;
    std::string title;
    std::string subtitle;       ///< may be empty
    std::optional<Image> image; ///< a real icon; without one `symbol` is drawn
    std::string symbol;         ///< a symbol's name
    bool running = false;       ///< the application runs
    Action primary;             ///< Return
    Action secondary;           ///< the second chord; empty for none
    std::string secondaryLabel;
    std::string primaryLabel;       ///< "open", "copy", "search", …
    std::optional<std::string> url; ///< what the row stands for on disk or on the web
    std::string group{RowGroup::apps};
    std::optional<std::string> sameNameKey; ///< rows with one key are told apart in the subtitle
    std::optional<AnswerSource> source;
    std::optional<std::string> glyph; ///< a small mark, used by clippings
    std::int64_t score = 0;
    bool scoreIncludesUsage = false; ///< `score` holds what use adds, so it isn't added again
    std::int64_t pasteCount = 0;     ///< how often a clipping was pasted
    std::optional<RowCreditSpec> credit;
};

} // namespace tessarine
