#include "launcherapp/operations/StateFile.h"

#include "launcherapp/operations/Diagnostics.h"
#include "launcherapp/platform/FileStore.h"
#include "launcherapp/platform/MainQueue.h"
#include "launcherapp/platform/SaveLeftover.h"
#include "launcherapp/platform/WorkQueues.h"

#include <string_view>
#include <utility>

namespace tessarine {

namespace {

constexpr std::string_view copyEnding = ".damaged";

std::string folderOf(const std::string& path) {
    return path.substr(0, path.rfind('/'));
}

/// The text of the file; nothing when there is none, or when it can't be read and lies aside now.
std::optional<std::string>
readOrPutAside(FileStore& files, const std::string& path, std::size_t maximumBytes) {
    try {
        return files.read(path, maximumBytes);
    } catch (const FileError&) {
        files.rename(path, StateFile::freeCopyName(files, path));
        return std::nullopt;
    }
}

} // namespace

StateFile::StateFile(FileStore& files,
                     SerialQueue& saves,
                     Diagnostics& diagnostics,
                     std::string path,
                     Failures failures,
                     std::size_t maximumBytes)
    : place_{.files = files,
             .log = failures == Failures::logged ? &diagnostics : nullptr,
             .path = std::move(path),
             .maximumBytes = maximumBytes},
      saves_(saves) {}

void StateFile::Place::tell(const std::string& failure) const {
    if (log)
        log->log(failure);
}

/// Until the copy lies there, no save may go over what could not be read.
void StateFile::Place::keepCopy(Damage& damage) const {
    if (!damage.found || damage.kept)
        return;
    if (damage.text)
        files.save(freeCopyName(files, path), *damage.text);
    else
        files.rename(path, freeCopyName(files, path));
    damage.kept = true;
    damage.text.reset(); // it may be large
}

StateFile::Saved StateFile::Place::save(const std::string& text, Damage& damage) const {
    if (text.size() > maximumBytes) {
        tell(path + " could not be saved: it would be too large to be read again");
        return Saved::no;
    }
    try {
        keepCopy(damage);
        files.save(path, text);
        return Saved::yes;
    } catch (const FileError& error) {
        tell(error.what());
        return Saved::no;
    }
}

std::string StateFile::freeCopyName(const FileStore& files, const std::string& path) {
    const auto first = path + std::string(copyEnding);
    auto name = first;
    for (int number = 2; files.info(name); ++number)
        name = first + "-" + std::to_string(number);
    return name;
}

std::vector<std::string> StateFile::copies(const FileStore& files, const std::string& path) {
    const auto folder = folderOf(path);
    const auto beginning = path.substr(folder.size() + 1) + std::string(copyEnding);
    std::vector<std::string> copies;
    for (const auto& entry : files.entries(folder).value_or(std::vector<DirectoryEntry>{})) {
        if (entry.name.starts_with(beginning) && !SaveLeftover::target(entry.name))
            copies.push_back(folder + "/" + entry.name);
    }
    return copies;
}

std::vector<std::string> StateFile::foldersOf(const FileStore& files, const std::string& path) {
    std::vector<std::string> folders{folderOf(path)};
    if (const auto real = files.realPath(path); real && folderOf(*real) != folders.front())
        folders.push_back(folderOf(*real));
    return folders;
}

std::optional<std::string> StateFile::load() {
    try {
        return place_.files.read(place_.path, place_.maximumBytes);
    } catch (const FileError& error) {
        place_.tell(error.what());
        damage_ = std::make_shared<Damage>(Damage{.found = true});
        return std::nullopt;
    }
}

void StateFile::submitLoad(MainQueue& queue,
                           std::function<bool(const std::string&)> understands,
                           std::function<void()> done) {
    damage_ = std::make_shared<Damage>();
    saves_.submit([place = place_,
                   &queue,
                   damage = damage_,
                   understands = std::move(understands),
                   done = std::move(done)] {
        try {
            auto text = place.files.read(place.path, place.maximumBytes);
            if (text && !understands(*text))
                *damage = {.found = true, .text = std::move(text)};
        } catch (const FileError& error) {
            place.tell(error.what());
            damage->found = true;
        }
        queue.post(done);
    });
}

void StateFile::markDamaged(std::string text) {
    damage_ = std::make_shared<Damage>(Damage{.found = true, .text = std::move(text)});
}

void StateFile::save(std::string text) {
    saves_.submit(
        [place = place_, damage = damage_, text = std::move(text)] { place.save(text, *damage); });
}

void StateFile::saveMade(MainQueue& queue,
                         std::function<std::optional<std::string>()> make,
                         std::function<void(Saved)> done) {
    saves_.submit(
        [place = place_, &queue, damage = damage_, make = std::move(make), done = std::move(done)] {
            const auto text = make();
            const auto saved = text ? place.save(*text, *damage) : Saved::no;
            queue.post([done, saved] { done(saved); });
        });
}

void StateFile::removeLeftovers() {
    saves_.submit([&files = place_.files, path = place_.path] {
        // A link stays a link: what it leads to was being replaced, in its own folder.
        const auto real = files.realPath(path).value_or(path);
        const auto folder = folderOf(real);
        const auto name = real.substr(folder.size() + 1);
        for (const auto& entry : files.entries(folder).value_or(std::vector<DirectoryEntry>{})) {
            const auto target = SaveLeftover::target(entry.name);
            if (!target ||
                (*target != name && !target->starts_with(name + std::string(copyEnding))))
                continue;
            try {
                files.remove(folder + "/" + entry.name);
            } catch (const FileError&) {
                // The next start looks for it again.
            }
        }
    });
}

void StateFile::readLater(MainQueue& queue, std::function<void(std::optional<std::string>)> done) {
    saves_.submit([place = place_, &queue, done = std::move(done)] {
        try {
            queue.post(
                [done, text = place.files.read(place.path, place.maximumBytes)] { done(text); });
        } catch (const FileError& error) {
            place.tell(error.what());
        }
    });
}

void StateFile::rewrite(MainQueue& queue,
                        std::function<Rewritten(const std::optional<std::string>&)> make,
                        std::function<void(std::optional<std::string>)> done) {
    saves_.submit([place = place_, &queue, make = std::move(make), done = std::move(done)] {
        auto& [files, log, path, maximumBytes] = place;
        std::optional<std::string> saved;
        try {
            const auto old = readOrPutAside(files, path, maximumBytes);
            auto made = make(old);
            if (old && made.losesOld)
                files.save(freeCopyName(files, path), *old);
            files.save(path, made.text);
            saved = std::move(made.text);
        } catch (const FileError& error) {
            place.tell(error.what());
        }
        queue.post([done, saved = std::move(saved)] { done(saved); });
    });
}

void StateFile::remove() {
    damage_ = std::make_shared<Damage>();
    saves_.submit([&files = place_.files, path = place_.path] {
        try {
            files.remove(path);
        } catch (const FileError&) {
            // The document in memory is what counts.
        }
    });
}

} // namespace tessarine
