#include "launcherapp/platform/linux/input/X11HotkeyRegistrar.h"

#include "launcherapp/platform/DesktopTable.h"
#include "launcherapp/platform/linux/desktop/SessionBus.h"
#include "launcherapp/platform/linux/input/FreezeLimit.h"
#include "launcherapp/platform/linux/input/NoHotkeyRegistrar.h"
#include "launcherapp/platform/linux/input/PressTime.h"
#include "launcherapp/platform/linux/input/X11InputDevices.h"
#include "launcherapp/platform/linux/input/X11Keyboard.h"
#include "launcherapp/platform/linux/input/portal/PortalHotkeyRegistrar.h"

#include <xcb/xcb.h>

#include <QAbstractNativeEventFilter>
#include <QGuiApplication>
#include <QTimer>
#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <map>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

namespace tessarine {

namespace {

constexpr std::chrono::milliseconds keyLook{50};      ///< how often a key is looked at while down
constexpr std::chrono::milliseconds mappingRest{100}; ///< a new layout comes in several steps
/// Displays are told of delays from 150 ms on, and a quick finger presses twice in less than this.
constexpr std::int32_t firstRepetition = 120;

// The X Keyboard Extension's events of a changed keyboard.
constexpr std::uint8_t xkbNewKeyboard = 0;
constexpr std::uint8_t xkbMap = 1;

struct Free {
    void operator()(void* memory) const { std::free(memory); }
};

template <typename Reply> using Owned = std::unique_ptr<Reply, Free>;

xcb_connection_t* qtConnection() {
    const auto* application = qobject_cast<QGuiApplication*>(QCoreApplication::instance());
    const auto* x11 =
        application ? application->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    return x11 ? x11->connection() : nullptr;
}

/// What one chord is on this keyboard.
struct Chord {
    std::vector<std::uint8_t> keyCodes;
    std::uint16_t modifiers = 0;
    std::vector<std::uint16_t> lockStates;

    /// Whether a grab of the one is among those of the other.
    bool sharesGrabs(const Chord& other) const {
        return modifiers == other.modifiers &&
               std::ranges::find_first_of(keyCodes, other.keyCodes) != keyCodes.end();
    }

    /// What a press of it has as its state, for each state of the lock keys.
    std::vector<std::uint16_t> states() const {
        std::vector<std::uint16_t> result;
        for (const auto locks : lockStates)
            result.push_back(static_cast<std::uint16_t>(modifiers | locks));
        return result;
    }

    /// Whether a grab of it is that of the key with the state.
    bool has(std::uint8_t keyCode, std::uint16_t state) const {
        const auto all = states();
        return std::ranges::count(keyCodes, keyCode) > 0 && std::ranges::count(all, state) > 0;
    }

    bool operator==(const Chord&) const = default;
};

} // namespace

class X11HotkeyRegistrar::Keys : public QAbstractNativeEventFilter {
public:
    explicit Keys(MainQueue& queue)
        : queue_(queue), connection_(qtConnection()),
          root_(xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root),
          keyboard_(X11Keyboard::read(connection_)), devices_(connection_), xkbEvent_(xkbEvent()) {
        QObject::connect(&mapping_, &QTimer::timeout, &mapping_, [this] { readMapping(); });
        mapping_.setSingleShot(true);
        QObject::connect(&look_, &QTimer::timeout, &look_, [this] { forgetReleasedKeys(); });
        QCoreApplication::instance()->installNativeEventFilter(this);
    }

    ~Keys() override {
        QCoreApplication::instance()->removeNativeEventFilter(this);
        const auto chords = std::exchange(chords_, {});
        for (const auto& [id, held] : chords)
            giveBack(held.chord);
        thaw();
    }

    Keys(const Keys&) = delete;
    Keys& operator=(const Keys&) = delete;

    HotkeyOutcome grab(std::uint32_t id, const HotkeyBinding& binding) {
        const auto chord = chordOf(binding);
        const auto outcome = take(id, chord);
        if (outcome.kind != HotkeyOutcome::Kind::registered) {
            refused_[id] = {binding, chord};
            return outcome;
        }
        refused_.erase(id);
        const auto before = std::exchange(chords_[id], {binding, chord});
        giveBack(before.chord);
        if (!limit_)
            limit_.emplace([connection = connection_] { thaw(connection); });
        return outcome;
    }

    void release(std::uint32_t id) {
        refused_.erase(id);
        const auto found = chords_.find(id);
        if (found == chords_.end())
            return;
        const auto chord = found->second.chord;
        chords_.erase(found);
        giveBack(chord);
    }

    const X11Keyboard& keyboard() const { return keyboard_; }

    bool nativeEventFilter(const QByteArray& type, void* message, qintptr*) override {
        if (type != "xcb_generic_event_t")
            return false;
        const auto* event = static_cast<const xcb_generic_event_t*>(message);
        const auto kind = event->response_type & 0x7f;
        if (kind == XCB_KEY_PRESS)
            return keyPressed(*reinterpret_cast<const xcb_key_press_event_t*>(event));
        if (kind == XCB_GE_GENERIC)
            return keyPressed(*reinterpret_cast<const xcb_ge_generic_event_t*>(event));
        if (kind == XCB_KEY_RELEASE)
            return keyReleased(*reinterpret_cast<const xcb_key_release_event_t*>(event));
        // Both kinds: which of them the display sends depends on what Qt has told it.
        if (kind == XCB_MAPPING_NOTIFY ||
            (xkbEvent_ && kind == *xkbEvent_ &&
             (event->pad0 == xkbNewKeyboard || event->pad0 == xkbMap)))
            mapping_.start(mappingRest);
        return false;
    }

    Events events;

private:
    struct Held {
        HotkeyBinding binding;
        Chord chord;
    };

    struct Down {
        xcb_timestamp_t pressed = 0;
        std::optional<xcb_timestamp_t> released; ///< which may be a repetition's
    };

    static HotkeyOutcome refused(std::string reason) {
        return {.kind = HotkeyOutcome::Kind::refused, .reason = std::move(reason)};
    }

    Chord chordOf(const HotkeyBinding& binding) const {
        const auto modifiers = keyboard_.modifiers(binding.carbonModifiers);
        if (!modifiers)
            return {};
        return {.keyCodes = keyboard_.keyCodes(binding.keyCode),
                .modifiers = *modifiers,
                .lockStates = keyboard_.lockStates()};
    }

    HotkeyOutcome take(std::uint32_t id, const Chord& chord) {
        if (chord.lockStates.empty())
            return refused("a modifier of it is on no key of this keyboard");
        if (chord.keyCodes.empty())
            return refused("no keyboard has that key");
        // On some layouts two bindings are one key, and one of them would never hear of a press.
        // What counts is where they are now: on a new layout two may have changed places.
        const bool isOurs = std::ranges::any_of(chords_, [&](const auto& each) {
            return each.first != id && chordOf(each.second.binding).sharesGrabs(chord);
        });
        if (isOurs)
            return refused("it is the same key as another hotkey on this keyboard");
        const HotkeyOutcome held{.kind = HotkeyOutcome::Kind::heldByAnother,
                                 .reason = "another program holds it"};
        if (devices_.isGrabbed(chord.keyCodes, chord.states()))
            return held;
        if (const auto error = grabAll(chord)) {
            giveBack(chord); // what was granted before the refusal
            return *error == XCB_ACCESS ? held : refused("X11 error " + std::to_string(*error));
        }
        return {};
    }

    /// Gives back what no chord that is still held has too.
    void giveBack(const Chord& chord) {
        for (const auto keyCode : chord.keyCodes) {
            for (const auto state : chord.states()) {
                const bool isHeld = std::ranges::any_of(chords_, [&](const auto& each) {
                    return each.second.chord.has(keyCode, state);
                });
                if (!isHeld)
                    xcb_ungrab_key(connection_, keyCode, root_, state);
            }
        }
        xcb_flush(connection_);
    }

    static void thaw(xcb_connection_t* connection) {
        xcb_allow_events(connection, XCB_ALLOW_ASYNC_KEYBOARD, XCB_CURRENT_TIME);
        xcb_flush(connection);
    }

    /// Lets the held-back keys go. Nothing happens when none are, as after the panel's own grab.
    void thaw() { thaw(connection_); }

    std::optional<int> xkbEvent() {
        constexpr std::string_view name = "XKEYBOARD";
        const auto cookie =
            xcb_query_extension(connection_, static_cast<std::uint16_t>(name.size()), name.data());
        const Owned<xcb_query_extension_reply_t> reply(
            xcb_query_extension_reply(connection_, cookie, nullptr));
        return reply && reply->present ? std::optional<int>(reply->first_event) : std::nullopt;
    }

    /// The first error, or none. All are asked for before the first answer is waited for.
    std::optional<std::uint8_t> grabAll(const Chord& chord) {
        std::vector<xcb_void_cookie_t> cookies;
        for (const auto keyCode : chord.keyCodes) {
            for (const auto state : chord.states())
                cookies.push_back(xcb_grab_key_checked(connection_,
                                                       0,
                                                       root_,
                                                       state,
                                                       keyCode,
                                                       XCB_GRAB_MODE_ASYNC,
                                                       XCB_GRAB_MODE_SYNC));
        }
        std::optional<std::uint8_t> first;
        for (const auto cookie : cookies) {
            const Owned<xcb_generic_error_t> error(xcb_request_check(connection_, cookie));
            if (error && !first)
                first = error->error_code;
        }
        return first;
    }

    std::optional<std::uint32_t> holder(const xcb_key_press_event_t& event) const {
        constexpr std::uint16_t modifierBits = 0xff; // above them are layouts and mouse buttons
        const auto state = event.state & modifierBits & ~keyboard_.locks();
        for (const auto& [id, held] : chords_) {
            if (held.chord.modifiers == state &&
                std::ranges::count(held.chord.keyCodes, event.detail) > 0)
                return id;
        }
        return std::nullopt;
    }

    /// Whatever window it is for: while the panel holds the keyboard, chords arrive there.
    bool keyPressed(const xcb_key_press_event_t& event) {
        const bool taken = takePress(event);
        if (event.event == root_)
            thaw();
        return taken;
    }

    bool keyPressed(const xcb_ge_generic_event_t& event) {
        const auto press = devices_.keyPress(event);
        if (!press)
            return false;
        xcb_key_press_event_t same{};
        same.detail = press->key;
        same.state = press->state;
        same.time = press->time;
        return takePress(same);
    }

    bool takePress(const xcb_key_press_event_t& event) {
        if (isRepeat(event))
            return true;
        const auto id = holder(event);
        if (!id)
            return false;
        down_[event.detail] = {.pressed = event.time, .released = {}};
        look_.start(keyLook);
        if (events.pressed)
            events.pressed({.id = *id, .at = pressedAt(event.time, queue_.uptime())});
        return true;
    }

    /// A key that is held down comes as releases and presses of the same time, and goes on when the
    /// modifiers are up already.
    bool isRepeat(const xcb_key_press_event_t& event) {
        const auto key = down_.find(event.detail);
        if (key == down_.end())
            return false;
        auto& [pressed, released] = key->second;
        // Of a key that was let go, unseen, in another program's window.
        const bool isTooSoon = static_cast<std::int32_t>(event.time - pressed) < firstRepetition;
        if (isTooSoon || (released && *released != event.time)) {
            down_.erase(key);
            return false;
        }
        released.reset();
        return true;
    }

    bool keyReleased(const xcb_key_release_event_t& event) {
        const auto key = down_.find(event.detail);
        if (key == down_.end())
            return false;
        key->second.released = event.time;
        return true;
    }

    /// A release may have gone to another program, as the panel's keyboard does when it is hidden
    /// by its chord; without a look at the keys the next press would pass for a repetition.
    void forgetReleasedKeys() {
        const auto cookie = xcb_query_keymap(connection_);
        const Owned<xcb_query_keymap_reply_t> reply(
            xcb_query_keymap_reply(connection_, cookie, nullptr));
        std::erase_if(down_, [&](const auto& key) {
            return !reply || !(reply->keys[key.first / 8] & (1u << (key.first % 8)));
        });
        if (down_.empty())
            look_.stop();
    }

    /// Programs that type by giving spare keys a meaning change the mapping all the time; only what
    /// concerns a chord is told, one that could not be had included.
    void readMapping() {
        keyboard_ = X11Keyboard::read(connection_);
        const auto isAnother = [&](const auto& each) {
            const auto& [binding, chord] = each.second;
            return chordOf(binding) != chord;
        };
        const bool changed =
            std::ranges::any_of(chords_, isAnother) || std::ranges::any_of(refused_, isAnother);
        if (changed && events.keysChanged)
            events.keysChanged();
    }

    MainQueue& queue_;
    xcb_connection_t* connection_;
    xcb_window_t root_;
    X11Keyboard keyboard_;
    X11InputDevices devices_;
    std::optional<int> xkbEvent_; ///< the number of its events; nothing without the extension
    std::map<std::uint32_t, Held> chords_;
    std::map<std::uint32_t, Held> refused_; ///< what was asked for last, by those who hold it not
    std::map<std::uint8_t, Down> down_;     ///< keys of chords that may still be down
    QTimer look_;
    QTimer mapping_;
    std::optional<FreezeLimit> limit_;
};

X11HotkeyRegistrar::X11HotkeyRegistrar(MainQueue& queue) : keys_(std::make_unique<Keys>(queue)) {}

X11HotkeyRegistrar::~X11HotkeyRegistrar() = default;

void X11HotkeyRegistrar::setEvents(Events events) {
    keys_->events = std::move(events);
}

HotkeyOutcome X11HotkeyRegistrar::grab(std::uint32_t id, const HotkeyBinding& binding) {
    return keys_->grab(id, binding);
}

void X11HotkeyRegistrar::release(std::uint32_t id) {
    keys_->release(id);
}

std::optional<HotkeyBinding> X11HotkeyRegistrar::chord(std::uint32_t key,
                                                       std::uint32_t state) const {
    return keys_->keyboard().binding(key, state);
}

std::unique_ptr<HotkeyRegistrar> hotkeyRegistrar(MainQueue& queue,
                                                 const DesktopSurroundings& desktop,
                                                 const std::string& applicationID) {
    auto* connection = qtConnection();
    // Qt takes the display that a Wayland compositor keeps for X11 programs where it has nothing
    // to speak Wayland with.
    const bool isX11 = connection && !desktop.hasWayland && !isWaylandsDisplay(connection);
    if (isX11)
        return std::make_unique<X11HotkeyRegistrar>(queue);
    if (sessionBusAddress())
        return std::make_unique<PortalHotkeyRegistrar>(queue, applicationID);
    return std::make_unique<NoHotkeyRegistrar>(
        "outside of X11 the desktop is asked for keys on the session bus");
}

} // namespace tessarine
