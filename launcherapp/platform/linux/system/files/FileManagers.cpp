#include "launcherapp/platform/linux/system/files/FileManagers.h"

#include <algorithm>
#include <array>

namespace tessarine {

namespace {

using enum HiddenFilesSetting;

// By gvfs, "trash:///"; by KIO, "trash:/". "-q" ends all of the program's windows at once.
constexpr auto table = std::to_array<KnownFileManager>({
    {"org.gnome.Nautilus", "nautilus", "Files", "trash:///", gtk, QuitWay::option},
    {"nautilus", "nautilus", "Files", "trash:///", gtk, QuitWay::option},
    {"nemo", "nemo", "Nemo", "trash:///", nemo, QuitWay::option},
    {"caja", "caja", "Caja", "trash:///", caja, QuitWay::option},
    {"caja-folder-handler", "caja", "Caja", "trash:///", caja, QuitWay::option},
    {"thunar", "thunar", "Thunar", "trash:///", thunar, QuitWay::option},
    {"Thunar", "thunar", "Thunar", "trash:///", thunar, QuitWay::option},
    {"org.kde.dolphin", "dolphin", "Dolphin", "trash:/", none, QuitWay::bus},
    {"pcmanfm", "pcmanfm", "PCManFM", "trash:///", none, QuitWay::none},
    {"pcmanfm-qt", "pcmanfm-qt", "PCManFM-Qt", "trash:///", none, QuitWay::none},
});

} // namespace

const KnownFileManager* FileManagers::byDesktopID(std::string_view id) {
    const auto* const found = std::ranges::find(table, id, &KnownFileManager::desktopID);
    return found == table.end() ? nullptr : found;
}

} // namespace tessarine
