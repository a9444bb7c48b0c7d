#pragma once

#include "launcherapp/platform/Image.h"

#include <optional>
#include <string_view>

namespace tessarine {

/// Icons of applications and files, and the program's own symbols. Main thread only; drawing one
/// takes up to a few milliseconds, so a caller keeps what it gets. Without a display every icon
/// is nothing and every symbol empty.
class Icons {
public:
    virtual ~Icons() = default;

    /// A name in the desktop's icon theme, or an absolute path, drawn as a square of `sizePoints`.
    /// Nothing when the theme, or the path, has no such picture.
    virtual std::optional<Image> icon(std::string_view nameOrPath, int sizePoints) = 0;

    /// A symbol by the name that rows use ("magnifyingglass", "app.dashed"). One that has no
    /// drawing is drawn as a plain placeholder.
    virtual Image symbol(std::string_view name, int sizePoints) = 0;
};

} // namespace tessarine
