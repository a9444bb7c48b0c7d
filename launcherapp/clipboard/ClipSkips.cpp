#include "launcherapp/clipboard/ClipSkips.h"

#include "launcherapp/clipboard/PasteboardTypes.h"

#include <fmt/format.h>

#include <algorithm>
#include <string_view>

namespace tessarine {

namespace {

using Reason = ClipSkip::Reason;

/// More than any text that is worth keeping, and what one read may cost in memory.
constexpr std::size_t largestTextBytes = std::size_t{256} << 20;

/// A user-perceived character may be several scalars; few texts come near four of four bytes each.
constexpr std::size_t bytesPerCharacter = 16;

/// The kind of a remote copy that a setting drops, by its types alone: a large picture on another
/// device never travels.
std::optional<std::string_view> droppedRemoteKind(std::span<const std::string> types,
                                                  const ClipSkips::Circumstances& its) {
    const auto droppedAs = [&](ClipKind kind) {
        return ClipSkips::dropsRemote(kind, its) ? std::optional(ClipKinds::rawValue(kind))
                                                 : std::nullopt;
    };
    if (PasteboardTypes::filesType(types))
        return droppedAs(ClipKind::file);
    if (PasteboardTypes::textType(types))
        return droppedAs(ClipKind::text);
    if (PasteboardTypes::pictureType(types))
        return droppedAs(ClipKind::image);
    return std::nullopt;
}

} // namespace

std::optional<ClipSkip> ClipSkips::beforeReading(std::span<const std::string> types,
                                                 const Circumstances& circumstances) {
    if (const auto marker = PasteboardTypes::secretMarker(types))
        return ClipSkip{
            .reason = Reason::concealed,
            .line = fmt::format("clipboard: skipped a {} item without reading it", *marker)};
    if (PasteboardTypes::isRemote(types)) {
        const auto kind = droppedRemoteKind(types, circumstances);
        if (!kind)
            return std::nullopt;
        return ClipSkip{
            .reason = Reason::remote,
            .line = fmt::format("clipboard: skipped a remote {} without fetching it", *kind)};
    }
    const auto& ignored = circumstances.ignoredApps;
    if (circumstances.frontApp &&
        std::ranges::find(ignored, *circumstances.frontApp) != ignored.end())
        return ClipSkip{.reason = Reason::ignoredApp, .line = {}};
    if (circumstances.isQuillet)
        return ClipSkip{.reason = Reason::quillet,
                        .line = "clipboard: skipped a copy from Quillet (companion link is on)"};
    return std::nullopt;
}

bool ClipSkips::dropsRemote(ClipKind kind, const Circumstances& circumstances) {
    switch (kind) {
    case ClipKind::file:
        return circumstances.ignoresRemoteFiles;
    case ClipKind::text:
        return circumstances.ignoresRemoteText;
    case ClipKind::image:
        return circumstances.ignoresRemoteText || circumstances.ignoresRemoteImages;
    }
    return false;
}

std::size_t ClipSkips::textLimitBytes(std::int64_t maxCharacters) {
    if (maxCharacters < 1)
        return largestTextBytes;
    const auto most = static_cast<std::size_t>(maxCharacters);
    return most > largestTextBytes / bytesPerCharacter ? largestTextBytes
                                                       : most * bytesPerCharacter;
}

std::optional<ClipSkip> ClipSkips::tooManyCharacters(std::size_t characters,
                                                     std::int64_t maxCharacters) {
    if (maxCharacters < 1 || characters <= static_cast<std::size_t>(maxCharacters))
        return std::nullopt;
    return ClipSkip{.reason = Reason::tooLarge,
                    .line = fmt::format("clipboard: skipped a {}-character copy, over the {} limit",
                                        characters,
                                        maxCharacters)};
}

ClipSkip ClipSkips::tooManyBytes(std::int64_t maxCharacters) {
    const auto bytes = textLimitBytes(maxCharacters);
    return {.reason = Reason::tooLarge,
            .line =
                fmt::format("clipboard: skipped a copy of more than {} bytes, over the {} limit",
                            bytes,
                            maxCharacters < 1 ? static_cast<std::int64_t>(bytes) : maxCharacters)};
}

ClipSkip ClipSkips::tooLongFileList() {
    return {.reason = Reason::tooLarge,
            .line = fmt::format("clipboard: skipped a file list, over the {} byte limit",
                                fileListLimitBytes)};
}

} // namespace tessarine
