#include "launcherapp/platform/linux/desktop/X11WindowList.h"

#include "tests/linux/BareDisplay.h"
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

    /// How many windows the window manager lists, those included that are already gone.
    std::uint32_t managedWindows() {
        xcb_ewmh_get_windows_reply_t list{};
        if (!xcb_ewmh_get_client_list_reply(
                &ewmh, xcb_ewmh_get_client_list(&ewmh, 0), &list, nullptr))
            return 0;
        const auto count = list.windows_len;
        xcb_ewmh_get_windows_reply_wipe(&list);
        return count;
    }

    Client(const Client&) = delete;
    Client& operator=(const Client&) = delete;

    /// A mapped window of class "name\0Class"; without a process id unless one is given.
    xcb_window_t open(const std::string& name,
                      const std::string& className,
                      std::uint32_t process = 0,
                      std::function<void(xcb_window_t)> prepare = {}) {
        const auto window = xcb_generate_id(connection);
        const auto* screen = this->screen();
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

    const xcb_screen_t* screen() const {
        return xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
    }

    /// Until the server has done all that was asked.
    void finish() {
        free(xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
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
        xcb_send_event(connection,
                       0,
                       screen()->root,
                       XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                       reinterpret_cast<const char*>(&event));
        xcb_flush(connection);
    }

    xcb_connection_t* connection;
    xcb_ewmh_connection_t ewmh{};
};

class X11WindowListTest : public testing::Test {
protected:
    /// The display gives the numbers of a client that has gone to the next one, whose windows the
    /// window manager must not mistake for those it still knows.
    void SetUp() override {
        ASSERT_TRUE(spinUntil([&] { return client.managedWindows() == 0; }));
    }

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
    // In a sandbox programs count their processes anew; the display knows better.
    const auto boxed = client.open("boxed", "Boxed", 2);
    ASSERT_TRUE(appears(boxed));
    EXPECT_EQ(find(boxed)->processID, own);

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
    EXPECT_TRUE(spinUntil([&] { return changes > 0; }));
    changes = 0; // changes in quick succession may be told as one
    const auto second = client.open("two", "Two");
    ASSERT_TRUE(appears(second));
    windows.activate(second);
    ASSERT_TRUE(isActive(second));
    EXPECT_TRUE(spinUntil([&] { return changes > 0; }));

    client.iconify(first);
    ASSERT_TRUE(spinUntil([&] { return find(first)->hidden; }));
    EXPECT_TRUE(isActive(second));
    // A window manager may tell of the state a moment before it takes the window off the screen,
    // and until then there is nothing to put back.
    EXPECT_TRUE(spinUntil([&] {
        windows.unhide(first);
        return !find(first)->hidden;
    }));
    windows.activate(first);
    EXPECT_TRUE(isActive(first));

    windows.activate(12345); // no such window
    windows.unhide(12345);
    EXPECT_TRUE(isActive(first));
}

TEST_F(X11WindowListTest, tellsWhenWindowsComeAndGo) {
    int changes = 0;
    const auto subscription = windows.onListChanged([&] { ++changes; });
    const auto window = client.open("one", "One");
    EXPECT_TRUE(spinUntil([&] { return changes > 0 && find(window); }));
    changes = 0;
    xcb_destroy_window(client.connection, window);
    client.finish();
    EXPECT_TRUE(spinUntil([&] { return changes > 0 && !find(window); }));
}

TEST_F(X11WindowListTest, onlyWhatTaskBarsShowIsOrdinary) {
    const auto& ewmh = client.ewmh;

    const struct {
        const char* what;
        std::vector<xcb_atom_t> types;
        bool skipsTaskBar;
        bool ordinary;
    } cases[] = {
        {"says nothing", {}, false, true},
        {"normal", {ewmh._NET_WM_WINDOW_TYPE_NORMAL}, false, true},
        {"dialog", {ewmh._NET_WM_WINDOW_TYPE_DIALOG}, false, true},
        {"dock", {ewmh._NET_WM_WINDOW_TYPE_DOCK}, false, false},
        {"desktop", {ewmh._NET_WM_WINDOW_TYPE_DESKTOP}, false, false},
        {"splash", {ewmh._NET_WM_WINDOW_TYPE_SPLASH}, false, false},
        {"own type first", {client.atom("_X_OWN"), ewmh._NET_WM_WINDOW_TYPE_NORMAL}, false, true},
        {"own type alone", {client.atom("_X_OWN")}, false, true},
        {"skips the bar", {ewmh._NET_WM_WINDOW_TYPE_NORMAL}, true, false},
    };

    for (const auto& [what, types, skipsTaskBar, ordinary] : cases) {
        const auto window = client.open("w", "W", 0, [&, &t = types, skip = skipsTaskBar](auto id) {
            auto all = t;
            if (!all.empty())
                xcb_ewmh_set_wm_window_type(
                    &client.ewmh, id, static_cast<std::uint32_t>(all.size()), all.data());
            auto state = client.ewmh._NET_WM_STATE_SKIP_TASKBAR;
            if (skip)
                xcb_ewmh_set_wm_state(&client.ewmh, id, 1, &state);
        });
        ASSERT_TRUE(appears(window)) << what;
        EXPECT_EQ(find(window)->ordinary, ordinary) << what;
    }
}

TEST_F(X11WindowListTest, anEndedSubscriptionIsNotCalledAgain) {
    int calls = 0;
    int callsAfterEnd = 0;
    bool ended = false;
    Subscription second;
    const auto first = windows.onActiveChanged([&] {
        ++calls;
        ended = true;
        second.end(); // while both are about to be called
    });
    second = windows.onActiveChanged([&] { callsAfterEnd += ended ? 1 : 0; });
    const auto window = client.open("one", "One");
    ASSERT_TRUE(appears(window));
    windows.activate(window);
    EXPECT_TRUE(spinUntil([&] { return calls > 0; }));
    spinFor(20);
    EXPECT_EQ(callsAfterEnd, 0);
}

TEST(X11WindowListOnABareDisplay, tellsNoWindowsUntilAWindowManagerRuns) {
    const BareDisplay display;
    ASSERT_TRUE(display.answers);
    const X11WindowList windows;
    const auto unmanaged = Ability::missing("the window manager tells no windows");
    EXPECT_EQ(windows.ability(), unmanaged);
    EXPECT_FALSE(windows.active());

    Client manager;
    const auto window = manager.open("m", "M");
    xcb_window_t gone = window + 1; // what a window manager that has ended leaves behind
    xcb_ewmh_set_supporting_wm_check(&manager.ewmh, manager.screen()->root, gone);
    manager.finish();
    EXPECT_EQ(windows.ability(), unmanaged);
    xcb_ewmh_set_supporting_wm_check(&manager.ewmh, manager.screen()->root, window);
    manager.finish();
    EXPECT_EQ(windows.ability(), unmanaged); // some other program has the number by now
    xcb_ewmh_set_supporting_wm_check(&manager.ewmh, window, window);
    manager.finish();
    EXPECT_EQ(windows.ability(), Ability{});
}

TEST(X11WindowListOnABareDisplay, needsNoExtension) {
    const BareDisplay display({QStringLiteral("-extension"), QStringLiteral("X-Resource")});
    ASSERT_TRUE(display.answers);
    const X11WindowList windows;
    Client client;
    const auto own = static_cast<std::uint32_t>(::getpid());
    auto window = client.open("tells", "Tells", own);
    xcb_ewmh_set_active_window(&client.ewmh, 0, window);
    client.finish();
    ASSERT_TRUE(windows.active());
    EXPECT_EQ(windows.active()->processID, own);
    window = client.open("silent", "Silent");
    xcb_ewmh_set_active_window(&client.ewmh, 0, window);
    client.finish();
    ASSERT_TRUE(windows.active());
    EXPECT_EQ(windows.active()->processID, 0);
}

TEST(X11WindowListOnABareDisplay, survivesItsEnd) {
    BareDisplay display;
    ASSERT_TRUE(display.answers);
    X11WindowList windows;
    const auto subscription = windows.onActiveChanged([] {});
    display.stop();
    EXPECT_TRUE(spinUntil(
        [&] { return windows.ability() == Ability::missing("the X11 display was lost"); }));
    EXPECT_TRUE(windows.windows().empty());
    EXPECT_FALSE(windows.active());
    windows.activate(1);
    windows.unhide(1);
    spinFor(20);
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
