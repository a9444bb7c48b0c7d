#pragma once

#include "LauncherCore/catalog/DesktopEntry.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

/// What an application is called and by which other words it is found. Pure; any thread.
namespace tessarine::AppNaming {

/// Extra words for an application whose name doesn't say what it does; empty for most.
std::span<const std::string_view> purposeWords(std::string_view bundleID);

/// The name that a person would know a desktop entry's file by: without ".desktop", and without
/// the reverse-domain part, so "org.gnome.Nautilus.desktop" is "Nautilus". The domain would make
/// every "org." application answer to the letter "o".
std::string fileName(std::string_view path);

struct Names {
    std::string name;
    std::vector<std::string> aliases;

    bool operator==(const Names&) const = default;
};

/// `name` is the first that isn't blank of: the translated Name, the untranslated one, the
/// translated and the untranslated GenericName, the file name. The aliases are the purpose words,
/// then the file name, those candidates and the translated and untranslated Keywords, leaving out
/// what equals the name or an earlier alias when case is ignored.
Names names(const DesktopEntry& entry,
            std::string_view path,
            std::string_view bundleID,
            std::span<const std::string> languages);

} // namespace tessarine::AppNaming
