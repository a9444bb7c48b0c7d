#include "LauncherCore/index/IndexedItem.h"

#include "LauncherCore/text/Folding.h"

#include <algorithm>
#include <array>

namespace tessarine {

namespace {

constexpr std::uint64_t fnvPrime = 0x100000001b3;
constexpr std::uint8_t folderKind = 1;
constexpr std::uint8_t fileKind = 2;

/// Extensions of directories that stand for one document or program. Linux has no such notion;
/// these come on drives and in archives from desktops that do, or hold an unpacked program.
constexpr auto packageExtensions = std::to_array<std::string_view>({
    "app",
    "appdir",
    "appex",
    "bundle",
    "framework",
    "kext",
    "photoslibrary",
    "plugin",
    "prefpane",
    "rtfd",
    "sparsebundle",
    "xpc",
});

std::uint64_t fnvStep(std::uint64_t state, std::uint8_t byte) {
    return (state ^ byte) * fnvPrime;
}

} // namespace

std::string_view IndexRules::pathExtension(std::string_view name) {
    const auto dot = name.rfind('.');
    if (dot == std::string_view::npos || dot == 0 || dot + 1 == name.size())
        return {};
    return name.substr(dot + 1);
}

bool IndexRules::isPackage(std::string_view directoryName) {
    const auto extension = pathExtension(directoryName);
    return !extension.empty() &&
           std::ranges::count(packageExtensions, Folding::lowercase(extension)) > 0;
}

std::uint64_t IndexRules::fnv1a(std::string_view text, std::uint64_t state) {
    for (const char c : text)
        state = fnvStep(state, static_cast<std::uint8_t>(c));
    return state;
}

std::uint64_t IndexRules::itemHash(std::uint64_t stateOfID, bool isFolder) {
    return fnvStep(stateOfID, isFolder ? folderKind : fileKind);
}

std::uint64_t IndexRules::itemHash(const IndexedItem& item) {
    return itemHash(fnv1a(item.id), item.isFolder);
}

} // namespace tessarine
