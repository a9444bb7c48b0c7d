#pragma once

#include <string_view>

namespace tessarine {

/// How the programs that open folders keep what other programs may want of them.
enum class HiddenFilesSetting {
    none,   ///< its own business
    gtk,    ///< GSettings: that of the file dialogs, which GTK 4 and GTK 3 keep each for itself
    nemo,   ///< GSettings
    caja,   ///< GSettings
    thunar, ///< Xfconf
};

/// How one that runs is brought to leave.
enum class QuitWay {
    none,
    option, ///< "nautilus -q"
    bus,    ///< as each of its windows' processes is asked to on the session bus
};

/// A program that opens folders.
struct KnownFileManager {
    std::string_view desktopID; ///< without ".desktop"
    std::string_view program;
    std::string_view name;
    std::string_view trashUrl; ///< what it calls the trash
    HiddenFilesSetting hidden = HiddenFilesSetting::none;
    QuitWay quit = QuitWay::none;
};

/// What is known of file managers. Pure; any thread.
namespace FileManagers {

/// By a desktop-file id without ".desktop"; null for an unknown one.
const KnownFileManager* byDesktopID(std::string_view id);

} // namespace FileManagers
} // namespace tessarine
