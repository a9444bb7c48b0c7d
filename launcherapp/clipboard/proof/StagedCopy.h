#pragma once

#include "launcherapp/clipboard/ClipExamination.h"

#include <string>
#include <utility>
#include <vector>

namespace tessarine {

/// A copy that a self-test stages on a pasteboard of its own, and what is made of it.
struct StagedCopy {
    using Items = std::vector<std::pair<std::string, std::string>>; ///< types with their contents

    ClipExamination::Result result;
    int reads = 0; ///< how often any content was asked for
};

/// What the watcher makes of a copy of these items while an application is in front. Waits for it.
StagedCopy examined(const StagedCopy::Items& items, const ClipSkips::Circumstances& circumstances);

} // namespace tessarine
