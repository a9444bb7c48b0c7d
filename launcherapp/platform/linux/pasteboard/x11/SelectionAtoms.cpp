#include "launcherapp/platform/linux/pasteboard/x11/SelectionAtoms.h"

#include "launcherapp/platform/linux/XcbOwned.h"
#include "launcherapp/platform/linux/pasteboard/OfferedTypes.h"
#include "launcherapp/platform/linux/x11/X11Connection.h"

#include <xcb/xcb.h>

#include <cstring>
#include <set>
#include <string_view>

namespace tessarine {

SelectionAtoms::SelectionAtoms(const X11Connection& display)
    : clipboard(display.atom("CLIPBOARD")), targets(display.atom("TARGETS")),
      multiple(display.atom("MULTIPLE")), timestamp(display.atom("TIMESTAMP")),
      saveTargets(display.atom("SAVE_TARGETS")), remove(display.atom("DELETE")),
      increments(display.atom("INCR")), atomPairs(display.atom("ATOM_PAIR")),
      passwordManagerHint(display.atom(passwordManagerHintName)),
      transfer(display.atom("TESSARINE_TRANSFER")), moment(display.atom("TESSARINE_MOMENT")) {}

// However many: one of the last may be the one that marks a secret.
std::vector<SelectionAtoms::Atom> offeredTypes(std::span<const char> property,
                                               const SelectionAtoms& atoms) {
    std::set<SelectionAtoms::Atom> seen{XCB_ATOM_NONE,
                                        atoms.targets,
                                        atoms.multiple,
                                        atoms.timestamp,
                                        atoms.saveTargets,
                                        atoms.remove};
    std::vector<SelectionAtoms::Atom> types;
    SelectionAtoms::Atom atom = XCB_ATOM_NONE;
    for (; property.size() >= sizeof atom; property = property.subspan(sizeof atom)) {
        std::memcpy(&atom, property.data(), sizeof atom);
        if (seen.insert(atom).second)
            types.push_back(atom);
    }
    return types;
}

std::vector<std::string> atomNames(const X11Connection& display,
                                   std::span<const SelectionAtoms::Atom> atoms) {
    std::vector<xcb_get_atom_name_cookie_t> cookies;
    cookies.reserve(atoms.size());
    for (const auto atom : atoms)
        cookies.push_back(xcb_get_atom_name(display.xcb(), atom));
    std::vector<std::string> names;
    for (const auto cookie : cookies) {
        const XcbOwned<xcb_get_atom_name_reply_t> reply(
            xcb_get_atom_name_reply(display.xcb(), cookie, nullptr));
        if (!reply)
            continue;
        const std::string_view name(
            xcb_get_atom_name_name(reply.get()),
            static_cast<std::size_t>(xcb_get_atom_name_name_length(reply.get())));
        if (isTypeName(name))
            names.emplace_back(name);
    }
    return names;
}

} // namespace tessarine
