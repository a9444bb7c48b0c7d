#include "launcherapp/clipboard/ClipPictures.h"

#include "LauncherCore/clipboard/ClipIdentity.h"
#include "LauncherCore/clipboard/ClipboardEntry.h"
#include "LauncherCore/text/Paths.h"
#include "launcherapp/operations/StateFile.h"
#include "launcherapp/platform/FileStore.h"
#include "launcherapp/platform/PictureCodec.h"
#include "launcherapp/platform/SaveLeftover.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <iterator>
#include <utility>

namespace tessarine {

namespace {

constexpr std::string_view pngMark = "\x89PNG\r\n\x1a\n"; // ISO/IEC 15948, 5.2
constexpr std::string_view extension = ".png";
constexpr std::string_view fullEnding = "-full.png";
constexpr std::size_t idDigits = 24;
constexpr std::string_view historyName = "clipboard.json";
constexpr std::size_t largestDocument = std::size_t{4} << 30; // as the history's own

void removeFile(FileStore& files, const std::string& path) {
    try {
        files.remove(path);
    } catch (const FileError&) {
        // It is looked for again at the next start.
    }
}

void append(std::string& bytes, std::uint32_t value) {
    const std::array<char, 4> order{static_cast<char>(value),
                                    static_cast<char>(value >> 8),
                                    static_cast<char>(value >> 16),
                                    static_cast<char>(value >> 24)};
    bytes.append(order.data(), order.size());
}

/// The same bytes for the same pixels, in whatever format they were offered.
std::string canonical(const Image& image) {
    std::string bytes;
    bytes.reserve((image.pixels->size() + 2) * sizeof(std::uint32_t));
    append(bytes, static_cast<std::uint32_t>(image.widthPixels));
    append(bytes, static_cast<std::uint32_t>(image.heightPixels));
    for (const auto pixel : *image.pixels)
        append(bytes, pixel);
    return bytes;
}

} // namespace

ClipPictures::ClipPictures(std::shared_ptr<FileStore> files,
                           std::shared_ptr<const PictureCodec> codec,
                           std::string folder)
    : files_(std::move(files)), codec_(std::move(codec)), folder_(std::move(folder)) {}

std::string ClipPictures::path(const std::string& name) const {
    return folder_ + "/" + name;
}

std::optional<std::string> ClipPictures::thumbnail(const std::string& name,
                                                   const Image& image) const {
    if (files_->info(path(name)))
        return name;
    const auto bytes = codec_->png(codec_->scaled(image, thumbnailPixels));
    if (!bytes)
        return std::nullopt;
    files_->save(path(name), *bytes);
    return name;
}

/// Throws FileError; what was written by then is named.
void ClipPictures::writeFiles(Kept& kept, const Image& image, const std::string& bytes) const {
    kept.imageFile = thumbnail(kept.id + std::string(extension), image);
    const auto full = kept.id + std::string(fullEnding);
    if (files_->info(path(full))) {
        kept.fullFile = full;
        return;
    }
    const auto encoded = bytes.starts_with(pngMark) ? bytes : codec_->png(image).value_or("");
    if (encoded.size() > largestFullBytes) {
        kept.tooLargeBytes = encoded.size();
    } else if (!encoded.empty()) {
        files_->save(path(full), encoded);
        kept.fullFile = full;
    }
}

std::optional<ClipPictures::Kept> ClipPictures::keep(const std::string& bytes) const {
    const auto image = codec_->decoded(bytes);
    if (!image || image->isEmpty())
        return std::nullopt;
    Kept kept{.id = ClipIdentity::ofPicture(canonical(*image)),
              .width = image->widthPixels,
              .height = image->heightPixels};
    try {
        writeFiles(kept, *image, bytes);
    } catch (const FileError& error) {
        kept.problem = error.what(); // the clipping does without
    }
    return kept;
}

std::shared_ptr<const std::string> ClipPictures::png(const std::string& name) const {
    if (!isName(name))
        return nullptr;
    try {
        auto bytes = files_->read(path(name), largestFullBytes);
        return bytes ? std::make_shared<const std::string>(*std::move(bytes)) : nullptr;
    } catch (const FileError&) {
        return nullptr;
    }
}

std::optional<Image> ClipPictures::image(const std::string& name, int longestPixels) const {
    const auto bytes = png(name);
    const auto image = bytes ? codec_->decoded(*bytes) : std::nullopt;
    return image ? std::optional(codec_->scaled(*image, longestPixels)) : std::nullopt;
}

void ClipPictures::remove(const std::string& name) const {
    if (isName(name))
        removeFile(*files_, path(name));
}

ClipPictures::Names ClipPictures::names() const {
    Names names;
    for (const auto& entry : files_->entries(folder_).value_or(std::vector<DirectoryEntry>{})) {
        if (isName(entry.name))
            names.insert(entry.name);
    }
    return names;
}

std::vector<std::string> ClipPictures::otherDocuments(const std::string& document) const {
    const auto usual = std::string(Paths::parent(folder_)) + "/" + std::string(historyName);
    auto others = StateFile::copies(*files_, document);
    if (document != usual) {
        others.push_back(usual);
        std::ranges::copy(StateFile::copies(*files_, usual), std::back_inserter(others));
    }
    return others;
}

void ClipPictures::removeLeftovers() const {
    for (const auto& entry : files_->entries(folder_).value_or(std::vector<DirectoryEntry>{})) {
        if (const auto target = SaveLeftover::target(entry.name); target && isName(*target))
            removeFile(*files_, path(entry.name));
    }
}

void ClipPictures::sweep(const Names& spared, const std::string& document) const {
    auto going = names();
    std::erase_if(going, [&](const std::string& name) { return spared.contains(name); });
    if (going.empty())
        return;
    for (const auto& other : otherDocuments(document)) {
        try {
            // As text, since it may not be a whole document.
            const auto text = files_->read(other, largestDocument).value_or("");
            std::erase_if(going, [&](const std::string& name) {
                return text.find(name) != std::string::npos;
            });
        } catch (const FileError&) {
            return;
        }
    }
    for (const auto& name : going)
        remove(name);
}

bool ClipPictures::isName(std::string_view name) {
    const auto id = name.substr(0, idDigits);
    const auto ending = name.substr(id.size());
    return id.size() == idDigits && (ending == extension || ending == fullEnding) &&
           std::ranges::all_of(
               id, [](char c) { return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f'); });
}

} // namespace tessarine
