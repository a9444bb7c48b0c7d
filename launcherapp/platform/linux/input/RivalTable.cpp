#include "launcherapp/platform/linux/input/RivalTable.h"

namespace tessarine {

namespace {

constexpr auto table = std::to_array<RivalTable::Rival>({
    {"KRunner", {"org.kde.krunner"}, "krunner"},
    {"LXQt Runner", {}, "lxqt-runner"},
    {"Ulauncher", {"io.ulauncher.Ulauncher", "net.launchpad.ulauncher"}, "ulauncher"},
    {"Albert", {}, "albert"},
    {"Kupfer", {"se.kaizer.kupfer"}, "kupfer"},
    {"Synapse", {"org.gnome.Synapse"}, "synapse"},
    {"GNOME Do", {"org.gnome.Do"}, "gnome-do"},
    {"Xfce Application Finder", {"org.xfce.Appfinder"}, "xfce4-appfinder"},
    {"Cerebro", {}, "cerebro"},
    {"Ueli", {}, "ueli"},
    {"Vicinae", {}, "vicinae"},
    {"Sherlock", {}, "sherlock"},
    {"Walker", {}, "walker"},
});

} // namespace

std::span<const RivalTable::Rival> RivalTable::rivals() {
    return table;
}

} // namespace tessarine
