#pragma once

#include "LauncherCore/clipboard/ClipGroupsJson.h"
#include "launcherapp/clipboard/groups/ClipGroupStore.h"
#include "tests/launcherapp/clipboard/ClipboardFixture.h"

#include <string>
#include <vector>

namespace tessarine {

/// The taught groups over a disk in memory.
struct ClipGroupsFixture : ClipboardFixture {
    static constexpr auto groupsPath = "/support/clip-groups.json";

    ClipGroupStore groups{{.queue = services.platform.queue,
                           .work = services.platform.work,
                           .files = files,
                           .prefs = services.prefs,
                           .diagnostics = services.diagnostics,
                           .runtime = runtime},
                          groupsPath};

    std::string text() const { return files.read(groupsPath, 1 << 20).value_or(""); }

    std::vector<std::string> names() const {
        std::vector<std::string> names;
        for (const auto& group : runtime.current()->groups)
            names.push_back(group.name);
        return names;
    }

    static std::string fileWith(const std::string& name) {
        return ClipGroupsJson::encoded({.groups = {group(name)}});
    }

    static ClipGroup group(const std::string& name) {
        return {.name = name, .symbol = "tag", .match = {.contains = "invoice"}};
    }
};

} // namespace tessarine
