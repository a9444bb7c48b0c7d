#pragma once

#include "LauncherCore/clipboard/ClipClassifier.h"
#include "LauncherCore/clipboard/ClipKinds.h"
#include "LauncherCore/clipboard/ClipText.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tessarine {

/// A sealed picture in the object store of the sync service.
struct ClipBlobRef {
    std::string plain;      ///< SHA-256 of the plain PNG, lowercase hexadecimal
    std::string object;     ///< SHA-256 of the sealed bytes, which is the object's address
    std::int64_t bytes = 0; ///< length of the sealed bytes
    std::int64_t width = 0; ///< pixels
    std::int64_t height = 0;

    bool operator==(const ClipBlobRef&) const = default;
};

/// One clipping. Times are seconds since 1970, UTC. A value; any thread.
struct ClipboardEntry {
    std::string id; ///< of the content: copies of the same content have the same id
    ClipKind kind = ClipKind::text;
    ClipText text;                        ///< untrimmed; paths one a line; of a picture its label
    std::string preview;                  ///< one line for rows, made from `text`
    std::optional<std::string> imageFile; ///< name of the thumbnail in the folder of pictures
    std::optional<std::string> fullFile;  ///< likewise the whole picture; nothing when only the
                                          ///< thumbnail is kept or it hasn't arrived yet
    double firstSeen = 0;
    double lastSeen = 0; ///< last copy or use: what the list is sorted by, and the base of age
    std::int64_t count = 1;
    bool pinned = false;                   ///< never expires and is never evicted
    std::optional<std::string> sourceApp;  ///< name of the application in front at the copy
    std::optional<bool> fromOtherDevice;   ///< true for a copy handed over by another device
    std::optional<std::string> syncOrigin; ///< the device that last stamped it
    std::optional<std::int64_t> syncLamport;
    std::optional<ClipBlobRef> syncBlob;
    std::optional<bool> blobTooLarge; ///< the picture was too big to upload
    /// Names of the places it was pasted into, each once, the most recent last.
    std::optional<std::vector<std::string>> pastedInto;

    /// What a copy brings with it.
    struct Copy {
        std::string id;
        ClipKind kind = ClipKind::text;
        ClipText text;
        std::optional<std::string> imageFile = {};
        std::optional<std::string> fullFile = {};
        double at = 0;
        std::optional<std::string> sourceApp = {};
        std::optional<bool> fromOtherDevice = {};
    };

    /// The entry of a first copy, with its preview.
    static ClipboardEntry make(Copy copy);

    /// The first line that isn't empty, without spaces and tabs at its ends, cut after 120
    /// characters. Of a text that is only line breaks: empty.
    static std::string makePreview(std::string_view text);

    /// The files of a file clipping, in their order; a blank line names none. Views into `text`,
    /// which copies of the entry share.
    std::vector<std::string_view> paths() const;

    std::size_t pasteCount() const { return pastedInto ? pastedInto->size() : 0; }

    std::size_t characterCount() const { return text.characters(); }

    bool isMultiline() const { return text.string().find('\n') != std::string::npos; }

    /// Whether the picture lies in the sync store and not here.
    bool needsFetch() const { return kind == ClipKind::image && !fullFile && syncBlob; }

    ClipCategory category() const { return ClipClassifier::category(kind, text); }

    bool operator==(const ClipboardEntry&) const = default;
};

} // namespace tessarine
