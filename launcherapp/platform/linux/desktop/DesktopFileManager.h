#pragma once

#include "launcherapp/platform/ActivationTokens.h"
#include "launcherapp/platform/FileManager.h"

namespace tessarine {

/// The desktop's file manager over the session bus (File Manager D-Bus interface), and the
/// freedesktop trash through Qt.
class DesktopFileManager : public FileManager {
public:
    /// What is revealed comes to the front by one of the tokens. Both outlive this.
    DesktopFileManager(MainQueue& queue, ActivationTokens& tokens);

    void reveal(const std::string& path,
                Seconds timeout,
                std::function<void(std::optional<std::string> problem)> done) override;
    std::optional<std::string> trash(const std::string& path) override;

private:
    MainQueue& queue_;
    ActivationTokens& tokens_;
};

} // namespace tessarine
