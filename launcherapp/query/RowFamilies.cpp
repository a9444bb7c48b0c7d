#include "launcherapp/query/RowFamilies.h"

namespace tessarine {

bool RowFamilies::serves(BuiltinKeyword keyword) const {
    const auto isThere = [](const auto& family) { return static_cast<bool>(family); };
    switch (keyword) {
    case BuiltinKeyword::clipboard:
        return isThere(clipboard);
    case BuiltinKeyword::clearClipboard:
        return isThere(clearClipboard);
    case BuiltinKeyword::tabs:
        return isThere(tabs);
    case BuiltinKeyword::define:
        return isThere(lookUp);
    case BuiltinKeyword::people:
        return isThere(people);
    case BuiltinKeyword::agenda:
        return isThere(agenda);
    case BuiltinKeyword::calcHistory:
        return isThere(calcHistory);
    case BuiltinKeyword::snippets:
        return isThere(snippets);
    case BuiltinKeyword::farsillDevices:
        return isThere(farsillDevices);
    case BuiltinKeyword::drives:
        return isThere(drives);
    case BuiltinKeyword::chromeProfiles:
        return isThere(chromeProfiles);
    case BuiltinKeyword::slack:
        return isThere(slack);
    case BuiltinKeyword::laneryGroups:
        return isThere(laneryGroups);
    case BuiltinKeyword::quit:
    case BuiltinKeyword::forceQuit:
    case BuiltinKeyword::windowLeft:
    case BuiltinKeyword::windowRight:
    case BuiltinKeyword::windowTop:
    case BuiltinKeyword::windowBottom:
    case BuiltinKeyword::windowMax:
    case BuiltinKeyword::windowCenter:
    case BuiltinKeyword::windowDisplay:
        return isThere(windows);
    }
    return false;
}

} // namespace tessarine
