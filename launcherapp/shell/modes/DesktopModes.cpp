#include "launcherapp/shell/modes/DesktopModes.h"

#include "launcherapp/platform/DesktopTable.h"
#include "launcherapp/shell/modes/Modes.h"

namespace tessarine {

void DesktopModes::abilities(ModeContext& context, const std::string&) {
    for (const auto& line : DesktopTable::column(context.desktop()))
        context.print(line);
    context.finish(0);
}

} // namespace tessarine
