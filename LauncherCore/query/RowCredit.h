#pragma once

#include "LauncherCore/commands/CommandSpec.h"
#include "LauncherCore/commands/SystemAction.h"

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace tessarine {

/// Whose application or service carries a row out: the small line under it, before it is looked up
/// on this machine. A value, hashable and compared by value. Pure; any thread.
struct RowCreditSpec {
    /// An application known by its identifiers; the first that is installed counts.
    struct App {
        std::vector<std::string> bundleIDs;
        std::string name;
        bool operator==(const App&) const = default;
    };

    /// Whatever opens this URL scheme.
    struct UrlHandler {
        std::string scheme;
        bool operator==(const UrlHandler&) const = default;
    };

    /// An application on disk; the path may begin with a tilde.
    struct AppPath {
        std::string path;
        bool operator==(const AppPath&) const = default;
    };

    /// A computer, named, with the name of its symbol.
    struct Machine {
        std::string name;
        std::string symbol;
        bool operator==(const Machine&) const = default;
    };

    std::variant<App, UrlHandler, AppPath, Machine> value;

    bool operator==(const RowCreditSpec&) const = default;

    static const RowCreditSpec& systemSettings();
    static const RowCreditSpec& finder();
    static const RowCreditSpec& dock();
    static const RowCreditSpec& screenshot();
    static const RowCreditSpec& wisprFlow();
    static const RowCreditSpec& calendar();
    static const RowCreditSpec& dictionary();
    /// The actions of the desktop and the machine themselves.
    static const RowCreditSpec& system();

    /// An application of the companion registry; an `App` named by the id itself, with no
    /// identifiers, when the registry lacks it.
    static RowCreditSpec companion(std::string_view id);

    /// Nothing for an action that the program carries out by itself.
    static std::optional<RowCreditSpec> forSystemAction(SystemAction action);

    /// Nothing when the command has nobody to credit, or lacks the field that would tell.
    static std::optional<RowCreditSpec> forCommand(const CommandSpec& spec);

    /// Who opens this URL or path. Nothing for a text that is neither: a bare word, or a host name
    /// and port.
    static std::optional<RowCreditSpec> forURLString(std::string_view text);

    /// What to show when the machine knows no better name; never empty for a spec made here.
    std::string fallbackName() const;

    /// Kinds of command whose rows carry a credit.
    static std::span<const CommandKind> creditedKinds();

    /// Actions with no credit, because the program carries them out by itself.
    static std::span<const SystemAction> ownSystemActions();
};

} // namespace tessarine

template <> struct std::hash<tessarine::RowCreditSpec> {
    std::size_t operator()(const tessarine::RowCreditSpec& spec) const noexcept;
};
