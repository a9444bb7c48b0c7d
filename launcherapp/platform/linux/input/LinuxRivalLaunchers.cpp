#include "launcherapp/platform/linux/input/LinuxRivalLaunchers.h"

#include "launcherapp/platform/MainQueue.h"
#include "launcherapp/platform/Observers.h"
#include "launcherapp/platform/WorkQueues.h"
#include "launcherapp/platform/linux/desktop/SessionBus.h"
#include "launcherapp/platform/linux/files/FileDescriptor.h"
#include "launcherapp/platform/linux/input/RivalProcesses.h"
#include "launcherapp/platform/linux/input/RivalTable.h"
#include "launcherapp/platform/linux/input/SessionWatch.h"

#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QSocketNotifier>
#include <QStringList>
#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <sys/syscall.h>
#include <unistd.h>
#include <utility>

namespace tessarine {

namespace {

constexpr Seconds freshLook{10};             ///< a question so soon after a look starts no other
constexpr int busPatienceMilliseconds = 200; ///< with a bus that doesn't answer at the start

/// A process that can be seen ending.
struct Process {
    std::string rival;
    FileDescriptor handle;
    std::unique_ptr<QSocketNotifier> end;
};

} // namespace

class LinuxRivalLaunchers::Watch : public std::enable_shared_from_this<Watch> {
public:
    Watch(MainQueue& queue, WorkQueues& work) : queue_(queue), work_(work) {}

    std::vector<std::string> running() {
        if (!begun_)
            begin();
        else if (queue_.uptime() - lookedAt_ >= freshLook)
            lookInBackground();
        std::vector<std::string> names;
        for (const auto& rival : RivalTable::rivals()) {
            if (told_.contains(rival.name))
                names.emplace_back(rival.name);
        }
        return names;
    }

    void begin() {
        if (std::exchange(begun_, true))
            return;
        session_ = std::make_unique<SessionWatch>([this] { resumes.tell(); });
        watchBus();
        takeIn(RivalProcesses::look());
        told_ = present(); // what runs at the start is no change
    }

    Observers<std::string, Change> changes;
    Observers<> resumes;

private:
    void watchBus() {
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
        const auto question =
            QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.DBus"),
                                           QStringLiteral("/org/freedesktop/DBus"),
                                           QStringLiteral("org.freedesktop.DBus"),
                                           QStringLiteral("ListNames"));
        const auto answer = bus->call(question, QDBus::Block, busPatienceMilliseconds);
        for (const auto& argument : answer.arguments()) {
            for (const auto& name : argument.toStringList())
                ownedNames_.insert(name.toStdString());
        }
    }

    void setOwned(const std::string& name, bool owned) {
        if (owned)
            ownedNames_.insert(name);
        else
            ownedNames_.erase(name);
        tellChanges();
    }

    void lookInBackground() {
        lookedAt_ = queue_.uptime();
        work_.run(
            WorkPriority::utility,
            [] { return RivalProcesses::look(); },
            [weak = weak_from_this()](const std::vector<RivalProcesses::Found>& found) {
                if (const auto watch = weak.lock()) {
                    watch->takeIn(found);
                    watch->tellChanges();
                }
            });
    }

    void takeIn(const std::vector<RivalProcesses::Found>& found) {
        lookedAt_ = queue_.uptime();
        for (const auto& [id, rival] : found) {
            if (!processes_.contains(id))
                watchProcess(id, rival);
        }
    }

    void watchProcess(std::int64_t id, const std::string& rival) {
        FileDescriptor handle(static_cast<int>(::syscall(SYS_pidfd_open, id, 0)));
        if (!handle)
            return; // it is gone already
        auto end = std::make_unique<QSocketNotifier>(handle.number(), QSocketNotifier::Read);
        QObject::connect(end.get(), &QSocketNotifier::activated, end.get(), [this, id] {
            // The notifier is still at work here.
            const auto ended = processes_.extract(id);
            ended.mapped().end->setEnabled(false);
            ended.mapped().end.release()->deleteLater();
            tellChanges();
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

    void tellChanges() {
        const auto before = std::exchange(told_, present());
        const auto now = told_; // whoever is told may ask who runs
        for (const auto name : before) {
            if (!now.contains(name))
                changes.tell(std::string(name), Change::quit);
        }
        for (const auto name : now) {
            if (!before.contains(name))
                changes.tell(std::string(name), Change::launched);
        }
    }

    MainQueue& queue_;
    WorkQueues& work_;
    bool begun_ = false;
    Seconds lookedAt_{0};
    std::set<std::string> ownedNames_;
    std::map<std::int64_t, Process> processes_;
    std::set<std::string_view> told_; ///< names of the table, as the observers know them
    std::unique_ptr<QDBusServiceWatcher> busWatcher_;
    std::unique_ptr<SessionWatch> session_;
};

LinuxRivalLaunchers::LinuxRivalLaunchers(MainQueue& queue, WorkQueues& work)
    : watch_(std::make_shared<Watch>(queue, work)) {}

LinuxRivalLaunchers::~LinuxRivalLaunchers() = default;

std::size_t LinuxRivalLaunchers::known() const {
    return RivalTable::rivals().size();
}

std::vector<std::string> LinuxRivalLaunchers::running() const {
    return watch_->running();
}

Subscription
LinuxRivalLaunchers::onChange(std::function<void(const std::string&, Change)> changed) {
    watch_->begin();
    return watch_->changes.add(std::move(changed));
}

Subscription LinuxRivalLaunchers::onSessionResumed(std::function<void()> resumed) {
    watch_->begin();
    return watch_->resumes.add(std::move(resumed));
}

} // namespace tessarine
