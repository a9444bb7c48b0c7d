#pragma once

#include <xcb/xcb.h>

namespace tessarine {

/// What the display says of an extension; null where it lacks it. Anything else that is asked of
/// an extension which isn't there closes the connection. Waits for the display the first time.
inline const xcb_query_extension_reply_t* x11Extension(xcb_connection_t* connection,
                                                       xcb_extension_t& extension) {
    const auto* told = xcb_get_extension_data(connection, &extension);
    return told && told->present ? told : nullptr;
}

} // namespace tessarine
