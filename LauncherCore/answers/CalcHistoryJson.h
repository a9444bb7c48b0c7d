#pragma once

#include "LauncherCore/answers/CalcHistoryStore.h"

#include <optional>
#include <string>
#include <string_view>

/// The JSON form of the calculation history: an object with the one key "entries", a list with the
/// newest first. Of an entry's keys only "detail" and "name" may be absent. Pure; any thread.
namespace tessarine::CalcHistoryJson {

std::string encoded(const CalcHistoryStore& history);

/// Nothing when the text is no such document, whole.
std::optional<CalcHistoryStore> decoded(std::string_view text);

} // namespace tessarine::CalcHistoryJson
