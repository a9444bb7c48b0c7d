#include "launcherapp/platform/linux/pasteboard/OfferedTypes.h"

#include <algorithm>
#include <memory>
#include <string>

namespace tessarine {

namespace {

constexpr std::size_t longestName = 255;

} // namespace

PasteboardContent::Item secretMark() {
    return {.type = std::string(passwordManagerHintName),
            .bytes = std::make_shared<const std::string>("secret")};
}

bool isTypeName(std::string_view name) {
    return !name.empty() && name.size() <= longestName &&
           std::ranges::all_of(name, [](char c) { return c >= ' ' && c <= '~'; });
}

} // namespace tessarine
