#include "launcherapp/platform/linux/files/SystemZone.h"

#include "LauncherCore/text/Folding.h"
#include "LauncherCore/text/Zone.h"

#include <fmt/format.h>

#include <array>
#include <climits>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <string_view>
#include <unistd.h>
#include <utility>

namespace tessarine {

namespace {

constexpr const char* utc = "Etc/UTC";

/// The zone's name at the end of a path into the zone database; a text that is no path is a name
/// already. Nothing for what isn't known.
std::optional<std::string> named(std::string_view path) {
    constexpr std::string_view database = "/zoneinfo/";
    if (const auto at = path.rfind(database); at != std::string_view::npos)
        path.remove_prefix(at + database.size());
    // The database's two other copies, without and with leap seconds.
    for (const std::string_view copy : {"posix/", "right/"})
        if (path.starts_with(copy))
            path.remove_prefix(copy.size());
    if (path.empty() || !Zone::named(path))
        return std::nullopt;
    return std::string(path);
}

std::optional<std::string> linkTarget(const std::string& path) {
    std::array<char, PATH_MAX> target;
    const auto length = ::readlink(path.c_str(), target.data(), target.size());
    if (length <= 0)
        return std::nullopt;
    return std::string(target.data(), static_cast<std::size_t>(length));
}

/// By the first link of a chain that leads into the zone database.
std::optional<std::string> linked(std::string path) {
    constexpr int longestChain = 4;
    for (int i = 0; i < longestChain; ++i) {
        const auto target = linkTarget(path);
        if (!target)
            return std::nullopt;
        if (target->find("/zoneinfo/") != std::string::npos)
            return named(*target);
        path = target->starts_with('/') ? *target : path.substr(0, path.rfind('/') + 1) + *target;
    }
    return std::nullopt;
}

std::optional<std::string> written(const std::string& path) {
    std::ifstream file(path);
    std::string line;
    std::getline(file, line);
    return named(Folding::trimmed(line));
}

/// By the C library, which reads TZ too.
std::string offsetOfNow() {
    constexpr long secondsOfMinute = 60;
    constexpr long minutesOfHour = 60;
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    ::tzset();
    ::localtime_r(&now, &local);
    const long minutes = std::labs(local.tm_gmtoff) / secondsOfMinute;
    return fmt::format("GMT{}{:02}:{:02}",
                       local.tm_gmtoff < 0 ? '-' : '+',
                       minutes / minutesOfHour,
                       minutes % minutesOfHour);
}

} // namespace

SystemZone::SystemZone(std::optional<std::string> variable, std::string configurationFolder)
    : variable_(std::move(variable)), folder_(std::move(configurationFolder)) {}

std::string SystemZone::identifier() const {
    if (variable_) {
        std::string_view text = *variable_;
        if (text.starts_with(':'))
            text.remove_prefix(1);
        if (text.empty())
            return utc;
        if (auto name = named(text))
            return *name;
        return offsetOfNow();
    }
    if (auto name = linked(folder_ + "/localtime"))
        return *name;
    return written(folder_ + "/timezone").value_or(utc);
}

} // namespace tessarine
