#include "launcherapp/platform/linux/x11/X11ClientProcesses.h"

#include "launcherapp/platform/linux/XcbOwned.h"
#include "launcherapp/platform/linux/x11/X11Extension.h"

#include <xcb/res.h>
#include <xcb/xcb.h>

#include <utility>

namespace tessarine {

namespace {

bool tellsClients(xcb_connection_t* connection) {
    if (!x11Extension(connection, xcb_res_id))
        return false;
    const auto cookie = xcb_res_query_version(connection, 1, 2);
    const XcbOwned<xcb_res_query_version_reply_t> version(
        xcb_res_query_version_reply(connection, cookie, nullptr));
    return version && std::pair(version->server_major, version->server_minor) >=
                          std::pair<std::uint16_t, std::uint16_t>(1, 2);
}

} // namespace

X11ClientProcesses::X11ClientProcesses(xcb_connection_t* connection)
    : connection_(connection), canTell_(tellsClients(connection)) {}

std::optional<X11ClientProcesses::Question> X11ClientProcesses::ask(std::uint32_t window) const {
    if (!canTell_)
        return std::nullopt;
    const xcb_res_client_id_spec_t client{window, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
    return Question{xcb_res_query_client_ids(connection_, 1, &client).sequence};
}

std::int64_t X11ClientProcesses::answer(const std::optional<Question>& question) const {
    if (!question)
        return 0;
    const XcbOwned<xcb_res_query_client_ids_reply_t> answer(
        xcb_res_query_client_ids_reply(connection_, {question->request}, nullptr));
    if (!answer)
        return 0;
    for (auto it = xcb_res_query_client_ids_ids_iterator(answer.get()); it.rem > 0;
         xcb_res_client_id_value_next(&it)) {
        if (xcb_res_client_id_value_value_length(it.data) > 0)
            return *xcb_res_client_id_value_value(it.data);
    }
    return 0;
}

} // namespace tessarine
