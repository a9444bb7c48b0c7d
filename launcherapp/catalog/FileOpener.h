#pragma once

#include "launcherapp/platform/MainQueue.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace tessarine {

class AppCatalog;
class AppLauncher;
class Diagnostics;
class FileManager;
class FileTypes;
struct InstalledApp;

/// Opens files and folders with the user's applications, and shows or trashes them through the
/// desktop. A failure is logged. Main thread only.
class FileOpener {
public:
    /// How long a file manager may take to come up and answer.
    static constexpr Seconds revealTimeout{10};

    struct Doors {
        MainQueue& queue;
        const AppCatalog& catalog;
        AppLauncher& launcher;
        const FileTypes& types;
        FileManager& manager;
        Diagnostics& diagnostics;
    };

    explicit FileOpener(Doors doors) : doors_(doors) {}

    /// With the user's choice for its type, or for a wider type that it is too.
    void open(const std::string& path);

    /// Selected in its folder, or at least the folder where no file manager can select.
    void reveal(const std::string& path);

    void trash(const std::string& path);

    using Done = std::function<void(std::optional<std::string> problem)>;

    /// A file with the application of its type, anything else with that of its scheme. `done` is
    /// called once, later, with nothing on success, else with the problem in words.
    void openUrl(const std::string& url, const Done& done);

    /// Who opens what is of these MIME types, the narrowest first: the user's choice for the first
    /// that has one. Null when nobody does; valid until the catalog is scanned again.
    const InstalledApp* handler(const std::vector<std::string>& types) const;

private:
    void openFile(const std::string& path, const Done& done);

    Doors doors_;
};

} // namespace tessarine
