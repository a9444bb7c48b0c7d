#include "launcherapp/operations/StateFile.h"

#include "launcherapp/operations/Diagnostics.h"
#include "launcherapp/platform/FileStore.h"
#include "launcherapp/platform/MainQueue.h"
#include "launcherapp/platform/WorkQueues.h"

#include <cstddef>
#include <utility>

namespace tessarine {

namespace {

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
    : files_(files), saves_(saves), diagnostics_(diagnostics), path_(std::move(path)),
      failures_(failures), maximumBytes_(maximumBytes) {}

std::string StateFile::freeCopyName(const FileStore& files, const std::string& path) {
    auto name = path + ".damaged";
    for (int number = 2; files.info(name); ++number)
        name = path + ".damaged-" + std::to_string(number);
    return name;
}

std::vector<std::string> StateFile::folders() const {
    std::vector<std::string> folders{folderOf(path_)};
    if (const auto real = files_.realPath(path_); real && folderOf(*real) != folders.front())
        folders.push_back(folderOf(*real));
    return folders;
}

std::optional<std::string> StateFile::load() {
    try {
        return files_.read(path_, maximumBytes_);
    } catch (const FileError& error) {
        if (failures_ == Failures::logged)
            diagnostics_.log(error.what());
        damage_ = std::make_shared<Damage>(Damage{.found = true});
        return std::nullopt;
    }
}

void StateFile::submitLoad(MainQueue& queue,
                           std::function<bool(const std::string&)> understands,
                           std::function<void()> done) {
    auto* const log = failures_ == Failures::logged ? &diagnostics_ : nullptr;
    damage_ = std::make_shared<Damage>();
    saves_.submit([&files = files_,
                   &queue,
                   log,
                   path = path_,
                   maximumBytes = maximumBytes_,
                   damage = damage_,
                   understands = std::move(understands),
                   done = std::move(done)] {
        try {
            auto text = files.read(path, maximumBytes);
            if (text && !understands(*text))
                *damage = {.found = true, .text = std::move(text)};
        } catch (const FileError& error) {
            if (log)
                log->log(error.what());
            damage->found = true;
        }
        queue.post(done);
    });
}

void StateFile::markDamaged(std::string text) {
    damage_ = std::make_shared<Damage>(Damage{.found = true, .text = std::move(text)});
}

void StateFile::save(std::string text) {
    saveMade([text = std::make_shared<std::string>(std::move(text))] { return std::move(*text); });
}

void StateFile::saveMade(std::function<std::string()> make) {
    auto* const log = failures_ == Failures::logged ? &diagnostics_ : nullptr;
    saves_.submit([&files = files_, log, path = path_, damage = damage_, make = std::move(make)] {
        const auto text = make();
        try {
            // Until the copy lies there, no save may go over what could not be read.
            if (damage->found && !damage->kept) {
                if (damage->text)
                    files.save(freeCopyName(files, path), *damage->text);
                else
                    files.rename(path, freeCopyName(files, path));
                damage->kept = true;
            }
            files.save(path, text);
        } catch (const FileError& error) {
            if (log)
                log->log(error.what());
        }
    });
}

void StateFile::readLater(MainQueue& queue, std::function<void(std::optional<std::string>)> done) {
    auto* const log = failures_ == Failures::logged ? &diagnostics_ : nullptr;
    saves_.submit([&files = files_,
                   &queue,
                   log,
                   path = path_,
                   maximumBytes = maximumBytes_,
                   done = std::move(done)] {
        try {
            queue.post([done, text = files.read(path, maximumBytes)] { done(text); });
        } catch (const FileError& error) {
            if (log)
                log->log(error.what());
        }
    });
}

void StateFile::rewrite(MainQueue& queue,
                        std::function<Rewritten(const std::optional<std::string>&)> make,
                        std::function<void(std::optional<std::string>)> done) {
    auto* const log = failures_ == Failures::logged ? &diagnostics_ : nullptr;
    saves_.submit([&files = files_,
                   &queue,
                   log,
                   path = path_,
                   maximumBytes = maximumBytes_,
                   make = std::move(make),
                   done = std::move(done)] {
        std::optional<std::string> saved;
        try {
            const auto old = readOrPutAside(files, path, maximumBytes);
            auto made = make(old);
            if (old && made.losesOld)
                files.save(freeCopyName(files, path), *old);
            files.save(path, made.text);
            saved = std::move(made.text);
        } catch (const FileError& error) {
            if (log)
                log->log(error.what());
        }
        queue.post([done, saved = std::move(saved)] { done(saved); });
    });
}

void StateFile::remove() {
    damage_ = std::make_shared<Damage>();
    saves_.submit([&files = files_, path = path_] {
        try {
            files.remove(path);
        } catch (const FileError&) {
            // The document in memory is what counts.
        }
    });
}

} // namespace tessarine
