#include "launcherapp/query/RowAction.h"

#include "launcherapp/shell/Uuid.h"

#include <utility>

namespace tessarine {

RowAction RowAction::make(std::string title, std::function<void()> run) {
    return {.id = randomUuid(), .title = std::move(title), .run = std::move(run)};
}

const RowAction& RowAction::separator() {
    static const auto action = make("", [] {});
    return action;
}

} // namespace tessarine
