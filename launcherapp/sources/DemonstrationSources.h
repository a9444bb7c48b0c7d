#pragma once

namespace tessarine {

class SearchModel;

/// Invented people and copies for pictures and trials: nothing private is read, and
/// nothing that they do reaches anybody. Sets the families of a model that is wired already; the
/// model outlives what they hold. Main thread only.
void addDemonstrationSources(SearchModel& model);

} // namespace tessarine
