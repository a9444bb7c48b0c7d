#pragma once

#include "launcherapp/platform/ProcessLauncher.h"

#include <set>

namespace tessarine {

/// Notes what was started. A program exists when `programs` holds its path, or its bare name: it is
/// then in /usr/bin.
class FakeProcessLauncher : public ProcessLauncher {
public:
    std::int64_t startDetached(const ProcessSpec& spec) override {
        if (!executable(spec.arguments.at(0)))
            throw ProcessError(spec.arguments[0] + " could not be started: it is not there");
        started.push_back(spec);
        return 1000 + static_cast<std::int64_t>(started.size());
    }

    std::optional<std::string> executable(std::string_view program) const override {
        static constexpr std::string_view folder = "/usr/bin/";
        if (programs.contains(std::string(program)))
            return program.starts_with('/') ? std::string(program)
                                            : std::string(folder).append(program);
        if (program.starts_with(folder) &&
            programs.contains(std::string(program.substr(folder.size()))))
            return std::string(program);
        return std::nullopt;
    }

    std::set<std::string> programs;
    std::vector<ProcessSpec> started;
};

} // namespace tessarine
