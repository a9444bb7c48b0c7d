#pragma once

#include "launcherapp/operations/Selftest.h"
#include "launcherapp/platform/Environment.h"
#include "launcherapp/platform/FileStore.h"

namespace tessarine {

class IndexWalker;

/// Both make a tree of the machine's own below the temporary folder, walk it, and remove it.
/// Nothing is measured when it can't be made. `files` is the store of the machine's files. Any
/// thread.

/// `walkTree` against what the tree holds and against the second implementation, with decoys.
SelftestResult
walkerSelftest(const IndexWalker& walker, FileStore& files, const Environment& environment);

/// `reconcile` against a fresh walk after each of a series of changes, with decoys.
SelftestResult
deltaSelftest(const IndexWalker& walker, FileStore& files, const Environment& environment);

} // namespace tessarine
