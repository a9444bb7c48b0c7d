#include "launcherapp/clipboard/ClipTakeOver.h"

#include <algorithm>
#include <string_view>

namespace tessarine {

namespace {

/// GNOME's compositor owns the clipboard by one window for all programs of Wayland, and doesn't
/// tell there when one ends. What it keeps itself it offers in a single type, a text by this second
/// name too; hardly a program offers so little.
bool isKeptByTheDisplay(const std::vector<std::string>& types) {
    const auto has = [&](std::string_view type) { return std::ranges::count(types, type) > 0; };
    return types.size() == 1 ||
           (types.size() == 2 && has("text/plain;charset=utf-8") && has("UTF8_STRING"));
}

} // namespace

bool ClipTakeOver::isOne(const PasteboardOffer& offer) {
    const auto& succession = offer.succession;
    if (!succession || offer.types.empty())
        return false;
    return succession->isSameOwner ? isKeptByTheDisplay(offer.types)
                                   : succession->pause < longestPause;
}

std::optional<ClipSkip> ClipTakeOver::skipped(const PasteboardOffer& offer,
                                              const std::optional<JudgedCopy>& before) {
    if (!isOne(offer))
        return std::nullopt;
    const auto& its = *offer.succession;
    const bool isJudged = before && before->count >= its.first && before->count <= its.last;
    if (isJudged ? !before->skipped.has_value() : its.isSameOwner)
        return std::nullopt;
    return ClipSkip{
        .reason = isJudged ? *before->skipped : ClipSkip::Reason::concealed,
        .line = isJudged
                    ? "clipboard: skipped what took over from a skipped copy, without reading it"
                    : "clipboard: skipped what took over from a copy that was gone before it could "
                      "be judged, without reading it"};
}

} // namespace tessarine
