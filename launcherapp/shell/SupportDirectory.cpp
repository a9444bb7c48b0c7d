#include "launcherapp/shell/SupportDirectory.h"

#include "launcherapp/platform/FileStore.h"

namespace tessarine {

SupportDirectory::SupportDirectory(FileStore& files, const Environment& environment)
    : files_(files), path_(environment.dataHome + "/tessarine") {}

const std::string& SupportDirectory::path() const {
    std::call_once(made_, [this] {
        try {
            files_.makeDirectories(path_);
        } catch (const FileError&) {
            // Each save will say so.
        }
    });
    return path_;
}

} // namespace tessarine
