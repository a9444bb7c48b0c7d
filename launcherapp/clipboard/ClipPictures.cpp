#include "launcherapp/clipboard/ClipPictures.h"

#include "LauncherCore/clipboard/ClipIdentity.h"
#include "LauncherCore/clipboard/ClipboardEntry.h"
#include "launcherapp/platform/FileStore.h"
#include "launcherapp/platform/PictureCodec.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <utility>

namespace tessarine {

namespace {

constexpr std::string_view pngMark = "\x89PNG\r\n\x1a\n"; // ISO/IEC 15948, 5.2
constexpr std::string_view extension = ".png";
constexpr std::string_view fullEnding = "-full.png";
constexpr std::size_t idDigits = 24;

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

std::optional<std::string> ClipPictures::written(const std::string& name,
                                                 const std::string& bytes) const {
    try {
        files_->save(path(name), bytes);
        return name;
    } catch (const FileError&) {
        return std::nullopt; // the clipping does without
    }
}

std::optional<std::string> ClipPictures::thumbnail(const std::string& name,
                                                   const Image& image) const {
    if (files_->info(path(name)))
        return name;
    const auto bytes = codec_->png(codec_->scaled(image, thumbnailPixels));
    return bytes ? written(name, *bytes) : std::nullopt;
}

std::optional<ClipPictures::Kept> ClipPictures::keep(const std::string& bytes) const {
    const auto image = codec_->decoded(bytes);
    if (!image || image->isEmpty())
        return std::nullopt;
    Kept kept{.id = ClipIdentity::ofPicture(canonical(*image)),
              .width = image->widthPixels,
              .height = image->heightPixels};
    kept.imageFile = thumbnail(kept.id + std::string(extension), *image);
    const auto full = kept.id + std::string(fullEnding);
    if (files_->info(path(full))) {
        kept.fullFile = full;
        return kept;
    }
    const auto encoded = bytes.starts_with(pngMark) ? bytes : codec_->png(*image).value_or("");
    if (encoded.size() > largestFullBytes)
        kept.tooLargeBytes = encoded.size();
    else if (!encoded.empty())
        kept.fullFile = written(full, encoded);
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
    if (!isName(name))
        return;
    try {
        files_->remove(path(name));
    } catch (const FileError&) {
        // It is looked for again at the next start.
    }
}

std::vector<std::string> ClipPictures::names() const {
    std::vector<std::string> names;
    for (const auto& entry : files_->entries(folder_).value_or(std::vector<DirectoryEntry>{})) {
        if (isName(entry.name))
            names.push_back(entry.name);
    }
    return names;
}

bool ClipPictures::isName(std::string_view name) {
    const auto id = name.substr(0, idDigits);
    const auto ending = name.substr(id.size());
    return id.size() == idDigits && (ending == extension || ending == fullEnding) &&
           std::ranges::all_of(
               id, [](char c) { return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f'); });
}

} // namespace tessarine
