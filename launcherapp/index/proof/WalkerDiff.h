#pragma once

#include "launcherapp/index/walk/IndexWalker.h"
#include "launcherapp/operations/Selftest.h"

#include <functional>
#include <span>
#include <string>

namespace tessarine {

struct WalkerDiffRoot {
    std::string path;
    IndexWalker::Policy policy;
};

/// Walks each root with both walkers, the new one before and after the other so that what somebody
/// changes meanwhile isn't held against either. Refuted when they differ; a root that can't be
/// opened counts for nothing, and with no other nothing is measured. A root's budget is lessened by
/// what those before it hold, as in the index. Takes as long as three walks of everything, so off
/// the main thread. `clock` gives seconds.
SelftestResult walkerDiff(const IndexWalker& walker,
                          std::span<const WalkerDiffRoot> roots,
                          const std::function<double()>& clock);

} // namespace tessarine
