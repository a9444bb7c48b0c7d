#pragma once

#include "launcherapp/platform/Image.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace tessarine {

class FileStore;
class PictureCodec;

/// The pictures of clippings as files of one folder. Any thread; every call waits for the disk, and
/// for the reading and writing of pictures.
class ClipPictures {
public:
    static constexpr int thumbnailPixels = 512;               ///< of the longer side
    static constexpr std::size_t largestFullBytes = 12000000; ///< of a whole picture as PNG

    ClipPictures(std::shared_ptr<FileStore> files,
                 std::shared_ptr<const PictureCodec> codec,
                 std::string folder);

    /// A copied picture, read and kept.
    struct Kept {
        std::string id;
        int width = 0; ///< pixels
        int height = 0;
        std::optional<std::string> imageFile;     ///< nothing when it could not be written
        std::optional<std::string> fullFile;      ///< likewise, or when it is too large
        std::optional<std::size_t> tooLargeBytes; ///< of the PNG that was not kept
        std::optional<std::string> problem;       ///< why a file could not be written
    };

    /// Nothing for what is no picture. Files that are there already are kept; bytes that are PNG
    /// are the whole picture's file as they are.
    std::optional<Kept> keep(const std::string& bytes) const;

    /// The file's bytes; nothing when it is missing or can't be read.
    std::shared_ptr<const std::string> png(const std::string& name) const;
    std::optional<Image> image(const std::string& name, int longestPixels) const;

    void remove(const std::string& name) const; ///< a failure is ignored

    using Names = std::set<std::string, std::less<>>;

    /// The names of all picture files in the folder.
    Names names() const;

    /// Removes what killed saves of pictures left. None may be under way.
    void removeLeftovers() const;

    /// Removes all pictures but those in `spared`. What another document names stays too: the
    /// copies beside `document`, the history's, of what could not be read, and the history beside
    /// the folder, if it is another one. When one of them can't be read, all pictures stay.
    void sweep(const Names& spared, const std::string& document) const;

    /// Whether a file of this name can be ours: an id with ".png" or "-full.png" after it. No other
    /// is ever read or removed, whatever a document on disk names.
    static bool isName(std::string_view name);

private:
    std::vector<std::string> otherDocuments(const std::string& document) const;
    std::string path(const std::string& name) const;
    void writeFiles(Kept& kept, const Image& image, const std::string& bytes) const;
    std::optional<std::string> thumbnail(const std::string& name, const Image& image) const;

    std::shared_ptr<FileStore> files_;
    std::shared_ptr<const PictureCodec> codec_;
    std::string folder_;
};

} // namespace tessarine
