#include "launcherapp/shell/Demonstration.h"

#include <utility>

namespace tessarine {

Environment Demonstration::surroundings(Environment environment, const std::string& folder) {
    environment.dataHome = folder + "/data";
    environment.configHome = folder + "/config";
    environment.userFolders = {.downloads = folder + "/Downloads",
                               .desktop = folder + "/Desktop",
                               .documents = folder + "/Documents"};
    return environment;
}

} // namespace tessarine
