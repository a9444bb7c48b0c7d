#pragma once

#include "LauncherCore/index/IndexedItem.h"
#include "launcherapp/index/walk/IndexWalker.h"

#include <optional>
#include <string>
#include <vector>

namespace tessarine {

/// The rules of `IndexWalker::walkTree` once more, on the standard library's own enumerator: what
/// the walk is compared with. Only what a name alone tells is shared, its normal form and whether
/// it is a package's. Slow, and over the machine's real files alone. Gives the same items in the
/// same order; nothing when the root can't be read. Any thread.
std::optional<std::vector<IndexedItem>> legacyWalk(const std::string& root,
                                                   const IndexWalker::Policy& policy);

} // namespace tessarine
