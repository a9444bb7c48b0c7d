#pragma once

#include "launcherapp/operations/Selftest.h"

#include <functional>

namespace tessarine {

class NameIndex;

enum class ScanTiming { no, yes };

/// Holds every way of finding a needle against `memmem`, over the index in use and over a made-up
/// one with needles across a vector's edge, at the very end, repeating, and holding blanks; and the
/// pre-filter against the scorer on every item. `clock` gives seconds since some fixed moment.
SelftestResult
indexSelftest(const NameIndex& live, ScanTiming timing, const std::function<double()>& clock);

/// That no walk, however long, holds more than a tenth of a core.
SelftestResult indexDutySelftest();

} // namespace tessarine
