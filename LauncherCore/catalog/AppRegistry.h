#pragma once

#include "LauncherCore/catalog/MimeApps.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace tessarine {

/// What one desktop entry says, kept after a scan. Entries that are only handlers of a file type
/// or URL scheme are here too, though no row offers them.
struct InstalledApp {
    std::string bundleID; ///< desktop-file id without ".desktop"
    std::string path;     ///< the entry's path below the root it was met in
    std::string name;
    std::vector<std::string> aliases;
    bool listed = false;           ///< offered as an application's row
    std::string icon;              ///< a theme name or a path; may be empty
    std::string exec;              ///< string escapes read; empty when only the bus starts it
    std::string workingDirectory;  ///< may be empty
    bool terminal = false;         ///< runs in one
    bool terminalEmulator = false; ///< is one
    bool busActivatable = false;
    std::string windowClass; ///< StartupWMClass; may be empty
    std::vector<std::string> mimeTypes;

    bool operator==(const InstalledApp&) const = default;
};

/// What a window says about the application that owns it.
struct WindowOwnerHints {
    std::string applicationID; ///< a desktop-file id the window itself names; may be empty
    std::string className;     ///< second half of WM_CLASS; may be empty
    std::string instanceName;  ///< first half of WM_CLASS; may be empty
    std::string executable;    ///< path of the process's program; may be empty
};

/// How sure it has to be whose a window is.
enum class Certainty {
    likely, ///< enough to show and to bring forward
    sure,   ///< enough to end it
};

/// Everything one scan found, indexed for look-up. Immutable, shared between threads.
class AppRegistry {
public:
    AppRegistry() = default;

    /// `apps` in the order of precedence; of equal ids or paths the first counts.
    AppRegistry(std::vector<InstalledApp> apps, MimeApps associations);

    const std::vector<InstalledApp>& apps() const { return apps_; }

    /// Null when nothing of this id, or path, is installed. An id is also found with its
    /// ".desktop", and when only case differs.
    const InstalledApp* byID(std::string_view bundleID) const;
    const InstalledApp* byPath(std::string_view path) const;

    /// What a user's command names as its application: the path of a desktop entry, one that
    /// another folder's entry of the same id hides too, or an id. Null when none is installed.
    const InstalledApp* named(std::string_view pathOrID) const;

    /// Whose entry starts this program, given by its path or its bare name. Null when none does, or
    /// only a program of that name in another folder is started.
    const InstalledApp* startedBy(std::string_view program) const;

    /// Who opens a MIME type ("inode/directory") or a URL scheme: the user's default, else what
    /// the desktop or an added association says, else the first entry that declares it. Null when
    /// nobody does.
    const InstalledApp* handlerForType(std::string_view mimeType) const;
    const InstalledApp* handlerForScheme(std::string_view scheme) const;

    /// Whose window this is: by the id the window names, then StartupWMClass, then an id that
    /// equals its class or instance. Where likely is enough, also by the last part of an id, then
    /// by the executable: many programs share a short name, or run in one interpreter. Null when
    /// no installed application fits.
    const InstalledApp* windowOwner(const WindowOwnerHints& window,
                                    Certainty certainty = Certainty::likely) const;

private:
    using Index = std::unordered_map<std::string, std::size_t>;
    const InstalledApp* find(const Index& index, std::string_view key) const;

    std::vector<InstalledApp> apps_;
    MimeApps associations_;
    Index byID_; ///< keys in lower case
    Index byPath_;
    Index byWindowClass_; ///< keys in lower case
    Index byShortID_;     ///< last part of a reverse-domain id, in lower case
    Index byExecutable_;  ///< file name of the program that Exec starts
};

} // namespace tessarine
