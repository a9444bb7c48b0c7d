#pragma once

#include <functional>
#include <string>

namespace tessarine {

struct ModeContext;
class PanelController;

/// Modes of the command line that draw. They know the toolkit, which the table of modes does not:
/// whoever wires the program sets them. An empty one can't be measured in this run.
struct PanelModes {
    using Run = std::function<void(ModeContext& context, const std::string& value)>;

    Run render;
    Run renderSheet;
    Run renderShortcuts;
    Run selftestRenderPurity;
    Run selftestShortcut;
    PanelController* panel = nullptr; ///< null where no panel can be shown
};

} // namespace tessarine
