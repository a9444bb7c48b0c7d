#pragma once

#include <string>
#include <string_view>

/// Absolute paths as text: nothing is asked of the disk, and links are not known. Pure; any thread.
namespace tessarine::Paths {

/// Without slashes at its end; "/" stays.
std::string_view withoutEndSlashes(std::string_view path);

/// Without slashes at its end, nor two in a row; "/" stays.
std::string normalized(std::string_view path);

/// The folder that holds it; "/" for one at the top, and for "/" itself.
std::string_view parent(std::string_view path);

/// The last part of a path without a slash at its end; empty for "/".
std::string_view lastPart(std::string_view path);

/// Whether the path is the folder itself or lies below it; a sibling whose name merely begins
/// alike doesn't. The folder may end in a slash.
bool isAtOrBelow(std::string_view path, std::string_view folder);

/// As a person writes it: with "~" for the home folder. An empty home is nobody's.
std::string shown(std::string_view path, std::string_view home);

} // namespace tessarine::Paths
