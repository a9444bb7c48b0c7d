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

    /// Crisp on screens of double density, and scales down well for others: for callers that
    /// don't know the screen yet.
    static constexpr double defaultScale = 2;

    /// A name in the desktop's icon theme, or an absolute path, drawn as a square of `sizePoints`
    /// with `scale` pixels a point. Nothing when the theme, or the path, has no such picture.
    virtual std::optional<Image>
    icon(std::string_view nameOrPath, int sizePoints, double scale) = 0;

    /// A symbol by the name that rows use ("magnifyingglass", "app.dashed"), as a mask. One that
    /// has no drawing is drawn as a plain placeholder.
    virtual Image symbol(std::string_view name, int sizePoints, double scale) = 0;

    std::optional<Image> icon(std::string_view nameOrPath, int sizePoints) {
        return icon(nameOrPath, sizePoints, defaultScale);
    }

    Image symbol(std::string_view name, int sizePoints) {
        return symbol(name, sizePoints, defaultScale);
    }
};

} // namespace tessarine
