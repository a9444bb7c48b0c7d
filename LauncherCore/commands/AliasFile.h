#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace tessarine {

/// The user's "aliases.json" beside the commands file: more words for what others name. Pure; any
/// thread.
struct AliasFile {
    using Words = std::map<std::string, std::vector<std::string>>;

    std::int64_t version = 1;
    Words chromeProfiles; ///< by the profile's directory
    Words slack;          ///< by the id of a person or channel

    bool operator==(const AliasFile&) const = default;

    /// Throws CommandFileError when the text is no such document; an absent key is an empty map.
    static AliasFile decoded(std::string_view data);
};

} // namespace tessarine
