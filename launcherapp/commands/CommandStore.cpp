#include "launcherapp/commands/CommandStore.h"

#include "LauncherCore/text/Paths.h"
#include "LauncherCore/text/Printable.h"
#include "launcherapp/commands/CommandHotkeys.h"
#include "launcherapp/commands/DemonstrationCommands.h"
#include "launcherapp/operations/Diagnostics.h"
#include "launcherapp/platform/DirectoryWatcher.h"
#include "launcherapp/platform/Environment.h"
#include "launcherapp/platform/FileStore.h"
#include "launcherapp/platform/WorkQueues.h"
#include "launcherapp/shell/Prefs.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

namespace tessarine {

namespace {

constexpr std::string_view fileName = "commands.json";
constexpr std::size_t largestFile = std::size_t{16} << 20;
constexpr Seconds pollInterval{1};
constexpr Seconds pollTolerance{0.3};
constexpr Seconds saveTakes{0.3};          ///< an editor saves in several steps
constexpr std::size_t longestReason = 300; ///< bytes; a row shows a line

std::string folderOf(const std::string& path) {
    return std::string(Paths::parent(path));
}

} // namespace

CommandStore::CommandStore(Services services, std::string defaultFolder, Content content)
    : services_(services), defaultFolder_(std::move(defaultFolder)), content_(content) {}

CommandStore::~CommandStore() = default;

std::string CommandStore::location() const {
    const auto chosen = expandingTilde(services_.environment, services_.prefs.commandsFilePath());
    return chosen.starts_with('/') ? chosen : defaultFolder_ + "/" + std::string(fileName);
}

CommandStore::Look CommandStore::looked(const FileStore& files, const std::string& path) {
    Look look;
    if (const auto info = files.info(path))
        look.modified = info->modified;
    try {
        look.bytes = files.read(path, largestFile);
        if (!look.bytes)
            look.problem = fmt::format("there is no file {}", path);
    } catch (const FileError& error) {
        look.problem = error.what();
    }
    return look;
}

void CommandStore::start() {
    if (content_ == Content::demonstration) {
        file_ = {.commands = demonstrationCommands()};
        changes_.tell();
        return;
    }
    isLooking_ = true;
    services_.work.runApart(
        [files = services_.files, path = location()] {
            std::string unwritten;
            try {
                if (!files->info(path))
                    files->save(path, CommandFile::starter().encoded());
            } catch (const FileError& error) {
                unwritten = error.what();
            }
            auto look = looked(*files, path);
            if (!look.bytes && !unwritten.empty()) {
                look.problem = unwritten;
                look.isUnwritable = true;
            }
            return look;
        },
        [this, weak = std::weak_ptr(alive_), path = location()](const Look& look) {
            if (weak.expired())
                return;
            isLooking_ = false;
            if (!lastLoad_ && !error_ && path == location())
                take(look);
        });
    watch();
    edits_ = services_.prefs.onChange([this](std::string_view key) {
        if (key == services_.prefs.commandsFilePath.key())
            moved();
    });
}

void CommandStore::load() {
    if (content_ == Content::demonstration)
        return;
    take(looked(*services_.files, location()));
}

void CommandStore::take(const Look& look) {
    lastModified_ = look.modified;
    if (look.isUnwritable) {
        // Nobody's commands are missing: what would be in the file does without it.
        adopt(CommandFile::starter(), {look.problem});
        return;
    }
    if (!look.bytes) {
        refuse(look.problem);
        return;
    }
    try {
        auto [file, unreadable] = CommandFile::decodeLenient(*look.bytes);
        auto problems = file.problems();
        if (const auto count = unreadable.size(); count > 0)
            problems.insert(problems.begin(),
                            fmt::format("{} command{} from a newer Tessarine, kept but not usable "
                                        "until this Mac updates",
                                        count,
                                        count == 1 ? "" : "s"));
        unreadable_ = std::move(unreadable);
        adopt(std::move(file), std::move(problems));
    } catch (const CommandFileError& error) {
        refuse(error.what());
    }
}

void CommandStore::refuse(const std::string& whole) {
    // A parser quotes what it could not read, which may be most of the file.
    const auto reason = Printable::line(Printable::beginning(whole, longestReason));
    auto error = fmt::format("commands.json parse error: {}", reason);
    if (error_ == error) // the file that can't be read is looked at again and again
        return;
    error_ = std::move(error);
    problems_ = {*error_};
    services_.diagnostics.log(fmt::format("commands.json did not parse: {}", reason));
    changes_.tell();
}

void CommandStore::adopt(CommandFile file, std::vector<std::string> problems) {
    file_ = std::move(file);
    // The log is where they can all be read; rows show the first of each command.
    for (const auto& problem : problems) {
        if (std::ranges::find(problems_, problem) == problems_.end())
            services_.diagnostics.log(
                "commands.json: " + Printable::line(Printable::beginning(problem, longestReason)));
    }
    problems_ = std::move(problems);
    error_.reset();
    lastLoad_ = services_.queue.now();
    services_.hotkeys.sync(file_.commands);
    changes_.tell();
}

/// The file as it is now, or why it can't be read: what was never read, or is being mended, is not
/// written over.
void CommandStore::requireReading() {
    const auto info = services_.files->info(location());
    const auto modified = info ? std::optional(info->modified) : std::nullopt;
    if (!lastLoad_ || error_ || modified != lastModified_)
        load();
    if (error_ && services_.files->info(location()))
        throw FileError(
            fmt::format("{} can't be read, so it is not written over: {}", location(), *error_));
}

void CommandStore::save(const CommandFile& file) {
    if (content_ == Content::demonstration) {
        adopt(file, file.problems());
        return;
    }
    requireReading();
    const auto path = location();
    services_.files->save(path, file.encoded(unreadable_));
    if (const auto info = services_.files->info(path))
        lastModified_ = info->modified; // what we wrote is no change
    adopt(file, file.problems());
}

void CommandStore::setHotkey(const std::optional<Chord>& chord, std::string_view id) {
    if (content_ == Content::file)
        requireReading(); // the command may be in a file that was not read yet
    auto changed = file_;
    const auto command = std::ranges::find(changed.commands, id, &CommandSpec::id);
    if (command == changed.commands.end())
        return;
    command->hotkey = chord ? std::optional(chord->text()) : std::nullopt;
    save(changed);
}

void CommandStore::relocate(const std::string& folder) {
    if (content_ == Content::demonstration)
        return;
    auto& files = *services_.files;
    const auto target = Paths::normalized(folder) + "/" + std::string(fileName);
    const auto current = location();
    const bool isCopied = !files.info(target);
    if (isCopied) {
        const auto bytes = files.read(current, largestFile);
        if (!bytes)
            throw FileError(fmt::format("there is no file {}", current));
        files.save(target, *bytes);
    }
    // One file may have two spellings, through a linked folder: it is not to be renamed away.
    if (files.info(current) && files.realPath(target) != files.realPath(current)) {
        try {
            files.rename(current, current + ".moved");
        } catch (const FileError&) {
            // A copy that stays would win over the file at the next try, and be older by then.
            if (isCopied)
                files.remove(target);
            throw;
        }
    }
    services_.prefs.commandsFilePath.set(target); // which reads and watches it there
}

void CommandStore::moved() {
    pollTimer_ = {};
    load();
    watch();
}

/// The folder tells of most changes at once; some programs that sync a folder change a file in it
/// without anybody being told, so its date is looked at as well.
void CommandStore::watch() {
    pollTimer_ = services_.queue.every(pollInterval, pollTolerance, [this] { lookForChange(); });
    folderWatch_ = services_.directories.watch(
        {folderOf(location())}, Seconds{0}, [this](const DirectoryChanges&) { lookSoon(); });
}

/// The folder may hold files that change all the time: one look stands for all of a moment.
void CommandStore::lookSoon() {
    if (std::exchange(isLookDue_, true))
        return;
    services_.queue.postAfter(saveTakes, [this, weak = std::weak_ptr(alive_)] {
        if (weak.expired())
            return;
        isLookDue_ = false;
        lookForChange();
    });
}

/// Off the main thread, as the file may lie on a slow or hanging drive.
void CommandStore::lookForChange() {
    if (std::exchange(isLooking_, true))
        return;
    services_.work.runApart(
        // A file that could not be read may have been caught in the middle of its save, or may be
        // readable now, and keep its date.
        [files = services_.files, path = location(), known = lastModified_, isRead = !error_] {
            const auto info = files->info(path);
            const auto modified = info ? std::optional(info->modified) : std::nullopt;
            return isRead && modified == known ? std::nullopt : std::optional(looked(*files, path));
        },
        [this, weak = std::weak_ptr(alive_), path = location(), known = lastModified_](
            const std::optional<Look>& look) {
            if (weak.expired())
                return;
            isLooking_ = false;
            // What was read or written here meanwhile is newer.
            if (look && path == location() && known == lastModified_)
                take(*look);
        });
}

} // namespace tessarine
