#pragma once

#include "launcherapp/platform/ProcessLauncher.h"

#include <set>

namespace tessarine {

/// Notes what was started. A program exists when it is in `programs`, by path or by bare name.
class FakeProcessLauncher : public ProcessLauncher {
public:
    std::int64_t startDetached(const ProcessSpec& spec) override {
        if (!executable(spec.arguments.at(0)))
            throw ProcessError(spec.arguments[0] + " could not be started: it is not there");
        started.push_back(spec);
        return 1000 + static_cast<std::int64_t>(started.size());
    }

    std::optional<std::string> executable(std::string_view program) const override {
        const std::string name(program);
        if (programs.contains(name))
            return name.starts_with('/') ? name : "/usr/bin/" + name;
        return std::nullopt;
    }

    std::set<std::string> programs;
    std::vector<ProcessSpec> started;
};

} // namespace tessarine
