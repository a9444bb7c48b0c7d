#include "launcherapp/platform/linux/x11/X11Connection.h"

#include <xcb/xcb.h>

namespace tessarine {

namespace {

/// Longest property that is read, in units of four bytes: a window list of thousands fits.
constexpr std::uint32_t longestProperty = 16384;

} // namespace

X11Connection::X11Connection() : connection_(xcb_connect(nullptr, &screenNumber_)) {
    if (!answers())
        return;
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection_));
    for (int i = 0; i < screenNumber_ && screens.rem > 1; ++i)
        xcb_screen_next(&screens);
    root_ = screens.data->root;
}

X11Connection::~X11Connection() {
    xcb_disconnect(connection_);
}

bool X11Connection::answers() const {
    return xcb_connection_has_error(connection_) == 0;
}

X11Connection::Atom X11Connection::atom(std::string_view name) const {
    if (const auto known = atoms_.find(name); known != atoms_.end())
        return known->second;
    if (!answers())
        return XCB_ATOM_NONE;
    const auto cookie =
        xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(name.size()), name.data());
    const XcbOwned<xcb_intern_atom_reply_t> reply(
        xcb_intern_atom_reply(connection_, cookie, nullptr));
    const Atom atom = reply ? reply->atom : Atom{XCB_ATOM_NONE};
    atoms_.emplace(name, atom);
    return atom;
}

std::vector<std::vector<std::uint32_t>>
X11Connection::numbers(const std::vector<Property>& properties) const {
    std::vector<std::vector<std::uint32_t>> result(properties.size());
    if (!answers())
        return result;
    std::vector<xcb_get_property_cookie_t> cookies;
    cookies.reserve(properties.size());
    for (const auto& [window, name] : properties)
        cookies.push_back(
            xcb_get_property(connection_, 0, window, name, XCB_ATOM_ANY, 0, longestProperty));
    for (std::size_t i = 0; i < properties.size(); ++i) {
        const XcbOwned<xcb_get_property_reply_t> reply(
            xcb_get_property_reply(connection_, cookies[i], nullptr));
        if (!reply || reply->format != 32)
            continue;
        const auto* first = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
        result[i].assign(first, first + xcb_get_property_value_length(reply.get()) / 4);
    }
    return result;
}

std::string X11Connection::text(const Property& property) const {
    if (!answers())
        return {};
    const auto cookie = xcb_get_property(
        connection_, 0, property.window, property.name, XCB_ATOM_ANY, 0, longestProperty);
    const XcbOwned<xcb_get_property_reply_t> reply(
        xcb_get_property_reply(connection_, cookie, nullptr));
    if (!reply || reply->format != 8)
        return {};
    const std::string_view whole(
        static_cast<const char*>(xcb_get_property_value(reply.get())),
        static_cast<std::size_t>(xcb_get_property_value_length(reply.get())));
    return std::string(whole.substr(0, whole.find('\0')));
}

} // namespace tessarine
