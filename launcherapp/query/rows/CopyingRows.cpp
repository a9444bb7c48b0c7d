#include "launcherapp/query/rows/CopyingRows.h"

namespace tessarine {

std::string copyingSubtitle(std::string subtitle, const RowVerbs& verbs) {
    const auto obstacle = verbs.copyObstacle ? verbs.copyObstacle() : std::string();
    if (obstacle.empty())
        return subtitle;
    if (!subtitle.empty())
        subtitle += " · ";
    return subtitle + "can't be copied: " + obstacle;
}

} // namespace tessarine
