#pragma once

#include "launcherapp/platform/FileManager.h"

namespace tessarine {

/// The desktop's file manager over the session bus (File Manager D-Bus interface), and the
/// freedesktop trash through Qt.
class DesktopFileManager : public FileManager {
public:
    explicit DesktopFileManager(MainQueue& queue);

    void reveal(const std::string& path,
                Seconds timeout,
                std::function<void(std::optional<std::string> problem)> done) override;
    std::optional<std::string> trash(const std::string& path) override;

private:
    MainQueue& queue_;
};

} // namespace tessarine
