#include "launcherapp/platform/linux/files/ProcMountTable.h"

#include "LauncherCore/index/MountInfo.h"

#include <QObject>
#include <QSocketNotifier>
#include <utility>

namespace tessarine {

ProcMountTable::ProcMountTable() {
    if (!file_)
        return; // no /proc: there are no drives then, and nobody is ever told of any
    notifier_ = std::make_unique<QSocketNotifier>(file_.number(), QSocketNotifier::Exception);
    QObject::connect(
        notifier_.get(), &QSocketNotifier::activated, notifier_.get(), [observers = observers_] {
            const auto now = *observers; // an observer may end itself or another
            for (const auto& [id, changed] : now) {
                if (observers->contains(id))
                    changed();
            }
        });
}

ProcMountTable::~ProcMountTable() = default;

std::vector<Mount> ProcMountTable::mounts() const {
    std::vector<Mount> mounts;
    for (auto& entry : MountInfo::parse(file_.text()))
        mounts.push_back({.path = std::move(entry.path),
                          .source = std::move(entry.source),
                          .type = std::move(entry.type)});
    return mounts;
}

Subscription ProcMountTable::onChange(std::function<void()> changed) {
    const auto id = ++lastObserver_;
    observers_->emplace(id, std::move(changed));
    return Subscription([weak = std::weak_ptr(observers_), id] {
        if (const auto observers = weak.lock())
            observers->erase(id);
    });
}

} // namespace tessarine
