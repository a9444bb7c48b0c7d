#pragma once

#include <string>
#include <string_view>

/// The addresses of commands, which have a place for what the user typed. Pure; any thread.
namespace tessarine::CommandTemplates {

/// Where the argument goes, as often as it stands there.
inline constexpr std::string_view placeholder = "{query}";

/// The text with the argument in its places, percent-encoded as a URL's value: nothing in the
/// argument can end that value and begin another, or be taken for a place itself.
std::string filled(std::string_view text, std::string_view argument);

} // namespace tessarine::CommandTemplates
