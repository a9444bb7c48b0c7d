#include "launcherapp/platform/linux/ProcessEnvironment.h"

#include <cstdlib>
#include <pwd.h>
#include <unistd.h>

namespace tessarine {

Environment processEnvironment() {
    const auto variable = [](std::string_view name) -> std::optional<std::string> {
        const char* value = std::getenv(std::string(name).c_str());
        return value ? std::optional<std::string>(value) : std::nullopt;
    };
    const passwd* account = ::getpwuid(::getuid());
    return readEnvironment(variable, account && account->pw_dir ? account->pw_dir : "");
}

} // namespace tessarine
