#pragma once

#include "LauncherCore/clipboard/ClipKinds.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace tessarine {

/// What a copy that is not kept counts as, and what the log says of it.
struct ClipSkip {
    enum class Reason {
        concealed,  ///< a concealed, transient or auto-generated marker
        remote,     ///< from another device, by a setting
        ignoredApp, ///< the user excluded the application in front
        tooLarge,
        quillet ///< the companion's own
    };

    Reason reason = Reason::concealed;
    std::string line; ///< for the log; empty for none

    bool operator==(const ClipSkip&) const = default;
};

/// Which copies are not kept. Pure; any thread.
namespace ClipSkips {

/// What the user's settings and the desktop say of a copy.
struct Circumstances {
    bool ignoresRemoteText = false; ///< and all else from other devices but files
    bool ignoresRemoteFiles = true;
    bool ignoresRemoteImages = true;
    std::vector<std::string> ignoredApps; ///< desktop-file ids
    std::int64_t maxCharacters = 0;       ///< of a text; below 1: any number
    std::optional<std::string> frontApp;  ///< desktop-file id of the one in front at the copy
    bool isQuillet = false; ///< it is the companion's, whose copies are to be left out
};

/// What the names of the types and the circumstances say before any content is asked for; nothing
/// for a copy that may be read.
std::optional<ClipSkip> beforeReading(std::span<const std::string> types,
                                      const Circumstances& circumstances);

/// Whether a copy from another device that turned out to be of this kind is dropped.
bool dropsRemote(ClipKind kind, const Circumstances& circumstances);

/// The most bytes that are asked for of a text, with `clipMaxCharacters` as given.
std::size_t textLimitBytes(std::int64_t maxCharacters);

/// Nothing for a text of so many characters that may be kept.
std::optional<ClipSkip> tooManyCharacters(std::size_t characters, std::int64_t maxCharacters);

/// For a text of more bytes than are asked for.
ClipSkip tooManyBytes(std::int64_t maxCharacters);

/// The most bytes that are asked for of a file list: some hundred thousand paths.
inline constexpr std::size_t fileListLimitBytes = std::size_t{16} << 20;

/// For a longer one.
ClipSkip tooLongFileList();

} // namespace ClipSkips
} // namespace tessarine
