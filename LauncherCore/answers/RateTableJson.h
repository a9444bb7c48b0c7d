#pragma once

#include "LauncherCore/answers/RateTable.h"

#include <optional>
#include <string>
#include <string_view>

/// Rate tables as JSON: the cache file, an object with "base", "rates", "fetched", "host" and
/// "checkURL", all required; and what the providers send. A rate is a number above 0, and what is
/// none is left out. Pure; any thread.
namespace tessarine::RateTableJson {

std::string encoded(const RateTable& table);

/// Nothing when the text is no such document, or has no rate.
std::optional<RateTable> decoded(std::string_view text);

/// The base and the rates of a provider's answer, the rest empty: an object with "rates" and with
/// "base" or "base_code", without which the base is USD. Nothing when it has no rate.
std::optional<RateTable> decodedAnswer(std::string_view body);

} // namespace tessarine::RateTableJson
