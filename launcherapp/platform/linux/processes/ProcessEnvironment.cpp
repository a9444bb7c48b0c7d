#include "launcherapp/platform/linux/processes/ProcessEnvironment.h"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <pwd.h>
#include <unistd.h>

namespace tessarine {

Environment processEnvironment() {
    const auto variable = [](std::string_view name) -> std::optional<std::string> {
        const char* value = std::getenv(std::string(name).c_str());
        return value ? std::optional<std::string>(value) : std::nullopt;
    };
    const passwd* account = ::getpwuid(::getuid());
    auto environment = readEnvironment(variable, account && account->pw_dir ? account->pw_dir : "");
    std::ifstream userDirs(environment.configHome + "/user-dirs.dirs");
    environment.userFolders = userFolders(
        environment,
        std::string(std::istreambuf_iterator(userDirs), std::istreambuf_iterator<char>()));
    return environment;
}

} // namespace tessarine
