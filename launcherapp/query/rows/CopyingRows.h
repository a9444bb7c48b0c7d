#pragma once

#include "launcherapp/query/RowVerbs.h"

#include <string>

namespace tessarine {

/// What a row whose Return copies says below its title: `subtitle`, and why nothing can be copied
/// now if so. Main thread only.
std::string copyingSubtitle(std::string subtitle, const RowVerbs& verbs);

} // namespace tessarine
