#pragma once

#include "LauncherCore/commands/Chord.h"
#include "LauncherCore/commands/CommandFile.h"
#include "launcherapp/platform/MainQueue.h"
#include "launcherapp/platform/Observers.h"
#include "launcherapp/platform/Subscription.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tessarine {

class CommandHotkeys;
class Diagnostics;
class DirectoryWatcher;
struct Environment;
class FileStore;
class Prefs;
class WorkQueues;

/// The user's commands as their file has them, kept in step with the disk; a file that can't be
/// read leaves the last good ones in force. Main thread only.
class CommandStore {
public:
    enum class Content {
        file,
        demonstration ///< a fixed list in memory; nothing is read, written or watched
    };

    struct Services {
        MainQueue& queue;
        WorkQueues& work;
        std::shared_ptr<FileStore> files; ///< held by looks that a hanging drive keeps
        DirectoryWatcher& directories;
        Prefs& prefs;
        Diagnostics& diagnostics;
        CommandHotkeys& hotkeys;
        const Environment& environment;
    };

    /// `defaultFolder` holds the file while the preferences name no other.
    CommandStore(Services services, std::string defaultFolder, Content content);
    ~CommandStore();
    CommandStore(const CommandStore&) = delete;
    CommandStore& operator=(const CommandStore&) = delete;

    /// Writes the starter file when there is none and reads, off the main thread, and from then on
    /// watches. Once.
    void start();

    /// Reads and parses now; for what can't wait until `start` has read.
    void load();

    /// Writes with the entries kept that could not be read, then adopts. Throws FileError, and then
    /// nothing has changed: also while a mistake keeps the file from being read, as it would be
    /// written over.
    void save(const CommandFile& file);

    /// Gives the command another hotkey or takes it away, and saves. Throws FileError. Nothing
    /// happens for an unknown id.
    void setHotkey(const std::optional<Chord>& chord, std::string_view id);

    /// Moves the file into a shared folder; a file that is there already wins. Throws FileError.
    void relocate(const std::string& folder);

    /// Where the file lies now.
    std::string location() const;

    const CommandFile& file() const { return file_; }

    const std::vector<std::string>& problems() const { return problems_; }

    /// Seconds since 1970 of the last time the file was read or written whole; nothing before.
    std::optional<double> lastLoad() const { return lastLoad_; }

    /// Why the file could not be read the last time; nothing when it could.
    const std::optional<std::string>& error() const { return error_; }

    /// Calls `changed` after the commands or the problems are others.
    Subscription onChange(std::function<void()> changed) {
        return changes_.add(std::move(changed));
    }

private:
    /// What a look at the file gave.
    struct Look {
        std::optional<double> modified; ///< nothing when there is no file
        std::optional<std::string> bytes;
        std::string problem;       ///< why there are no bytes
        bool isUnwritable = false; ///< there is no file, and none can be made
    };

    static Look looked(const FileStore& files, const std::string& path);

    void requireReading();
    void watch();
    void lookSoon();
    void lookForChange();
    void take(const Look& look);
    void adopt(CommandFile file, std::vector<std::string> problems);
    void refuse(const std::string& reason);
    void moved();

    Services services_;
    std::string defaultFolder_;
    Content content_;
    CommandFile file_;
    std::vector<std::string> problems_;
    std::optional<double> lastLoad_;
    std::optional<std::string> error_;
    std::vector<std::string> unreadable_;
    std::optional<double> lastModified_;
    bool isLookDue_ = false;
    bool isLooking_ = false; ///< at most one at a time, so that a drive that hangs costs one thread
    Subscription edits_;     ///< of the setting that says where the file lies
    Subscription pollTimer_;
    Subscription folderWatch_;
    Observers<> changes_;
    std::shared_ptr<char> alive_ = std::make_shared<char>(); ///< what is under way ends with it
};

} // namespace tessarine
