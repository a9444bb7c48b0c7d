#pragma once

#include "launcherapp/platform/Icons.h"

#include <set>
#include <string>

namespace tessarine {

/// A theme of the icons in `known`; each is a single pixel. Notes what was drawn.
class FakeIcons : public Icons {
public:
    using Icons::icon;
    using Icons::symbol;

    std::optional<Image> icon(std::string_view nameOrPath, int sizePoints, double) override {
        if (!known.contains(std::string(nameOrPath)))
            return std::nullopt;
        drawn.push_back(std::string(nameOrPath));
        sizes.push_back(sizePoints);
        return pixel(0xff112233);
    }

    Image symbol(std::string_view name, int sizePoints, double) override {
        symbols.push_back(std::string(name));
        sizes.push_back(sizePoints);
        auto image = pixel(0xff445566);
        image.isMask = true;
        return image;
    }

    std::set<std::string> known;
    std::vector<std::string> drawn;
    std::vector<std::string> symbols;
    std::vector<int> sizes; ///< in points, of icons and symbols in the order drawn

private:
    static Image pixel(std::uint32_t colour) {
        return {.widthPixels = 1,
                .heightPixels = 1,
                .pixels = std::make_shared<const std::vector<std::uint32_t>>(1, colour)};
    }
};

} // namespace tessarine
