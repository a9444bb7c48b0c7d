#include "LauncherCore/text/Paths.h"

namespace tessarine {

std::string_view Paths::withoutEndSlashes(std::string_view path) {
    while (path.size() > 1 && path.ends_with('/'))
        path.remove_suffix(1);
    return path;
}

std::string Paths::normalized(std::string_view path) {
    std::string result;
    result.reserve(path.size());
    for (const char c : path) {
        if (c != '/' || !result.ends_with('/'))
            result += c;
    }
    if (result.size() > 1 && result.ends_with('/'))
        result.pop_back();
    return result;
}

std::string_view Paths::parent(std::string_view path) {
    const auto slash = path.rfind('/');
    return slash == 0 || slash == std::string_view::npos ? "/" : path.substr(0, slash);
}

std::string_view Paths::lastPart(std::string_view path) {
    return path.substr(path.rfind('/') + 1);
}

bool Paths::isAtOrBelow(std::string_view path, std::string_view folder) {
    if (!path.starts_with(folder))
        return path.size() + 1 == folder.size() && folder.ends_with('/') &&
               folder.starts_with(path);
    return path.size() == folder.size() || folder.ends_with('/') || path[folder.size()] == '/';
}

std::string Paths::shown(std::string_view path, std::string_view home) {
    home = withoutEndSlashes(home);
    if (home.empty() || home == "/" || !isAtOrBelow(path, home))
        return std::string(path);
    return "~" + std::string(path.substr(home.size()));
}

} // namespace tessarine
