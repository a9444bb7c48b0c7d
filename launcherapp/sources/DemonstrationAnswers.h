#pragma once

#include "LauncherCore/answers/RateTable.h"
#include "LauncherCore/query/UsageLog.h"
#include "launcherapp/sources/CalcStore.h"

#include <string_view>
#include <vector>

namespace tessarine {

/// What a demonstration answers from, the same on every machine and day. Times are in seconds since
/// 1970. Pure; any thread.
namespace DemonstrationAnswers {

/// Home, and where the computer is.
constexpr std::string_view zone = "Europe/Lisbon";

/// Figures near those of a day in 2026, from a provider that doesn't exist. They are always two
/// hours old, so that a picture shows the same age whenever it is made.
RateTable rates(double now);

/// Calculations of the user's, in the order in which they were made.
std::vector<CalcStore::Calculation> calculations();

/// What the user of the demonstration's applications launched lately.
UsageLog usage(double now);

} // namespace DemonstrationAnswers

} // namespace tessarine
