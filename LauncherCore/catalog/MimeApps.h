#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace tessarine {

/// Who opens what, from the mimeapps.list files (Association between MIME types and applications
/// 1.0.1, freedesktop.org). A value; any thread.
class MimeApps {
public:
    /// Reads one file's text after those already read; what is read first wins. Lines that can't
    /// be read are passed over.
    void add(std::string_view text);

    /// Ids without ".desktop", best first: defaults, then added associations. Empty when no file
    /// speaks of the type.
    std::vector<std::string> preferred(std::string_view mimeType) const;

    /// Whether a file took this association away, which then no entry's own MimeType restores.
    bool isRemoved(std::string_view mimeType, std::string_view bundleID) const;

private:
    using Associations = std::map<std::string, std::vector<std::string>, std::less<>>;
    Associations defaults_;
    Associations added_;
    Associations removed_;
};

} // namespace tessarine
