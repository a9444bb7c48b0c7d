#include "launcherapp/platform/linux/input/portal/PortalHotkeyRegistrar.h"

#include "launcherapp/platform/MainQueue.h"
#include "launcherapp/platform/linux/desktop/DBusCall.h"
#include "launcherapp/platform/linux/desktop/SessionBus.h"
#include "launcherapp/platform/linux/input/PressTime.h"
#include "launcherapp/platform/linux/input/portal/PortalTrigger.h"
#include "launcherapp/platform/linux/input/portal/ShortcutsSession.h"
#include "launcherapp/platform/linux/portal/DesktopPortal.h"

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QUuid>
#include <QVariantMap>
#include <algorithm>
#include <iterator>
#include <map>
#include <optional>
#include <utility>
#include <vector>

namespace tessarine {

namespace {

/// Between two questions for what could not be had: twice as long after each, up to the longest.
constexpr Seconds askAgain{60};
constexpr Seconds longestUntilAsked{3600};
/// The program's own wishes come in one turn of the loop, those of the user's commands when their
/// file has been read. The desktop is asked for all of them in one window.
constexpr Seconds gathering{0.3};
/// A portal has its name on the bus before what stands behind it.
constexpr Seconds untilReady{0.5};
constexpr Seconds introduction{5}; ///< for a portal to take the program's name down
/// A portal may tell a held key over and over: keyboards wait 0.2 to 0.6 s before the first
/// repetition. One that tells no release must not make the key dead, so this is all there is.
constexpr Seconds longestPause{0.7};

constexpr auto declinedReason = "it was declined when the desktop asked for it";

using Kind = HotkeyOutcome::Kind;

const HotkeyOutcome asked{.kind = Kind::asked};

HotkeyOutcome refused(std::string reason) {
    return {.kind = Kind::refused, .reason = std::move(reason)};
}

/// A connection of its own: the portal takes a program's name down once for a connection, before
/// it is asked anything else on it.
class OwnConnection {
public:
    OwnConnection()
        : name_(QUuid::createUuid().toString()),
          bus_(QDBusConnection::connectToBus(
              QString::fromStdString(sessionBusAddress().value_or("")), name_)) {}

    ~OwnConnection() { QDBusConnection::disconnectFromBus(name_); }

    OwnConnection(const OwnConnection&) = delete;
    OwnConnection& operator=(const OwnConnection&) = delete;

    const QDBusConnection& bus() const { return bus_; }

private:
    QString name_;
    QDBusConnection bus_;
};

} // namespace

class PortalHotkeyRegistrar::Wishes : public std::enable_shared_from_this<Wishes> {
public:
    Wishes(MainQueue& queue, std::string applicationID)
        : queue_(queue), applicationID_(std::move(applicationID)) {
        watcher_.setConnection(connection_.bus());
        watcher_.setWatchMode(QDBusServiceWatcher::WatchForOwnerChange);
        watcher_.addWatchedService(DesktopPortal::service());
        QObject::connect(&watcher_,
                         &QDBusServiceWatcher::serviceOwnerChanged,
                         &watcher_,
                         [this](const QString&, const QString& before, const QString& after) {
                             ownerChanged(before, after);
                         });
    }

    Wishes(const Wishes&) = delete;
    Wishes& operator=(const Wishes&) = delete;

    HotkeyOutcome grab(std::uint32_t id, const HotkeyBinding& binding) {
        const auto trigger = PortalTrigger::of(binding);
        if (!trigger)
            return refused("portals have no name for that key");
        if (!connection_.bus().isConnected())
            return refused("the session bus does not answer");
        const auto& purpose = purposes_[id];
        PortalShortcut shortcut{
            .name = purpose.name, .description = purpose.description, .trigger = *trigger};
        const auto wish = wishes_.find(id);
        if (wish == wishes_.end() || wish->second.shortcut != shortcut) {
            const auto outcome = known(shortcut);
            wishes_[id] = {.shortcut = std::move(shortcut), .outcome = outcome};
            bindSoon();
        } else if (askAt_ && queue_.uptime() >= *askAt_) {
            bindSoon();
        }
        return wishes_[id].outcome;
    }

    void release(std::uint32_t id) {
        purposes_.erase(id);
        if (wishes_.erase(id) > 0)
            bindSoon();
    }

    void describe(std::uint32_t id, const HotkeyPurpose& purpose) { purposes_[id] = purpose; }

    Events events;

private:
    struct Wish {
        PortalShortcut shortcut;
        HotkeyOutcome outcome;
    };

    void bindSoon() {
        if (std::exchange(isBindingSoon_, true))
            return;
        queue_.postAfter(isGathered_ ? Seconds(0) : gathering, [weak = weak_from_this()] {
            if (const auto self = weak.lock()) {
                self->isBindingSoon_ = false;
                self->isGathered_ = true;
                self->bind();
            }
        });
    }

    void bindAfter(Seconds delay) {
        queue_.postAfter(delay, [weak = weak_from_this(), loss = losses_] {
            const auto self = weak.lock();
            if (self && self->losses_ == loss && self->inSession_.empty())
                self->bind();
        });
    }

    std::vector<PortalShortcut> wanted() const {
        std::vector<PortalShortcut> shortcuts;
        for (const auto& [id, wish] : wishes_)
            shortcuts.push_back(wish.shortcut);
        std::ranges::sort(shortcuts);
        return shortcuts;
    }

    bool isDeclined(const PortalShortcut& shortcut) const {
        return std::ranges::count(declined_, shortcut) > 0;
    }

    bool isGranted(const PortalShortcut& shortcut) const {
        const auto before = granted_.find(shortcut.name);
        return before != granted_.end() && before->second == shortcut;
    }

    /// What was granted and declined of those that are not wished for any more is forgotten. A wish
    /// that nobody has answered brings those that were declined before the user again.
    void forget(const std::vector<PortalShortcut>& shortcuts) {
        std::erase_if(granted_, [&](const auto& each) {
            return std::ranges::count(shortcuts, each.first, &PortalShortcut::name) == 0;
        });
        std::erase_if(declined_, [&](const PortalShortcut& each) {
            return std::ranges::count(shortcuts, each) == 0;
        });
        if (std::ranges::any_of(shortcuts, [this](const PortalShortcut& each) {
                return !isDeclined(each) && !isGranted(each);
            }))
            declined_.clear();
    }

    /// Those to ask for: in place of one that was declined, what was granted by its name before.
    std::vector<PortalShortcut> askable(const std::vector<PortalShortcut>& shortcuts) const {
        std::vector<PortalShortcut> chosen;
        for (const auto& each : shortcuts) {
            const auto before = granted_.find(each.name);
            if (!isDeclined(each))
                chosen.push_back(each);
            else if (before != granted_.end())
                chosen.push_back(before->second);
        }
        std::ranges::sort(chosen);
        return chosen;
    }

    void bind() {
        const auto shortcuts = wanted();
        forget(shortcuts);
        auto chosen = askable(shortcuts);
        if (chosen != inSession_) {
            // The old session first: it may hold the same keys.
            drop();
            inSession_ = std::move(chosen);
            ++losses_; // what was to be asked later is asked now
            askAt_.reset();
            isLost_ = false;
            if (!inSession_.empty())
                introduce();
        }
        settleAll([this](const Wish& wish) { return known(wish.shortcut); });
    }

    /// A portal that runs outside of the program's sandbox goes by what it calls itself. One that
    /// can't be told so may still know it, by the control group that the desktop started it in.
    void introduce() {
        if (isIntroduced_)
            return open();
        auto message =
            QDBusMessage::createMethodCall(DesktopPortal::service(),
                                           DesktopPortal::path(),
                                           QStringLiteral("org.freedesktop.host.portal.Registry"),
                                           QStringLiteral("Register"));
        message << QString::fromStdString(applicationID_) << QVariantMap();
        askBus(connection_.bus(),
               message,
               introduction,
               [weak = weak_from_this(), round = round_](const QDBusMessage& reply) {
                   const auto self = weak.lock();
                   if (!self || self->round_ != round)
                       return;
                   // Older portals take nobody's down, and go on all the same.
                   if (DesktopPortal::isRefusal(reply))
                       self->tell("the desktop's portal did not take the program's name down: " +
                                  DesktopPortal::problem(reply));
                   self->isIntroduced_ = true;
                   self->open();
               });
    }

    void tell(const std::string& problem) const {
        if (events.problem)
            events.problem(problem);
    }

    void open() {
        session_ = std::make_unique<ShortcutsSession>(
            connection_.bus(),
            inSession_,
            ShortcutsSession::Events{
                .bound = [this](const PortalTriggers& triggers) { bound(triggers); },
                .ended = [this](ShortcutsSession::End end,
                                const std::string& reason) { lost(end, reason); },
                .activated = [this](const std::string& name,
                                    std::uint32_t time) { pressed(name, time); },
                .deactivated = [this](const std::string& name) { down_.erase(name); }});
    }

    void drop() {
        ++round_;
        inSession_.clear();
        triggers_.reset();
        down_.clear();
        if (!session_)
            return;
        session_->close();
        session_.release()->deleteLater(); // it may be the one that tells
    }

    void bound(const PortalTriggers& triggers) {
        triggers_ = triggers;
        untilAsked_ = askAgain;
        hasComeUp_ = false;
        for (const auto& each : inSession_)
            granted_[each.name] = each;
        settleAll([this](const Wish& wish) { return known(wish.shortcut); });
    }

    /// What the present session has made of a shortcut, asked for before its answer.
    HotkeyOutcome known(const PortalShortcut& shortcut) const {
        const bool isIn = std::ranges::count(inSession_, shortcut.name, &PortalShortcut::name) > 0;
        if (isDeclined(shortcut) && !isIn)
            return refused(whyDeclined_);
        if (!triggers_ || !isIn)
            return asked;
        if (!isDeclined(shortcut) && std::ranges::count(inSession_, shortcut) == 0)
            return asked; // by that name another chord
        const auto trigger = triggers_->find(shortcut.name);
        if (trigger == triggers_->end())
            return refused(declinedReason);
        return HotkeyOutcome{.kind = Kind::registered,
                             .reason = {},
                             .trigger = trigger->second,
                             .isTriggerUnknown = trigger->second.empty()};
    }

    void lost(ShortcutsSession::End end, const std::string& reason) {
        using End = ShortcutsSession::End;
        const bool wasAnswered = triggers_.has_value();
        // The question may have been too early for a portal that was being started.
        if (end == End::failed && !wasAnswered && std::exchange(hasComeUp_, false)) {
            drop();
            return bindAfter(untilReady);
        }
        if (end == End::declined)
            return decline(declinedReason);
        // One wish too many must not cost the keys that the user has had.
        if (!wasAnswered && !granted_.empty() && isAnyNew())
            return decline(reason);
        drop();
        lose(reason, end);
    }

    /// Whether the question added anything to what was granted.
    bool isAnyNew() const {
        return !std::ranges::all_of(inSession_,
                                    [this](const PortalShortcut& each) { return isGranted(each); });
    }

    /// A no is to what the question added: the rest is asked for as before. Where it added nothing
    /// it is to all.
    void decline(const std::string& why) {
        whyDeclined_ = why;
        if (isAnyNew()) {
            std::ranges::copy_if(inSession_,
                                 std::back_inserter(declined_),
                                 [this](const PortalShortcut& each) { return !isGranted(each); });
        } else {
            declined_ = wanted();
            granted_.clear();
        }
        drop();
        bind();
    }

    /// Of what is refused, whoever wishes for it again reminds; of what failed the time alone.
    void lose(const std::string& reason, ShortcutsSession::End end) {
        isLost_ = true;
        ++losses_;
        askAt_ = queue_.uptime() + untilAsked_;
        settleAll([&](const Wish& wish) {
            return refused(isDeclined(wish.shortcut) ? whyDeclined_ : reason);
        });
        if (end == ShortcutsSession::End::failed)
            bindAfter(untilAsked_);
        untilAsked_ = std::min(untilAsked_ * 2, longestUntilAsked);
    }

    void ownerChanged(const QString& before, const QString& after) {
        // The first owner may be the portal that our own question starts.
        hasComeUp_ = !after.isEmpty();
        if (before.isEmpty() && !isLost_)
            return;
        drop();
        isIntroduced_ = false;
        if (whyDeclined_ != declinedReason)
            declined_.clear();
        if (!after.isEmpty())
            return bindSoon();
        lose("the desktop's portal has gone", ShortcutsSession::End::failed);
    }

    template <typename Outcome> void settleAll(const Outcome& outcomeOf) {
        std::vector<std::uint32_t> changed;
        for (auto& [id, wish] : wishes_) {
            auto outcome = outcomeOf(wish);
            if (outcome == wish.outcome)
                continue;
            wish.outcome = std::move(outcome);
            changed.push_back(id);
        }
        for (const auto id : changed) {
            const auto wish = wishes_.find(id); // who is told may give another back
            if (wish != wishes_.end() && events.settled)
                events.settled(id, HotkeyOutcome(wish->second.outcome));
        }
    }

    void pressed(const std::string& name, std::uint32_t time) {
        const auto now = queue_.uptime();
        const auto before = down_.find(name);
        const bool isRepetition = before != down_.end() && now - before->second < longestPause;
        down_[name] = now;
        const auto wish = std::ranges::find_if(
            wishes_, [&](const auto& each) { return each.second.shortcut.name == name; });
        if (!isRepetition && wish != wishes_.end() && events.pressed)
            events.pressed({.id = wish->first, .at = pressedAt(time, now)});
    }

    MainQueue& queue_;
    std::string applicationID_;
    OwnConnection connection_;
    QDBusServiceWatcher watcher_;
    std::map<std::uint32_t, HotkeyPurpose> purposes_;
    std::map<std::uint32_t, Wish> wishes_;
    std::vector<PortalShortcut> inSession_;  ///< what the session was asked for
    std::optional<PortalTriggers> triggers_; ///< what it has given; nothing before its answer
    std::map<std::string, Seconds> down_;    ///< when a key that is down was told last
    std::map<std::string, PortalShortcut> granted_; ///< by name: what the user said yes to
    std::string whyDeclined_ = declinedReason;      ///< or by the portal, until there is another
    std::vector<PortalShortcut> declined_;          ///< by the user: not to be asked again
    std::optional<Seconds> askAt_;  ///< not before; nothing unless the last one was lost
    Seconds untilAsked_ = askAgain; ///< after the next loss
    bool isLost_ = false;           ///< the last question was, or its answer
    bool hasComeUp_ = false;        ///< the portal has, and answered nothing since
    int losses_ = 0;                ///< with each what was to be asked later is void
    bool isGathered_ = false;       ///< the first wishes have
    bool isIntroduced_ = false;
    bool isBindingSoon_ = false;
    int round_ = 0; ///< one for each set, so that an answer for an older one is known
    std::unique_ptr<ShortcutsSession> session_;
};

PortalHotkeyRegistrar::PortalHotkeyRegistrar(MainQueue& queue, std::string applicationID)
    : wishes_(std::make_shared<Wishes>(queue, std::move(applicationID))) {}

PortalHotkeyRegistrar::~PortalHotkeyRegistrar() = default;

void PortalHotkeyRegistrar::setEvents(Events events) {
    wishes_->events = std::move(events);
}

void PortalHotkeyRegistrar::describe(std::uint32_t id, const HotkeyPurpose& purpose) {
    wishes_->describe(id, purpose);
}

HotkeyOutcome PortalHotkeyRegistrar::grab(std::uint32_t id, const HotkeyBinding& binding) {
    return wishes_->grab(id, binding);
}

void PortalHotkeyRegistrar::release(std::uint32_t id) {
    wishes_->release(id);
}

std::optional<HotkeyBinding> PortalHotkeyRegistrar::chord(std::uint32_t, std::uint32_t) const {
    return std::nullopt;
}

} // namespace tessarine
