#pragma once

#include "LauncherCore/index/IndexedItem.h"
#include "launcherapp/index/walk/IndexWalker.h"

#include <string>
#include <vector>

namespace tessarine {

/// The rules of `IndexWalker::walkTree` once more, on the standard library's own enumerator and
/// with nothing of it shared: what the walk is compared with. Slow, and over the machine's real
/// files alone. Gives the same items in the same order; empty when the root can't be read. A tree
/// that changes under it is begun anew a few times. Any thread.
std::vector<IndexedItem> legacyWalk(const std::string& root, const IndexWalker::Policy& policy);

} // namespace tessarine
