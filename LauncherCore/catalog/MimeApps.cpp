#include "LauncherCore/catalog/MimeApps.h"

#include "LauncherCore/text/Folding.h"

#include <algorithm>
#include <utility>

namespace tessarine {

namespace {

constexpr std::string_view extension = ".desktop";

std::vector<std::string> idsOf(std::string_view value) {
    std::vector<std::string> ids;
    while (!value.empty()) {
        const auto end = std::min(value.find(';'), value.size());
        auto id = Folding::trimmed(value.substr(0, end));
        if (id.ends_with(extension))
            id.remove_suffix(extension.size());
        if (!id.empty())
            ids.emplace_back(id);
        value.remove_prefix(std::min(end + 1, value.size()));
    }
    return ids;
}

} // namespace

void MimeApps::add(std::string_view text) {
    Associations* group = nullptr;
    // An association that a better file removed stays removed, whatever this one adds.
    const auto removedBefore = removed_;
    while (!text.empty()) {
        const auto end = std::min(text.find('\n'), text.size());
        const auto line = Folding::trimmed(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
        if (line.starts_with('[')) {
            group = line == "[Default Applications]"   ? &defaults_
                    : line == "[Added Associations]"   ? &added_
                    : line == "[Removed Associations]" ? &removed_
                                                       : nullptr;
            continue;
        }
        const auto equals = line.find('=');
        if (!group || line.starts_with('#') || equals == std::string_view::npos)
            continue;
        const auto type = Folding::lowercase(Folding::trimmed(line.substr(0, equals)));
        auto& held = (*group)[type];
        for (auto& id : idsOf(line.substr(equals + 1))) {
            const auto gone = removedBefore.find(type);
            const bool isGone = group != &removed_ && gone != removedBefore.end() &&
                                std::ranges::count(gone->second, id) > 0;
            if (!isGone && std::ranges::count(held, id) == 0)
                held.push_back(std::move(id));
        }
    }
}

std::vector<std::string> MimeApps::preferred(std::string_view mimeType) const {
    std::vector<std::string> ids;
    for (const auto* group : {&defaults_, &added_}) {
        const auto found = group->find(mimeType);
        if (found != group->end())
            ids.insert(ids.end(), found->second.begin(), found->second.end());
    }
    return ids;
}

bool MimeApps::isRemoved(std::string_view mimeType, std::string_view bundleID) const {
    const auto found = removed_.find(mimeType);
    return found != removed_.end() && std::ranges::count(found->second, bundleID) > 0;
}

} // namespace tessarine
