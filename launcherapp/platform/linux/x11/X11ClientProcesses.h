#pragma once

#include <cstdint>
#include <optional>

struct xcb_connection_t;

namespace tessarine {

/// Which process made a window, as the display itself knows it (X-Resource 1.2): programs in a
/// sandbox count their processes anew, so what their windows tell may be another process here.
/// Main thread only.
class X11ClientProcesses {
public:
    /// Asks whether the display can tell. The connection must outlive this.
    explicit X11ClientProcesses(xcb_connection_t* connection);

    /// A question whose answer is yet to come.
    struct Question {
        unsigned int request = 0;
    };

    /// Nothing on a display that can't tell.
    std::optional<Question> ask(std::uint32_t window) const;

    /// Waits for the answer; each question is answered once. 0 when the window is gone, its program
    /// is on another machine, or nothing was asked.
    std::int64_t answer(const std::optional<Question>& question) const;

private:
    xcb_connection_t* connection_;
    bool canTell_;
};

} // namespace tessarine
