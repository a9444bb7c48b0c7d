#include "launcherapp/platform/linux/pasteboard/wayland/ClipboardClaim.h"

#include "launcherapp/platform/linux/pasteboard/OfferedTypes.h"
#include "launcherapp/platform/linux/pasteboard/wayland/DataControl.h"

#include <algorithm>
#include <utility>

namespace tessarine {

ClipboardClaim ClipboardClaim::of(WriteRequest request, DataControl& control) {
    if (request.content.isSecret)
        request.content.items.push_back(secretMark());
    ClipboardClaim claim{.content = std::move(request)};
    claim.isCancelled = !control.hasSeat();
    if (claim.isCancelled)
        return claim;
    claim.source = control.put(claim.offer().types);
    claim.question = control.confirm();
    return claim;
}

const PasteboardContent::Item* ClipboardClaim::item(const std::string& type) const {
    const auto& items = content.content.items;
    const auto found = std::ranges::find(items, type, &PasteboardContent::Item::type);
    return found == items.end() ? nullptr : &*found;
}

PasteboardOffer ClipboardClaim::offer() const {
    PasteboardOffer offer{.count = content.count};
    for (const auto& item : content.content.items)
        offer.types.push_back(item.type);
    return offer;
}

} // namespace tessarine
