#pragma once

#include "LauncherCore/answers/RateTable.h"

namespace tessarine {

class SearchModel;

/// Invented people, copies and folders for pictures and trials: nothing private is read, and
/// nothing that they do reaches anybody. Sets the families of a model that is wired already; the
/// model outlives what they hold. Main thread only.
void addDemonstrationSources(SearchModel& model);

/// Invented rates, fetched a quarter of an hour before `now`.
RateTable demonstrationRates(double now);

} // namespace tessarine
