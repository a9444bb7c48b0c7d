#include "launcherapp/operations/StateFile.h"

#include "launcherapp/operations/Diagnostics.h"
#include "launcherapp/platform/FileStore.h"
#include "launcherapp/platform/WorkQueues.h"

#include <cstddef>
#include <utility>

namespace tessarine {

namespace {

/// Far above any real document; a larger file is something else.
constexpr std::size_t maximumBytes = std::size_t{64} << 20;

/// A name for the copy that nothing has yet: an earlier copy may hold what is still wanted.
std::string freeCopyName(const FileStore& files, const std::string& path) {
    auto name = path + ".damaged";
    for (int number = 2; files.info(name); ++number)
        name = path + ".damaged-" + std::to_string(number);
    return name;
}

} // namespace

StateFile::StateFile(FileStore& files,
                     SerialQueue& saves,
                     Diagnostics& diagnostics,
                     std::string path,
                     Failures failures)
    : files_(files), saves_(saves), diagnostics_(diagnostics), path_(std::move(path)),
      failures_(failures) {}

std::optional<std::string> StateFile::load() {
    try {
        return files_.read(path_, maximumBytes);
    } catch (const FileError& error) {
        if (failures_ == Failures::logged)
            diagnostics_.log(error.what());
        damaged_ = std::make_shared<Damage>();
        return std::nullopt;
    }
}

void StateFile::markDamaged(std::string text) {
    damaged_ = std::make_shared<Damage>();
    damaged_->text = std::move(text);
}

void StateFile::save(std::string text) {
    auto* const log = failures_ == Failures::logged ? &diagnostics_ : nullptr;
    saves_.submit([&files = files_, log, path = path_, damaged = damaged_, text = std::move(text)] {
        try {
            // Until the copy lies there, no save may go over what could not be read.
            if (damaged && !damaged->kept) {
                if (damaged->text)
                    files.save(freeCopyName(files, path), *damaged->text);
                else
                    files.rename(path, freeCopyName(files, path));
                damaged->kept = true;
            }
            files.save(path, text);
        } catch (const FileError& error) {
            if (log)
                log->log(error.what());
        }
    });
}

void StateFile::remove() {
    damaged_.reset();
    saves_.submit([&files = files_, path = path_] {
        try {
            files.remove(path);
        } catch (const FileError&) {
            // The document in memory is what counts.
        }
    });
}

} // namespace tessarine
