#include "launcherapp/platform/linux/desktop/X11WindowList.h"

#include "launcherapp/platform/Observers.h"
#include "launcherapp/platform/linux/XcbOwned.h"
#include "launcherapp/platform/linux/processes/ProcessFacts.h"
#include "launcherapp/platform/linux/x11/X11ClientProcesses.h"

#include <xcb/xcb.h>
#include <xcb/xcb_ewmh.h>

#include <QMetaObject>
#include <QObject>
#include <QSocketNotifier>
#include <algorithm>
#include <array>
#include <map>
#include <set>
#include <string_view>
#include <unistd.h>
#include <utility>

namespace tessarine {

namespace {

/// Longest property that is read, in units of four bytes: a window list of thousands fits.
constexpr std::uint32_t longestProperty = 16384;

using Property = XcbOwned<xcb_get_property_reply_t>;

std::string_view textOf(const Property& property) {
    if (!property || property->format != 8)
        return {};
    return {static_cast<const char*>(xcb_get_property_value(property.get())),
            static_cast<std::size_t>(xcb_get_property_value_length(property.get()))};
}

std::vector<std::uint32_t> numbersOf(const Property& property) {
    if (!property || property->format != 32)
        return {};
    const auto* first = static_cast<const std::uint32_t*>(xcb_get_property_value(property.get()));
    return {first, first + xcb_get_property_value_length(property.get()) / 4};
}

/// Up to the first NUL, which some programs put at the end of a text.
std::string upToNul(std::string_view text) {
    return std::string(text.substr(0, text.find('\0')));
}

/// A desktop-file id from a hint that may be a whole path with its ending.
std::string asApplicationID(std::string_view hint) {
    auto name = upToNul(hint);
    name.erase(0, name.rfind('/') + 1);
    if (name.ends_with(".desktop"))
        name.resize(name.size() - std::string_view(".desktop").size());
    return name;
}

} // namespace

/// The connection and what is asked over it.
class X11WindowList::Display {
public:
    Display() : connection_(xcb_connect(nullptr, &screenNumber_)) {
        if (xcb_connection_has_error(connection_)) {
            problem_ = "the X11 display can't be reached";
            return;
        }
        auto* cookies = xcb_ewmh_init_atoms(connection_, &ewmh_);
        if (!xcb_ewmh_init_atoms_replies(&ewmh_, cookies, nullptr)) {
            problem_ = "the X11 display knows no window hints";
            return;
        }
        hasAtoms_ = true;
        root_ = ewmh_.screens[screenNumber_]->root;
        gtkApplicationID_ = atom("_GTK_APPLICATION_ID");
        kdeDesktopFile_ = atom("_KDE_NET_WM_DESKTOP_FILE");
        listen();
    }

    ~Display() {
        notifier_.reset();
        if (hasAtoms_)
            xcb_ewmh_connection_wipe(&ewmh_);
        xcb_disconnect(connection_);
    }

    Display(const Display&) = delete;
    Display& operator=(const Display&) = delete;

    bool answers() { return problem_.empty() && !xcb_connection_has_error(connection_); }

    Ability ability() {
        if (!problem_.empty())
            return Ability::missing(problem_);
        if (xcb_connection_has_error(connection_))
            return Ability::missing("the X11 display was lost");
        const auto supporting = supportingWindow(root_);
        // One that has ended leaves the root's property behind; its window is gone or another's.
        const bool lives = supporting && supportingWindow(*supporting) == supporting;
        takeQueuedEvents();
        if (!lives)
            return Ability::missing("the window manager tells no windows");
        return {};
    }

    std::vector<std::uint32_t> rootWindows(xcb_atom_t property) {
        if (!answers())
            return {};
        auto windows = numbersOf(reply(ask(root_, property, XCB_ATOM_WINDOW)));
        takeQueuedEvents();
        return windows;
    }

    std::vector<xcb_window_t> clientList() { return rootWindows(ewmh_._NET_CLIENT_LIST); }

    std::optional<xcb_window_t> activeWindow() {
        const auto windows = rootWindows(ewmh_._NET_ACTIVE_WINDOW);
        if (windows.empty() || windows.front() == XCB_WINDOW_NONE)
            return std::nullopt;
        return windows.front();
    }

    /// Mostly it is still the one of the last time: that one is asked about before it is known,
    /// which saves waiting for the display once more.
    std::optional<AppWindow> active() {
        if (!answers())
            return std::nullopt;
        const auto cookie = ask(root_, ewmh_._NET_ACTIVE_WINDOW, XCB_ATOM_WINDOW);
        const auto guessed = lastActive_;
        const auto early = guessed ? std::optional(askAbout(*guessed)) : std::nullopt;
        const auto windows = numbersOf(reply(cookie));
        auto described = early ? answer(*guessed, *early) : std::nullopt;
        takeQueuedEvents();
        lastActive_ = windows.empty() || windows.front() == XCB_WINDOW_NONE
                          ? std::nullopt
                          : std::optional(windows.front());
        if (!lastActive_ || lastActive_ == guessed)
            return lastActive_ ? described : std::nullopt;
        auto others = describe({*lastActive_});
        return others.empty() ? std::nullopt : std::optional(std::move(others.front()));
    }

    /// All questions about all windows are asked before the first answer is waited for.
    std::vector<AppWindow> describe(const std::vector<xcb_window_t>& windows) {
        std::vector<Questions> questions;
        questions.reserve(windows.size());
        for (const auto window : windows)
            questions.push_back(askAbout(window));
        std::vector<AppWindow> result;
        for (std::size_t i = 0; i < windows.size(); ++i) {
            if (auto window = answer(windows[i], questions[i]))
                result.push_back(*std::move(window));
        }
        takeQueuedEvents();
        return result;
    }

    void map(xcb_window_t window) {
        if (!answers())
            return;
        xcb_map_window(connection_, window);
        xcb_flush(connection_);
    }

    void activate(xcb_window_t window) {
        if (!answers())
            return;
        // A pager's request: window managers grant it whoever has the user's attention.
        xcb_ewmh_request_change_active_window(&ewmh_,
                                              screenNumber_,
                                              window,
                                              XCB_EWMH_CLIENT_SOURCE_TYPE_OTHER,
                                              XCB_CURRENT_TIME,
                                              activeWindow().value_or(XCB_WINDOW_NONE));
        xcb_flush(connection_);
    }

    Observers<> activeObservers;
    Observers<> listObservers;

private:
    /// What is asked about one window.
    struct Questions {
        xcb_get_property_cookie_t className;
        xcb_get_property_cookie_t process;
        xcb_get_property_cookie_t type;
        xcb_get_property_cookie_t state;
        xcb_get_property_cookie_t gtkID;
        xcb_get_property_cookie_t kdeFile;
        std::optional<X11ClientProcesses::Question> client;
    };

    xcb_atom_t atom(std::string_view name) {
        const auto cookie =
            xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(name.size()), name.data());
        const XcbOwned<xcb_intern_atom_reply_t> answer(
            xcb_intern_atom_reply(connection_, cookie, nullptr));
        return answer ? answer->atom : xcb_atom_t{XCB_ATOM_NONE};
    }

    xcb_get_property_cookie_t ask(xcb_window_t window, xcb_atom_t property, xcb_atom_t type) {
        return xcb_get_property(connection_, 0, window, property, type, 0, longestProperty);
    }

    Property reply(xcb_get_property_cookie_t cookie) {
        return Property(xcb_get_property_reply(connection_, cookie, nullptr));
    }

    std::optional<xcb_window_t> supportingWindow(xcb_window_t window) {
        const auto numbers =
            numbersOf(reply(ask(window, ewmh_._NET_SUPPORTING_WM_CHECK, XCB_ATOM_WINDOW)));
        return numbers.empty() ? std::nullopt : std::optional(numbers.front());
    }

    Questions askAbout(xcb_window_t window) {
        return {.className = ask(window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING),
                .process = ask(window, ewmh_._NET_WM_PID, XCB_ATOM_CARDINAL),
                .type = ask(window, ewmh_._NET_WM_WINDOW_TYPE, XCB_ATOM_ATOM),
                .state = ask(window, ewmh_._NET_WM_STATE, XCB_ATOM_ATOM),
                .gtkID = ask(window, gtkApplicationID_, XCB_ATOM_ANY),
                .kdeFile = ask(window, kdeDesktopFile_, XCB_ATOM_ANY),
                .client = clients_.ask(window)};
    }

    /// Nothing when the window has gone meanwhile: every answer is then an error.
    std::optional<AppWindow> answer(xcb_window_t id, const Questions& questions) {
        const auto className = reply(questions.className);
        const auto told = numbersOf(reply(questions.process));
        const auto types = numbersOf(reply(questions.type));
        const auto states = numbersOf(reply(questions.state));
        const auto gtkID = reply(questions.gtkID);
        const auto kdeFile = reply(questions.kdeFile);
        auto process = clients_.answer(questions.client);
        // Programs in a sandbox count their processes anew, so what they tell comes second.
        if (process == 0 && !told.empty())
            process = told.front();
        if (!className)
            return std::nullopt;

        AppWindow window{.id = id, .processID = process};
        const auto classText = textOf(className);
        window.instanceName = upToNul(classText);
        if (const auto end = classText.find('\0'); end != std::string_view::npos)
            window.className = upToNul(classText.substr(end + 1));
        window.ordinary = isOrdinary(types, states);
        window.hidden = std::ranges::count(states, ewmh_._NET_WM_STATE_HIDDEN) > 0;
        window.applicationID = asApplicationID(textOf(kdeFile));
        if (window.applicationID.empty())
            window.applicationID = asApplicationID(textOf(gtkID));
        if (window.processID != 0) {
            window.own = window.processID == ::getpid();
            window.executable = ProcessFacts::executable(window.processID);
            if (window.applicationID.empty())
                window.applicationID = ProcessFacts::applicationID(window.processID);
        }
        return window;
    }

    bool isOrdinary(const std::vector<std::uint32_t>& types,
                    const std::vector<std::uint32_t>& states) {
        if (std::ranges::count(states, ewmh_._NET_WM_STATE_SKIP_TASKBAR) > 0)
            return false;
        // Of several types the first that is known counts; a window without one is ordinary.
        const std::array ordinary{ewmh_._NET_WM_WINDOW_TYPE_NORMAL,
                                  ewmh_._NET_WM_WINDOW_TYPE_DIALOG};
        const std::array others{ewmh_._NET_WM_WINDOW_TYPE_DESKTOP,
                                ewmh_._NET_WM_WINDOW_TYPE_DOCK,
                                ewmh_._NET_WM_WINDOW_TYPE_TOOLBAR,
                                ewmh_._NET_WM_WINDOW_TYPE_MENU,
                                ewmh_._NET_WM_WINDOW_TYPE_UTILITY,
                                ewmh_._NET_WM_WINDOW_TYPE_SPLASH,
                                ewmh_._NET_WM_WINDOW_TYPE_DROPDOWN_MENU,
                                ewmh_._NET_WM_WINDOW_TYPE_POPUP_MENU,
                                ewmh_._NET_WM_WINDOW_TYPE_TOOLTIP,
                                ewmh_._NET_WM_WINDOW_TYPE_NOTIFICATION,
                                ewmh_._NET_WM_WINDOW_TYPE_COMBO,
                                ewmh_._NET_WM_WINDOW_TYPE_DND};
        for (const auto type : types) {
            if (std::ranges::count(ordinary, type) > 0)
                return true;
            if (std::ranges::count(others, type) > 0)
                return false;
        }
        return true;
    }

    void listen() {
        const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
        xcb_change_window_attributes(connection_, root_, XCB_CW_EVENT_MASK, &events);
        xcb_flush(connection_);
        notifier_ = std::make_unique<QSocketNotifier>(xcb_get_file_descriptor(connection_),
                                                      QSocketNotifier::Read);
        QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(), [this] {
            readEvents();
        });
    }

    void readEvents() {
        while (const XcbOwned<xcb_generic_event_t> event{xcb_poll_for_event(connection_)})
            note(*event);
        if (xcb_connection_has_error(connection_))
            notifier_->setEnabled(false); // a closed socket would wake the loop for ever
        tellObservers();
    }

    /// Takes the events that came in while an answer was waited for: they are off the socket, so
    /// nothing would wake the loop for them.
    void takeQueuedEvents() {
        while (const XcbOwned<xcb_generic_event_t> event{xcb_poll_for_queued_event(connection_)})
            note(*event);
        if ((activeChanged_ || listChanged_) && notifier_)
            QMetaObject::invokeMethod(
                notifier_.get(), [this] { tellObservers(); }, Qt::QueuedConnection);
    }

    void note(const xcb_generic_event_t& event) {
        if ((event.response_type & 0x7f) != XCB_PROPERTY_NOTIFY)
            return;
        const auto& change = reinterpret_cast<const xcb_property_notify_event_t&>(event);
        activeChanged_ = activeChanged_ || change.atom == ewmh_._NET_ACTIVE_WINDOW;
        listChanged_ = listChanged_ || change.atom == ewmh_._NET_CLIENT_LIST;
    }

    void tellObservers() {
        if (std::exchange(activeChanged_, false))
            activeObservers.tell();
        if (std::exchange(listChanged_, false))
            listObservers.tell();
    }

    int screenNumber_ = 0;
    xcb_connection_t* connection_;
    X11ClientProcesses clients_{connection_};
    xcb_ewmh_connection_t ewmh_{};
    bool hasAtoms_ = false;
    xcb_window_t root_ = XCB_WINDOW_NONE;
    xcb_atom_t gtkApplicationID_ = XCB_ATOM_NONE;
    xcb_atom_t kdeDesktopFile_ = XCB_ATOM_NONE;
    std::string problem_;
    std::unique_ptr<QSocketNotifier> notifier_;
    std::optional<xcb_window_t> lastActive_; ///< as it was when it was asked for
    bool activeChanged_ = false;             ///< events are noted while questions are asked
    bool listChanged_ = false;
};

X11WindowList::X11WindowList(std::optional<std::string> gap)
    : display_(std::make_unique<Display>()), gap_(std::move(gap)) {}

X11WindowList::~X11WindowList() = default;

Ability X11WindowList::ability() const {
    return display_->ability();
}

std::vector<AppWindow> X11WindowList::windows() const {
    return display_->describe(display_->clientList());
}

std::optional<AppWindow> X11WindowList::active() const {
    return display_->active();
}

bool X11WindowList::stillRuns(const AppWindow& window) const {
    return ProcessFacts::stillRuns(window.processID, window.executable);
}

Subscription X11WindowList::onActiveChanged(std::function<void()> changed) {
    return display_->activeObservers.add(std::move(changed));
}

Subscription X11WindowList::onListChanged(std::function<void()> changed) {
    return display_->listObservers.add(std::move(changed));
}

void X11WindowList::unhide(std::uint64_t window) {
    display_->map(static_cast<xcb_window_t>(window));
}

void X11WindowList::activate(std::uint64_t window) {
    display_->activate(static_cast<xcb_window_t>(window));
}

} // namespace tessarine
