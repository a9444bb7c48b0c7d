#include "launcherapp/platform/linux/system/files/BlockHolders.h"

#include <filesystem>
#include <system_error>

namespace tessarine {

std::optional<std::vector<std::string>> blockHolders(const std::string& folder,
                                                     const std::string& device) {
    namespace fs = std::filesystem;
    if (device.empty())
        return std::nullopt;
    std::vector<std::string> names;
    std::error_code error;
    for (fs::directory_iterator each(folder + "/" + device + "/holders", error), end;
         !error && each != end;
         each.increment(error))
        names.push_back(each->path().filename().string());
    return error ? std::nullopt : std::optional(std::move(names));
}

} // namespace tessarine
