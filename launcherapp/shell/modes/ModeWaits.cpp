#include "launcherapp/shell/modes/ModeWaits.h"

#include "launcherapp/catalog/AppCatalog.h"
#include "launcherapp/commands/CommandStore.h"
#include "launcherapp/shell/modes/CommandModes.h"
#include "launcherapp/shell/modes/Modes.h"

#include <utility>

namespace tessarine {

namespace {

constexpr Seconds lookInterval{0.05};

void look(ModeContext& context,
          const std::function<bool()>& isDone,
          const std::function<void()>& then,
          Seconds deadline) {
    if (isDone() || context.queue.uptime() >= deadline)
        then();
    else
        context.queue.postAfter(lookInterval, [&context, isDone, then, deadline] {
            look(context, isDone, then, deadline);
        });
}

} // namespace

void ModeWaits::until(ModeContext& context,
                      std::function<bool()> isDone,
                      std::function<void()> then) {
    look(context, isDone, then, context.queue.uptime() + patience);
}

void ModeWaits::whenReady(ModeContext& context, std::function<void()> then) {
    until(
        context,
        [&catalog = context.catalog] { return catalog.lastScan().has_value(); },
        [&context, then = std::move(then)] {
            if (context.commands) {
                auto& store = context.commands->store;
                if (!store.lastLoad() && !store.error())
                    store.load();
            }
            then();
        });
}

} // namespace tessarine
