#include "launcherapp/platform/linux/processes/ProcessFacts.h"

#include "launcherapp/platform/linux/desktop/SystemdScope.h"

#include <fstream>
#include <limits.h>
#include <unistd.h>

namespace tessarine {

std::string ProcessFacts::executable(std::int64_t process) {
    char target[PATH_MAX];
    const auto link = "/proc/" + std::to_string(process) + "/exe";
    const auto length = ::readlink(link.c_str(), target, sizeof target);
    return length > 0 ? std::string(target, static_cast<std::size_t>(length)) : std::string();
}

std::string ProcessFacts::applicationID(std::int64_t process) {
    std::ifstream file("/proc/" + std::to_string(process) + "/cgroup");
    for (std::string line; std::getline(file, line);) {
        const auto unit = line.substr(line.rfind('/') + 1);
        if (auto id = SystemdScope::applicationID(unit, process); !id.empty())
            return id;
    }
    return {};
}

bool ProcessFacts::stillRuns(std::int64_t process, const std::string& executable) {
    return process != 0 && !executable.empty() && ProcessFacts::executable(process) == executable;
}

} // namespace tessarine
