#include "launcherapp/platform/linux/X11WindowList.h"

#include "tests/linux/EventLoop.h"

#include <gmock/gmock.h>
#include <xcb/xcb.h>
#include <xcb/xcb_ewmh.h>
#include <xcb/xcb_icccm.h>

#include <algorithm>

namespace tessarine {
namespace {

/// Another program with windows on the same display.
class Client {
public:
    Client() : connection(xcb_connect(nullptr, nullptr)) {
        xcb_ewmh_init_atoms_replies(&ewmh, xcb_ewmh_init_atoms(connection, &ewmh), nullptr);
    }

    ~Client() {
        xcb_ewmh_connection_wipe(&ewmh);
        xcb_disconnect(connection);
    }

    Client(const Client&) = delete;
    Client& operator=(const Client&) = delete;

    /// A mapped window of class "name\0Class"; without a process id unless one is given.
    xcb_window_t open(const std::string& name,
                      const std::string& className,
                      std::uint32_t process = 0,
                      std::function<void(xcb_window_t)> prepare = {}) {
        const auto window = xcb_generate_id(connection);
        const auto* screen = xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
        xcb_create_window(connection,
                          XCB_COPY_FROM_PARENT,
                          window,
                          screen->root,
                          10,
                          10,
                          200,
                          100,
                          0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT,
                          screen->root_visual,
                          0,
                          nullptr);
        std::string both = name;
        both.push_back('\0');
        both += className;
        both.push_back('\0');
        xcb_icccm_set_wm_class(
            connection, window, static_cast<std::uint32_t>(both.size()), both.data());
        if (process)
            xcb_ewmh_set_wm_pid(&ewmh, window, process);
        if (prepare)
            prepare(window);
        xcb_map_window(connection, window);
        xcb_flush(connection);
        return window;
    }

    xcb_atom_t atom(const std::string& name) {
        auto* reply = xcb_intern_atom_reply(
            connection,
            xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.data()),
            nullptr);
        const auto result = reply->atom;
        free(reply);
        return result;
    }

    void setText(xcb_window_t window, const std::string& property, const std::string& value) {
        xcb_change_property(connection,
                            XCB_PROP_MODE_REPLACE,
                            window,
                            atom(property),
                            XCB_ATOM_STRING,
                            8,
                            static_cast<std::uint32_t>(value.size()),
                            value.data());
    }

    void iconify(xcb_window_t window) {
        xcb_client_message_event_t event{};
        event.response_type = XCB_CLIENT_MESSAGE;
        event.format = 32;
        event.window = window;
        event.type = atom("WM_CHANGE_STATE");
        event.data.data32[0] = XCB_ICCCM_WM_STATE_ICONIC;
        const auto* screen = xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
        xcb_send_event(connection,
                       0,
                       screen->root,
                       XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                       reinterpret_cast<const char*>(&event));
        xcb_flush(connection);
    }

    xcb_connection_t* connection;
    xcb_ewmh_connection_t ewmh{};
};

class X11WindowListTest : public testing::Test {
protected:
    std::optional<AppWindow> find(std::uint64_t id) {
        const auto all = windows.windows();
        const auto found = std::ranges::find(all, id, &AppWindow::id);
        return found == all.end() ? std::nullopt : std::optional(*found);
    }

    bool appears(std::uint64_t id) {
        return spinUntil([&] { return find(id).has_value(); });
    }

    bool isActive(std::uint64_t id) {
        return spinUntil([&] {
            const auto active = windows.active();
            return active && active->id == id;
        });
    }

    Client client;
    X11WindowList windows;
};

TEST_F(X11WindowListTest, tellsWhatWindowsSayOfThemselves) {
    ASSERT_EQ(windows.ability(), Ability{});
    const auto own = static_cast<std::uint32_t>(::getpid());
    const auto first = client.open("first", "First", own);
    ASSERT_TRUE(appears(first));
    const auto second = client.open("second", "Second", 0, [&](xcb_window_t window) {
        client.setText(window, "_GTK_APPLICATION_ID", "org.example.Second");
        xcb_ewmh_set_wm_window_type(
            &client.ewmh, window, 1, &client.ewmh._NET_WM_WINDOW_TYPE_UTILITY);
    });
    const auto third = client.open("third", "Third", 0, [&](xcb_window_t window) {
        client.setText(window,
                       "_KDE_NET_WM_DESKTOP_FILE",
                       "/usr/share/applications/org.example.Third.desktop");
    });
    ASSERT_TRUE(appears(second));
    ASSERT_TRUE(appears(third));

    const auto described = *find(first);
    EXPECT_EQ(described.instanceName, "first");
    EXPECT_EQ(described.className, "First");
    EXPECT_EQ(described.processID, own);
    EXPECT_EQ(described.executable, std::filesystem::read_symlink("/proc/self/exe"));
    EXPECT_TRUE(described.ordinary);
    EXPECT_FALSE(described.hidden);

    EXPECT_EQ(find(second)->applicationID, "org.example.Second");
    EXPECT_FALSE(find(second)->ordinary);
    // The display itself knows the process of a window that doesn't tell.
    EXPECT_EQ(find(second)->processID, own);
    EXPECT_EQ(find(third)->applicationID, "org.example.Third");

    std::vector<std::uint64_t> order;
    for (const auto& window : windows.windows())
        order.push_back(window.id);
    const auto at = [&](std::uint64_t id) { return std::ranges::find(order, id); };
    EXPECT_LT(at(first), at(second));
    EXPECT_LT(at(second), at(third));
}

TEST_F(X11WindowListTest, bringsWindowsForwardAndBack) {
    int changes = 0;
    const auto subscription = windows.onActiveChanged([&] { ++changes; });
    const auto first = client.open("one", "One");
    ASSERT_TRUE(appears(first));
    windows.activate(first);
    ASSERT_TRUE(isActive(first));
    const auto second = client.open("two", "Two");
    ASSERT_TRUE(appears(second));
    windows.activate(second);
    ASSERT_TRUE(isActive(second));
    EXPECT_TRUE(spinUntil([&] { return changes >= 2; }));

    client.iconify(first);
    ASSERT_TRUE(spinUntil([&] { return find(first)->hidden; }));
    EXPECT_TRUE(isActive(second));
    windows.unhide(first);
    EXPECT_TRUE(spinUntil([&] { return !find(first)->hidden; }));
    windows.activate(first);
    EXPECT_TRUE(isActive(first));

    windows.activate(12345); // no such window
    windows.unhide(12345);
    EXPECT_TRUE(isActive(first));
}

TEST(X11WindowListWithoutDisplay, saysWhy) {
    const std::string display = ::getenv("DISPLAY");
    ::setenv("DISPLAY", ":987", 1);
    const X11WindowList windows;
    ::setenv("DISPLAY", display.c_str(), 1);
    EXPECT_EQ(windows.ability(), Ability::missing("the X11 display can't be reached"));
    EXPECT_TRUE(windows.windows().empty());
    EXPECT_FALSE(windows.active());
}

} // namespace
} // namespace tessarine
