#include "launcherapp/platform/linux/input/WaylandKeyInjector.h"

#include "launcherapp/platform/DesktopTable.h"
#include "launcherapp/platform/linux/input/typing/TextKeymap.h"
#include "launcherapp/platform/linux/input/typing/VirtualKeyboard.h"
#include "launcherapp/platform/linux/wayland/WaylandConnection.h"

#include <linux/input-event-codes.h>

#include <QSocketNotifier>
#include <algorithm>
#include <deque>
#include <optional>
#include <string_view>
#include <utility>

namespace tessarine {

namespace {

constexpr std::string_view displayGone = "the Wayland display is gone";
constexpr std::string_view noSeat = "this Wayland session has no seat, and so no keyboard";

// Between two tries to connect, each of which may take WaylandConnection's patience.
constexpr Seconds firstReconnection{2};
constexpr Seconds longestReconnection{60};

} // namespace

class WaylandKeyInjector::Typist {
public:
    explicit Typist(MainQueue& queue) : queue_(queue) { connect(); }

    Typist(const Typist&) = delete;
    Typist& operator=(const Typist&) = delete;

    bool isConnected() const { return display_ && display_->answers(); }

    /// Where there is no connection it tries to make one, if it hasn't just now.
    Ability ability() {
        if (!isConnected() && queue_.uptime() >= nextConnection_)
            connect();
        if (!isConnected())
            return Ability::missing(std::string(problem_));
        if (!VirtualKeyboard::isOffered(display_->registry()))
            return Ability::missing(std::string(DesktopTable::noKeys));
        if (!VirtualKeyboard::hasSeat(display_->registry()))
            return Ability::missing(std::string(noSeat));
        return {};
    }

    bool paste(PasteChord chord) {
        if (!usual_)
            usual_ = TextKeymap::usual();
        if (!usual_ || !ability().available || !isThere() || !layOut(*usual_))
            return false;
        auto& keyboard = *keyboard_;
        const bool withShift = chord == PasteChord::terminal;
        // X11 programs behind the compositor go by the keys, all others by the modifiers.
        keyboard.press(KEY_LEFTCTRL);
        if (withShift)
            keyboard.press(KEY_LEFTSHIFT);
        keyboard.hold(VirtualKeyboard::controlModifier |
                      (withShift ? VirtualKeyboard::shiftModifier : 0));
        keyboard.tap(KEY_V);
        if (withShift)
            keyboard.release(KEY_LEFTSHIFT);
        keyboard.release(KEY_LEFTCTRL);
        keyboard.hold(0);
        return isThere();
    }

    void type(const std::string& text, std::function<void(bool typed)> done) {
        waiting_.push_back({.characters = TypedText::characters(text), .done = std::move(done)});
        if (waiting_.size() == 1)
            later(Seconds{0}, [this] { begin(); });
    }

private:
    struct Typing {
        std::u32string characters;
        std::function<void(bool typed)> done;
        std::size_t typed = 0;                 ///< characters of it
        std::optional<TextKeymap> keymap = {}; ///< for what comes next
        std::size_t keymapEnd = 0;             ///< it does until here
    };

    template <typename Task> void later(Seconds delay, Task task) {
        queue_.postAfter(delay, [alive = std::weak_ptr(alive_), task = std::move(task)] {
            if (!alive.expired())
                task();
        });
    }

    void connect() {
        hangUp();
        display_ = std::make_unique<WaylandConnection>();
        if (!isConnected())
            return wait();
        problem_ = displayGone; // which is all that may come now
        reconnection_ = firstReconnection;
        notifier_.emplace(display_->descriptor(), QSocketNotifier::Read);
        QObject::connect(&*notifier_, &QSocketNotifier::activated, [this] { listen(); });
    }

    void wait() {
        nextConnection_ = queue_.uptime() + reconnection_;
        reconnection_ = std::min(reconnection_ * 2, longestReconnection);
    }

    void hangUp() {
        keyboard_.reset();
        layout_.clear();
        notifier_.reset();
        display_.reset();
    }

    /// Whether the compositor has seen all keys, or, before there are any, would. One that goes on
    /// later must not press what was told as not sent: it throws away what it has not read of a
    /// program that hangs up.
    bool isThere() {
        if (display_->roundTrip())
            return true;
        if (isConnected())
            problem_ = DesktopTable::silentCompositor;
        hangUp();
        wait();
        return false;
    }

    /// Plugs the keyboard in where it isn't yet.
    bool layOut(const TextKeymap& keymap) {
        if (!keyboard_ || !keyboard_->isPluggedIn()) {
            keyboard_.emplace(*display_);
            layout_.clear();
        }
        if (layout_ == keymap.text())
            return true;
        layout_ = keyboard_->layOut(keymap.text()) ? keymap.text() : "";
        return !layout_.empty();
    }

    /// So that what the compositor tells doesn't pile up, and its end is heard of.
    void listen() {
        if (!display_->dispatchWhatCame())
            notifier_->setEnabled(false);
        if (keyboard_ && !keyboard_->isPluggedIn())
            keyboard_.reset(); // its seat has gone
    }

    void begin() {
        auto& typing = waiting_.front();
        if (typing.characters.size() > longestText || !ability().available || !isThere())
            return end(false);
        typeTurn();
    }

    void typeTurn() {
        if (!isConnected()) // a paste may have come between, and hung up
            return end(false);
        auto& typing = waiting_.front();
        const auto& characters = typing.characters;
        if (typing.typed == typing.keymapEnd && typing.typed < characters.size()) {
            typing.keymap =
                TextKeymap::forBeginning(std::u32string_view(characters).substr(typing.typed));
            if (!typing.keymap)
                return end(false);
            typing.keymapEnd += typing.keymap->length();
        }
        if (typing.keymap && !layOut(*typing.keymap)) // a paste may have come between
            return end(false);
        const auto turnEnd =
            std::min(typing.keymapEnd, typing.typed + TypedText::charactersPerTurn);
        for (; typing.typed < turnEnd; ++typing.typed)
            keyboard_->tap(typing.keymap->key(characters[typing.typed]));
        if (!isThere())
            return end(false);
        if (typing.typed == characters.size())
            return end(true);
        later(TypedText::betweenTurns, [this] { typeTurn(); });
    }

    void end(bool typed) {
        auto typing = std::move(waiting_.front());
        waiting_.pop_front();
        if (!waiting_.empty())
            later(Seconds{0}, [this] { begin(); });
        typing.done(typed); // last: it may end all this
    }

    MainQueue& queue_;
    std::unique_ptr<WaylandConnection> display_;                ///< null after hanging up
    std::string_view problem_ = DesktopTable::silentCompositor; ///< why there is no connection
    Seconds reconnection_ = firstReconnection;                  ///< the next pause
    Seconds nextConnection_{0}; ///< not before, in the queue's uptime
    std::optional<QSocketNotifier> notifier_;
    std::optional<TextKeymap> usual_;                        ///< made when it is first needed
    std::optional<VirtualKeyboard> keyboard_;                ///< plugged in when it is first needed
    std::string layout_;                                     ///< the keymap that it has now
    std::deque<Typing> waiting_;                             ///< the first is being typed
    std::shared_ptr<char> alive_ = std::make_shared<char>(); ///< what is under way ends with it
};

WaylandKeyInjector::WaylandKeyInjector(MainQueue& queue)
    : typist_(std::make_unique<Typist>(queue)) {}

WaylandKeyInjector::~WaylandKeyInjector() = default;

bool WaylandKeyInjector::isConnected() const {
    return typist_->isConnected();
}

Ability WaylandKeyInjector::ability() const {
    return typist_->ability();
}

bool WaylandKeyInjector::paste(PasteChord chord) {
    return typist_->paste(chord);
}

void WaylandKeyInjector::type(const std::string& text, std::function<void(bool typed)> done) {
    typist_->type(text, std::move(done));
}

} // namespace tessarine
