#pragma once

#include "launcherapp/platform/Image.h"

#include <string>
#include <variant>
#include <vector>

namespace tessarine {

struct PreviewText {
    std::string text; ///< as it is, with its line breaks
    bool isCode = false;
};

struct PreviewPicture {
    Image image;
};

struct PreviewFiles {
    std::vector<std::string> paths;
};

/// What a row stands for, larger than the row can show it. A value.
struct RowPreview {
    using Text = PreviewText;
    using Picture = PreviewPicture;
    using Files = PreviewFiles;

    std::variant<Text, Picture, Files> content;
    std::vector<std::string> facts; ///< "214 characters", "copied from Teletype"; on a line or two
};

} // namespace tessarine
