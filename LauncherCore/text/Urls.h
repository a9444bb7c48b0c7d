#pragma once

#include <optional>
#include <string>
#include <string_view>

/// Percent-encoding of URLs (RFC 3986). Pure; any thread.
namespace tessarine::Urls {

/// "file://" and the absolute path, with everything but unreserved characters and "/" encoded.
std::string fileUrl(std::string_view path);

/// The text as a value in a URL's query, everything but unreserved characters encoded.
std::string queryValue(std::string_view text);

/// The path that a file URL of this machine names (RFC 8089), without a query or fragment after it;
/// nothing for any other URL, for one of another host, and for a path with a NUL in it.
std::optional<std::string> filePath(std::string_view url);

/// The URL that a text is: its scheme in lower case, and what a URL can't hold percent-encoded.
/// Nothing is guessed: nothing for a text without a scheme, nor for one with a control character.
std::optional<std::string> withScheme(std::string_view text);

/// What stands before the first colon; empty when there is none.
std::string_view scheme(std::string_view url);

} // namespace tessarine::Urls
