#pragma once

#include <string>
#include <string_view>

/// The ids of clippings: the first 12 bytes of a SHA-256 digest as 24 lowercase hexadecimal digits.
/// Pure; any thread.
namespace tessarine::ClipIdentity {

std::string ofText(std::string_view text);
std::string ofFiles(std::string_view paths); ///< one a line, joined with line feeds
/// `bytes` are the picture's canonical form, which is the same for each copy of it.
std::string ofPicture(std::string_view bytes);

} // namespace tessarine::ClipIdentity
