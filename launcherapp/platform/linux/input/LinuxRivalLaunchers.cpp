#include "launcherapp/platform/linux/input/LinuxRivalLaunchers.h"

#include "launcherapp/platform/MainQueue.h"
#include "launcherapp/platform/Observers.h"
#include "launcherapp/platform/WorkQueues.h"
#include "launcherapp/platform/linux/desktop/SessionBus.h"
#include "launcherapp/platform/linux/desktop/SessionWatch.h"
#include "launcherapp/platform/linux/files/FileDescriptor.h"
#include "launcherapp/platform/linux/input/BusArrivals.h"
#include "launcherapp/platform/linux/input/RivalProcesses.h"
#include "launcherapp/platform/linux/input/RivalTable.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QSocketNotifier>
#include <QStringList>
#include <algorithm>
#include <cerrno>
#include <chrono>
#include <future>
#include <map>
#include <set>
#include <sys/syscall.h>
#include <unistd.h>
#include <utility>

namespace tessarine {

namespace {

constexpr Seconds coming{0.5}; ///< from the first sign of a program until it is what it will be

/// The chord to take, and the key that the user is told, depend on the first look. It began long
/// before anybody asks and takes some milliseconds; a process that hangs in the kernel can hold it
/// up for good.
constexpr std::chrono::milliseconds patience{50};

struct Process {
    std::string rival;
    /// By which it is seen ending; without one (an old kernel, no descriptors left) the next look
    /// misses it.
    FileDescriptor handle;
    std::unique_ptr<QSocketNotifier> end;
};

} // namespace

class LinuxRivalLaunchers::Watch : public std::enable_shared_from_this<Watch> {
public:
    Watch(MainQueue& queue, WorkQueues& work, Seconds betweenLooks)
        : queue_(queue), work_(work), betweenLooks_(betweenLooks) {}

    /// The first look on its way, and after the present turn of the event loop, which the program's
    /// start is, the bus: it may hang.
    void begin() {
        lookedAt_ = queue_.uptime();
        std::promise<Looked> promise;
        first_ = promise.get_future();
        work_.run(
            WorkPriority::userInitiated,
            [promise = std::make_shared<std::promise<Looked>>(std::move(promise))] {
                promise->set_value(RivalProcesses::look());
                return true;
            },
            [weak = weak_from_this()](bool) {
                if (const auto watch = weak.lock())
                    watch->endFirstLook();
            });
        queue_.post([weak = weak_from_this()] {
            if (const auto watch = weak.lock())
                watch->watchSessionBus();
        });
    }

    std::vector<std::string> running() {
        if (first_.valid() && !std::exchange(isAsked_, true) &&
            first_.wait_for(patience) == std::future_status::ready)
            endFirstLook();
        if (queue_.uptime() - lookedAt_ >= betweenLooks_)
            lookInBackground();
        std::vector<std::string> names;
        for (const auto& rival : RivalTable::rivals()) {
            if (told_.contains(rival.name))
                names.emplace_back(rival.name);
        }
        return names;
    }

    /// A sign comes in many, and those of one program before it is complete.
    void lookSoon() {
        if (std::exchange(isLookDue_, true))
            return;
        const auto rest = betweenLooks_ - (queue_.uptime() - lookedAt_);
        queue_.postAfter(std::max(rest, coming), [weak = weak_from_this()] {
            if (const auto watch = weak.lock()) {
                watch->isLookDue_ = false;
                watch->lookInBackground();
            }
        });
    }

    Observers<std::string, Change> changes;

private:
    using Looked = std::vector<RivalProcesses::Found>;

    void endFirstLook() {
        if (!first_.valid())
            return;
        takeIn(first_.get());
        tellChanges(Change::found);
    }

    void watchSessionBus() {
        auto bus = sessionBus();
        if (!bus)
            return;
        busWatcher_ = std::make_unique<QDBusServiceWatcher>();
        busWatcher_->setConnection(*bus);
        busWatcher_->setWatchMode(QDBusServiceWatcher::WatchForOwnerChange);
        for (const auto& rival : RivalTable::rivals()) {
            for (const auto name : rival.busNames) {
                if (!name.empty())
                    busWatcher_->addWatchedService(QLatin1String(name));
            }
        }
        QObject::connect(busWatcher_.get(),
                         &QDBusServiceWatcher::serviceOwnerChanged,
                         busWatcher_.get(),
                         [this](const QString& name, const QString&, const QString& owner) {
                             setOwned(name.toStdString(), !owner.isEmpty());
                         });
        // Not only a rival's own names: one without any is on the bus as well.
        arrivals_ = std::make_unique<BusArrivals>(*bus, [this] { lookSoon(); });
        askWhoIsThere(*bus);
    }

    void askWhoIsThere(QDBusConnection& bus) {
        const auto question =
            QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.DBus"),
                                           QStringLiteral("/org/freedesktop/DBus"),
                                           QStringLiteral("org.freedesktop.DBus"),
                                           QStringLiteral("ListNames"));
        auto* call = new QDBusPendingCallWatcher(bus.asyncCall(question), busWatcher_.get());
        QObject::connect(call, &QDBusPendingCallWatcher::finished, call, [this, call] {
            call->deleteLater();
            const QDBusPendingReply<QStringList> reply(*call);
            if (reply.isError())
                return;
            for (const auto& name : reply.value())
                ownedNames_.insert(name.toStdString());
            tellChanges(Change::found);
        });
    }

    void setOwned(const std::string& name, bool owned) {
        if (owned)
            ownedNames_.insert(name);
        else
            ownedNames_.erase(name);
        tellChanges(Change::launched);
    }

    void lookInBackground() {
        lookedAt_ = queue_.uptime();
        work_.run(
            WorkPriority::utility,
            [] { return RivalProcesses::look(); },
            [weak = weak_from_this()](const Looked& found) {
                if (const auto watch = weak.lock()) {
                    watch->takeIn(found);
                    watch->tellChanges(Change::launched);
                }
            });
    }

    void takeIn(const Looked& found) {
        lookedAt_ = queue_.uptime();
        std::erase_if(processes_, [&](const auto& each) {
            return !each.second.handle &&
                   std::ranges::count(found, each.first, &RivalProcesses::Found::process) == 0;
        });
        for (const auto& [id, rival] : found) {
            if (!processes_.contains(id))
                watchProcess(id, rival);
        }
    }

    void watchProcess(std::int64_t id, const std::string& rival) {
        FileDescriptor handle(static_cast<int>(::syscall(SYS_pidfd_open, id, 0)));
        if (!handle) {
            if (errno != ESRCH) // it is gone already
                processes_.emplace(id, Process{rival, {}, nullptr});
            return;
        }
        auto end = std::make_unique<QSocketNotifier>(handle.number(), QSocketNotifier::Read);
        QObject::connect(end.get(), &QSocketNotifier::activated, end.get(), [this, id] {
            // The notifier is still at work here.
            const auto ended = processes_.extract(id);
            ended.mapped().end->setEnabled(false);
            ended.mapped().end.release()->deleteLater();
            tellChanges(Change::launched);
        });
        processes_.emplace(id, Process{rival, std::move(handle), std::move(end)});
    }

    std::set<std::string_view> present() const {
        std::set<std::string_view> names;
        for (const auto& rival : RivalTable::rivals()) {
            const bool owns = std::ranges::any_of(rival.busNames, [&](std::string_view name) {
                return ownedNames_.contains(std::string(name));
            });
            const bool runs = std::ranges::any_of(
                processes_, [&](const auto& each) { return each.second.rival == rival.name; });
            if (owns || runs)
                names.insert(rival.name);
        }
        return names;
    }

    /// `come` says what those have done that are there and were not.
    void tellChanges(Change come) {
        const auto before = std::exchange(told_, present());
        const auto now = told_; // whoever is told may ask who runs
        for (const auto name : before) {
            if (!now.contains(name))
                changes.tell(std::string(name), Change::quit);
        }
        for (const auto name : now) {
            if (!before.contains(name))
                changes.tell(std::string(name), come);
        }
    }

    MainQueue& queue_;
    WorkQueues& work_;
    Seconds betweenLooks_;
    std::future<Looked> first_; ///< until it is taken in
    bool isAsked_ = false;
    bool isLookDue_ = false;
    Seconds lookedAt_{0};
    std::set<std::string> ownedNames_;
    std::map<std::int64_t, Process> processes_;
    std::set<std::string_view> told_; ///< names of the table, as the observers know them
    std::unique_ptr<QDBusServiceWatcher> busWatcher_;
    std::unique_ptr<BusArrivals> arrivals_;
};

LinuxRivalLaunchers::LinuxRivalLaunchers(MainQueue& queue,
                                         WorkQueues& work,
                                         SessionWatch& session,
                                         Seconds betweenLooks)
    : session_(session), watch_(std::make_shared<Watch>(queue, work, betweenLooks)) {
    watch_->begin();
}

LinuxRivalLaunchers::~LinuxRivalLaunchers() = default;

std::size_t LinuxRivalLaunchers::known() const {
    return RivalTable::rivals().size();
}

std::vector<std::string> LinuxRivalLaunchers::running() const {
    return watch_->running();
}

Subscription
LinuxRivalLaunchers::onChange(std::function<void(const std::string&, Change)> changed) {
    return watch_->changes.add(std::move(changed));
}

Subscription LinuxRivalLaunchers::onSessionResumed(std::function<void()> resumed) {
    return session_.onResumed(std::move(resumed));
}

void LinuxRivalLaunchers::look() {
    watch_->lookSoon();
}

} // namespace tessarine
