#include "launcherapp/platform/linux/input/RivalProcesses.h"

#include "launcherapp/platform/linux/input/RivalTable.h"
#include "launcherapp/platform/linux/processes/ProcessFacts.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace tessarine {

namespace {

std::string_view fileName(std::string_view path) {
    constexpr std::string_view replaced = " (deleted)"; // by an update while it runs
    if (path.ends_with(replaced))
        path.remove_suffix(replaced.size());
    return path.substr(path.rfind('/') + 1);
}

/// Versions at the end of a name don't count: "python3.11" is an interpreter. "sherlock" is not,
/// though it begins with "sh".
bool isInterpreter(std::string_view program) {
    constexpr auto interpreters = std::to_array<std::string_view>(
        {"python", "node", "nodejs", "electron", "perl", "bash", "dash", "sh"});
    const auto version = program.find_last_not_of("0123456789.") + 1;
    return std::ranges::count(interpreters, program.substr(0, version)) > 0;
}

/// Electron runs an archive that lies in a folder with the program's name.
std::string_view withoutArchive(std::string_view script) {
    for (const std::string_view part : {"/app.asar", "/resources"}) {
        if (script.ends_with(part))
            script.remove_suffix(part.size());
    }
    return script;
}

/// The script that an interpreter runs: its first argument that is no option.
std::string scriptOf(const std::string& folder) {
    std::ifstream arguments(folder + "/cmdline");
    std::string argument;
    std::getline(arguments, argument, '\0');
    while (std::getline(arguments, argument, '\0')) {
        if (!argument.starts_with('-'))
            return std::string(withoutArchive(argument));
    }
    return {};
}

const RivalTable::Rival* rivalOf(std::int64_t process, const std::string& folder) {
    auto program = ProcessFacts::executable(process);
    if (isInterpreter(fileName(program)))
        program = scriptOf(folder);
    const auto name = fileName(program);
    const auto rivals = RivalTable::rivals();
    const auto found = std::ranges::find(rivals, name, &RivalTable::Rival::program);
    return found == rivals.end() ? nullptr : &*found;
}

} // namespace

std::vector<RivalProcesses::Found> RivalProcesses::look() {
    std::vector<Found> found;
    std::error_code ignored; // a process may end while it is looked at
    for (const auto& entry : std::filesystem::directory_iterator("/proc", ignored)) {
        const auto name = entry.path().filename().string();
        std::int64_t process = 0;
        if (std::from_chars(name.data(), name.data() + name.size(), process).ec != std::errc())
            continue;

        struct stat facts {};

        const auto folder = entry.path().string();
        if (::stat(folder.c_str(), &facts) != 0 || facts.st_uid != ::getuid())
            continue;
        if (const auto* rival = rivalOf(process, folder))
            found.push_back({.process = process, .name = std::string(rival->name)});
    }
    return found;
}

} // namespace tessarine
