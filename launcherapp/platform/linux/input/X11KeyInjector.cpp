#include "launcherapp/platform/linux/input/X11KeyInjector.h"

#include "launcherapp/platform/linux/input/typing/TypedText.h"
#include "launcherapp/platform/linux/input/typing/X11KeyMap.h"
#include "launcherapp/platform/linux/input/typing/X11TestKeys.h"
#include "launcherapp/platform/linux/x11/X11Connection.h"

#include <xkbcommon/xkbcommon.h>

#include <algorithm>
#include <deque>
#include <map>
#include <optional>
#include <set>
#include <utility>
#include <vector>

namespace tessarine {

namespace {

using KeyCode = X11TestKeys::KeyCode;

constexpr KeyCode usualV = 55; ///< where a US keyboard has it

} // namespace

class X11KeyInjector::Keyboard {
public:
    explicit Keyboard(MainQueue& queue)
        : queue_(queue), keys_(display_.xcb()), isThere_(keys_.areThere()) {}

    ~Keyboard() { forgetMeanings(); }

    Keyboard(const Keyboard&) = delete;
    Keyboard& operator=(const Keyboard&) = delete;

    bool isThere() const { return isThere_ && display_.answers(); }

    bool paste(PasteChord chord) {
        const auto map = isThere() ? X11KeyMap::read(display_.xcb()) : std::nullopt;
        const auto control = map ? map->controlKey() : std::nullopt;
        if (!control)
            return false;
        const auto modifiers = letGo(*map);
        const auto locks = keys_.locks();
        const auto v = map->chordKey(U'v', locks.layout, usualV);
        const auto shift = chord == PasteChord::terminal ? map->shiftKey() : std::nullopt;
        keys_.setLocks({.modifiers = 0, .layout = locks.layout});
        hold(*control);
        if (shift)
            hold(*shift);
        keys_.tap(v);
        if (shift)
            keys_.release(*shift);
        keys_.release(*control);
        keys_.setLocks(locks);
        for (const auto key : modifiers)
            keys_.press(key);
        return keys_.finish();
    }

    void type(const std::string& text, std::function<void(bool typed)> done) {
        waiting_.push_back({TypedText::characters(text), std::move(done)});
        if (waiting_.size() == 1)
            later(Seconds{0}, [this] { begin(); });
    }

private:
    struct Typing {
        std::u32string characters;
        std::function<void(bool typed)> done;
        std::size_t typed = 0;               ///< characters of it
        std::optional<X11KeyMap> map = {};   ///< nothing before it begins
        std::size_t roundEnd = 0;            ///< the present meanings do until here
        std::vector<KeyCode> modifiers = {}; ///< to be held again at the end
        std::uint8_t layout = 0;             ///< in force before it began
    };

    template <typename Task> void later(Seconds delay, Task task) {
        queue_.postAfter(delay, [alive = std::weak_ptr(alive_), task = std::move(task)] {
            if (!alive.expired())
                task();
        });
    }

    /// Releases all keys that are down; gives the modifiers among them. Another key is not pressed
    /// again: it would type.
    std::vector<KeyCode> letGo(const X11KeyMap& map) {
        std::vector<KeyCode> modifiers;
        for (const auto key : keys_.down()) {
            if (map.lockKeys().contains(key))
                continue; // letting go of it could turn it off
            keys_.release(key);
            if (map.modifierKeys().contains(key))
                modifiers.push_back(key);
        }
        return modifiers;
    }

    /// A key that was held again for the user is down on the extension's own device still when the
    /// user has let go of it, and a press of what is down is no press.
    void hold(KeyCode key) {
        keys_.release(key);
        keys_.press(key);
    }

    void begin() {
        auto& typing = waiting_.front();
        if (typing.characters.size() <= longestText && isThere())
            typing.map = X11KeyMap::read(display_.xcb());
        if (!typing.map)
            return end(false);
        typing.layout = keys_.locks().layout;
        const bool canType = !typing.map->spareKeys().empty() ||
                             std::ranges::all_of(typing.characters, [&](char32_t character) {
                                 return typing.map->stroke(character, typing.layout).has_value();
                             });
        if (!canType)
            return end(false); // half a text is worse than none
        beginRound();
    }

    /// Gives as many characters a key as there are keys to spare.
    void beginRound() {
        auto& typing = waiting_.front();
        const auto& spare = typing.map->spareKeys();
        std::set<char32_t> strangers;
        auto& end = typing.roundEnd;
        for (end = typing.typed; end < typing.characters.size(); ++end) {
            const auto character = typing.characters[end];
            if (strangers.contains(character) || typing.map->stroke(character, typing.layout))
                continue;
            if (strangers.size() == spare.size())
                break;
            strangers.insert(character);
        }
        std::vector<KeyCode> keys(spare.begin(),
                                  spare.begin() + static_cast<std::ptrdiff_t>(strangers.size()));
        std::ranges::sort(keys);
        std::vector<X11TestKeys::Meaning> meanings;
        for (const auto character : strangers) {
            const auto key = keys[meanings.size()];
            meanings.push_back({.key = key, .symbol = xkb_utf32_to_keysym(character)});
            spareKeyOf_[character] = key;
        }
        if (meanings.empty())
            return typeTurn();
        keys_.setMeanings(meanings);
        given_.insert(given_.end(), meanings.begin(), meanings.end());
        keys_.finish();
        later(beforeNewMeanings, [this] { typeTurn(); });
    }

    void typeTurn() {
        auto& typing = waiting_.front();
        auto held = letGo(*typing.map);
        if (typing.typed == 0)
            typing.modifiers = std::move(held);
        const auto locks = keys_.locks();
        auto layout = locks.layout;
        keys_.setLocks({.modifiers = 0, .layout = layout});
        const auto turnEnd = std::min(typing.roundEnd, typing.typed + TypedText::charactersPerTurn);
        for (; typing.typed < turnEnd; ++typing.typed)
            layout = typeCharacter(typing.characters[typing.typed], layout);
        keys_.setLocks(locks);
        if (!keys_.finish())
            return end(false);
        const bool isDone = typing.typed == typing.characters.size();
        if (isDone && spareKeyOf_.empty())
            return end(true);
        typing.modifiers.clear(); // the user lets go of them meanwhile, which nobody would notice
        if (typing.typed < typing.roundEnd)
            return later(TypedText::betweenTurns, [this] { typeTurn(); });
        if (spareKeyOf_.empty())
            return beginRound();
        later(afterNewMeanings, [this, isDone] {
            spareKeyOf_.clear();
            isDone ? end(true) : beginRound();
        });
    }

    /// The layout that is in force after it.
    std::uint8_t typeCharacter(char32_t character, std::uint8_t layout) {
        if (const auto spare = spareKeyOf_.find(character); spare != spareKeyOf_.end()) {
            keys_.tap(spare->second);
            return layout;
        }
        const auto stroke = waiting_.front().map->stroke(character, layout);
        if (!stroke)
            return layout;
        if (stroke->layout != layout)
            keys_.setLocks({.modifiers = 0, .layout = stroke->layout});
        for (const auto key : stroke->held)
            hold(key);
        keys_.tap(stroke->key);
        for (const auto key : stroke->held)
            keys_.release(key);
        return stroke->layout;
    }

    void forgetMeanings() {
        spareKeyOf_.clear();
        if (given_.empty() || !display_.answers())
            return;
        keys_.clearMeanings(std::exchange(given_, {}));
        keys_.finish();
    }

    void end(bool typed) {
        auto typing = std::move(waiting_.front());
        waiting_.pop_front();
        forgetMeanings();
        for (const auto key : typing.modifiers)
            keys_.press(key);
        keys_.finish();
        if (!waiting_.empty())
            later(Seconds{0}, [this] { begin(); });
        typing.done(typed); // last: it may end all this
    }

    MainQueue& queue_;
    X11Connection display_;
    X11TestKeys keys_;
    bool isThere_;
    std::deque<Typing> waiting_; ///< the first is being typed
    std::map<char32_t, KeyCode> spareKeyOf_;
    std::vector<X11TestKeys::Meaning> given_;                ///< meanings that are to be taken away
    std::shared_ptr<char> alive_ = std::make_shared<char>(); ///< what is under way ends with it
};

X11KeyInjector::X11KeyInjector(MainQueue& queue) : keyboard_(std::make_unique<Keyboard>(queue)) {}

X11KeyInjector::~X11KeyInjector() = default;

Ability X11KeyInjector::ability() const {
    return keyboard_->isThere()
               ? Ability{}
               : Ability::missing("this display lets no program press keys (it has no XTEST)");
}

bool X11KeyInjector::paste(PasteChord chord) {
    return keyboard_->paste(chord);
}

void X11KeyInjector::type(const std::string& text, std::function<void(bool typed)> done) {
    keyboard_->type(text, std::move(done));
}

} // namespace tessarine
