#pragma once

#include "launcherapp/platform/ProcessLauncher.h"

#include <string>
#include <vector>

namespace tessarine {

struct Environment;

/// Starts programs, looks out for their end in Qt's event loop, and hands each to systemd's user
/// manager, where one answers, as a scope of its own. Main thread only.
class QtProcessLauncher : public ProcessLauncher {
public:
    explicit QtProcessLauncher(const Environment& environment);

    std::int64_t startDetached(const ProcessSpec& spec) override;
    std::optional<std::string> executable(std::string_view program) const override;

private:
    std::string home_;
};

} // namespace tessarine
