#include "launcherapp/platform/linux/system/DesktopFacts.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace tessarine {

namespace {

struct KnownDesktop {
    std::string_view id; ///< in XDG_CURRENT_DESKTOP
    DesktopKind kind;
    std::string_view name;
};

constexpr auto knownDesktops = std::to_array<KnownDesktop>({
    {"Budgie", DesktopKind::budgie, "Budgie"}, // says "Budgie:GNOME"
    {"GNOME", DesktopKind::gnome, "GNOME"},
    {"KDE", DesktopKind::kde, "Plasma"},
    {"XFCE", DesktopKind::xfce, "Xfce"},
    {"X-Cinnamon", DesktopKind::cinnamon, "Cinnamon"},
    {"Cinnamon", DesktopKind::cinnamon, "Cinnamon"},
    {"MATE", DesktopKind::mate, "MATE"},
    {"LXQt", DesktopKind::lxqt, "LXQt"},
    {"Pantheon", DesktopKind::pantheon, "Pantheon"},
});

/// All that any effect may start.
constexpr auto toolNames = std::to_array<const char*>({
    // Lockers and screen savers.
    "swaylock",
    "hyprlock",
    "gtklock",
    "waylock",
    "i3lock",
    "xsecurelock",
    "slock",
    "xscreensaver-command",
    "xset",
    "kscreen-doctor",
    // Appearance and file managers.
    "gsettings",
    "plasma-apply-colorscheme",
    "xfconf-query",
    "nautilus",
    "nemo",
    "caja",
    "thunar",
    "dolphin",
    "pcmanfm",
    "pcmanfm-qt",
    // Pictures of the screen.
    "gnome-screenshot",
    "mate-screenshot",
    "xfce4-screenshooter",
    "spectacle",
    "maim",
    "scrot",
    "import",
    "grim",
    "slurp",
    "wl-copy",
    "grimshot",
    "swaymsg",
    // Shells and what talks to them.
    "systemctl",
    "plasmashell",
    "xfce4-panel",
    "mate-panel",
    "budgie-panel",
    "cinnamon",
    "pkill",
});

const KnownDesktop* known(const std::vector<std::string>& desktops) {
    for (const auto& desktop : desktops) {
        const auto* const found = std::ranges::find(knownDesktops, desktop, &KnownDesktop::id);
        if (found != knownDesktops.end())
            return found;
    }
    return nullptr;
}

bool isExecutable(const std::string& path) {
    struct stat status {};

    return ::stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) &&
           ::access(path.c_str(), X_OK) == 0;
}

} // namespace

LogindAnswer logindAnswer(std::string_view word) {
    constexpr auto known = std::to_array<std::pair<std::string_view, LogindAnswer>>({
        {"yes", LogindAnswer::yes},
        {"challenge", LogindAnswer::challenge},
        {"no", LogindAnswer::no},
        {"na", LogindAnswer::unable},
    });
    for (const auto& [name, answer] : known) {
        if (name == word)
            return answer;
    }
    return LogindAnswer::unknown;
}

DesktopKind DesktopFacts::kind() const {
    const auto* const desktop = known(desktops);
    return desktop ? desktop->kind : DesktopKind::other;
}

std::string DesktopFacts::desktopName() const {
    const auto* const desktop = known(desktops);
    return desktop ? std::string(desktop->name) : "this desktop";
}

std::vector<std::string> DesktopFacts::commandLine(std::string_view name,
                                                   std::vector<std::string> options) const {
    options.insert(options.begin(), programs.at(std::string(name)));
    return options;
}

std::map<std::string, std::string> DesktopFinds::programs(const std::vector<std::string>& folders) {
    std::map<std::string, std::string> found;
    for (const auto* name : toolNames) {
        for (const auto& folder : folders) {
            const auto path = folder + "/" + name;
            if (isExecutable(path)) {
                found.emplace(name, path);
                break;
            }
        }
    }
    return found;
}

std::set<std::string> DesktopFinds::running(const std::string& processFolder, unsigned user) {
    namespace fs = std::filesystem;
    std::set<std::string> names;
    std::error_code error;
    // Processes come and go while we look: what can't be read any more is not running.
    for (fs::directory_iterator each(processFolder, error), end; !error && each != end;
         each.increment(error)) {
        const auto path = each->path().string();

        struct stat status {};

        std::string name;
        if (::stat(path.c_str(), &status) == 0 && status.st_uid == user &&
            std::getline(std::ifstream(path + "/comm"), name))
            names.insert(name);
    }
    return names;
}

} // namespace tessarine
