#pragma once

#include "launcherapp/platform/Icons.h"

namespace tessarine {

struct Environment;

/// Icons of the desktop's icon theme and of picture files, drawn by Qt, and the program's own
/// symbols. Main thread only; an application object with windows must live, else nothing is drawn.
class ThemeIcons : public Icons {
public:
    /// Adds the user's and the system's icon folders to those that Qt looks in.
    explicit ThemeIcons(const Environment& environment);

    using Icons::icon;
    using Icons::symbol;

    std::optional<Image> icon(std::string_view nameOrPath, int sizePoints, double scale) override;
    Image symbol(std::string_view name, int sizePoints, double scale) override;
};

} // namespace tessarine
