#pragma once

#include <optional>
#include <string>
#include <string_view>

/// What a locale implies beyond its language. Pure; any thread.
namespace tessarine::LocaleFacts {

/// The ISO 4217 code of the currency in use there ("EUR" for "de_DE.UTF-8"); nothing for a locale
/// without a country.
std::optional<std::string> currency(std::string_view locale);

} // namespace tessarine::LocaleFacts
