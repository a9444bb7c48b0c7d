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
            const auto outcome = given(shortcut).value_or(asked);
            wishes_[id] = {.shortcut = std::move(shortcut), .outcome = outcome};
            bindSoon();
        } else if (mayAskAgain()) {
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

    /// A set that is not asked for again.
    struct Rejected {
        std::vector<PortalShortcut> shortcuts;
        std::string reason;
        bool isDeclined = false; ///< by the user
    };

    bool mayAskAgain() const { return lostAt_ && queue_.uptime() - *lostAt_ > askAgain; }

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

    void askLater() {
        if (std::exchange(isAskingLater_, true))
            return;
        queue_.postAfter(untilAsked_, [weak = weak_from_this()] {
            const auto self = weak.lock();
            if (!self)
                return;
            self->isAskingLater_ = false;
            if (self->lostAt_)
                self->bind();
        });
        untilAsked_ = std::min(untilAsked_ * 2, longestUntilAsked);
    }

    std::vector<PortalShortcut> wanted() const {
        std::vector<PortalShortcut> shortcuts;
        for (const auto& [id, wish] : wishes_)
            shortcuts.push_back(wish.shortcut);
        std::ranges::sort(shortcuts);
        return shortcuts;
    }

    void bind() {
        auto shortcuts = wanted();
        if (rejected_ && rejected_->shortcuts != shortcuts)
            rejected_.reset(); // another wish may get another answer
        if (rejected_)
            shortcuts = granted_;
        if (shortcuts == inSession_)
            return settleAll();
        // The old session first: a desktop refuses a key or a name that another session has, or
        // takes it from both when one of them ends.
        drop();
        inSession_ = std::move(shortcuts);
        lostAt_.reset();
        hasComeUp_ = false;
        settleAll();
        if (!inSession_.empty())
            introduce();
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
               [weak = weak_from_this(), round = round_](const QDBusMessage&) {
                   const auto self = weak.lock();
                   if (!self || self->round_ != round)
                       return;
                   self->isIntroduced_ = true;
                   self->open();
               });
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
        granted_ = inSession_;
        settleAll();
    }

    /// How it stands with a shortcut while nothing is lost.
    HotkeyOutcome outcomeOf(const PortalShortcut& shortcut) const {
        if (const auto outcome = given(shortcut))
            return *outcome;
        const bool isRejected = rejected_ && std::ranges::count(inSession_, shortcut) == 0 &&
                                std::ranges::count(rejected_->shortcuts, shortcut) > 0;
        return isRejected ? refused(rejected_->reason) : asked;
    }

    /// What the present session has made of a shortcut; nothing before its answer and for one that
    /// it was not asked for.
    std::optional<HotkeyOutcome> given(const PortalShortcut& shortcut) const {
        if (!triggers_ || std::ranges::count(inSession_, shortcut) == 0)
            return std::nullopt;
        const auto trigger = triggers_->find(shortcut.name);
        if (trigger == triggers_->end())
            return refused(declinedReason);
        if (trigger->second.empty())
            return refused("the desktop lists it among its shortcuts and tells no key for it: "
                           "choose one there");
        return HotkeyOutcome{.kind = Kind::registered, .reason = {}, .trigger = trigger->second};
    }

    void lost(ShortcutsSession::End end, const std::string& reason) {
        const bool isDeclined = end == ShortcutsSession::End::declined;
        Rejected lost{.shortcuts = inSession_,
                      .reason = isDeclined ? declinedReason : reason,
                      .isDeclined = isDeclined};
        drop();
        // One wish too many must not cost the keys that the user has had.
        if (!granted_.empty() && granted_.size() < lost.shortcuts.size() &&
            std::ranges::includes(lost.shortcuts, granted_)) {
            rejected_ = std::move(lost);
            return bind();
        }
        if (end != ShortcutsSession::End::failed)
            granted_.clear();
        if (isDeclined && !rejected_)
            rejected_ = lost;
        lose(lost.reason);
        if (end != ShortcutsSession::End::failed)
            return;
        // The question may have been too early for a portal that was being started.
        if (std::exchange(hasComeUp_, false))
            bindSoon();
        else
            askLater();
    }

    void lose(const std::string& reason) {
        lostAt_ = queue_.uptime();
        settleAllAs([&](const Wish&) { return refused(reason); });
    }

    void ownerChanged(const QString& before, const QString& after) {
        // The first owner may be the portal that our own question starts.
        if (before.isEmpty() && !lostAt_) {
            hasComeUp_ = true;
            return;
        }
        drop();
        isIntroduced_ = false;
        hasComeUp_ = false;
        if (rejected_ && !rejected_->isDeclined)
            rejected_.reset(); // the next portal may take it
        if (!after.isEmpty())
            return bindSoon();
        lose("the desktop's portal has gone");
        askLater();
    }

    void settleAll() {
        settleAllAs([this](const Wish& wish) { return outcomeOf(wish.shortcut); });
    }

    template <typename Outcome> void settleAllAs(const Outcome& outcomeOfWish) {
        std::vector<std::uint32_t> changed;
        for (auto& [id, wish] : wishes_) {
            auto outcome = outcomeOfWish(wish);
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
    std::optional<Seconds> lostAt_;          ///< when the last question was lost, or its answer
    std::vector<PortalShortcut> granted_;    ///< the last set that a session came about with
    std::optional<Rejected> rejected_;       ///< what was wished for then, and still is
    Seconds untilAsked_ = askAgain;          ///< after the next loss
    bool hasComeUp_ = false;                 ///< the portal has, since it was asked
    bool isAskingLater_ = false;
    bool isGathered_ = false; ///< the first wishes have
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
