#pragma once

#include "launcherapp/platform/FileTypes.h"

namespace tessarine {

/// The shared MIME database through Qt.
class QtFileTypes : public FileTypes {
public:
    std::vector<std::string> types(const std::string& path) const override;
};

} // namespace tessarine
