#pragma once

#include "launcherapp/platform/Subscription.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <utility>

namespace tessarine {

/// Callbacks that are told of something until their subscriptions end, in the order in which they
/// were added. One may add, or end any of them, itself included, while it is called: an ended one
/// is not called again, and a new one not before the next round. A subscription may outlive this.
/// Main thread only.
template <typename... Arguments> class Observers {
public:
    using Observer = std::function<void(Arguments...)>;

    Subscription add(Observer observer) {
        const auto id = ++last_;
        observers_->emplace(id, std::move(observer));
        return Subscription([weak = std::weak_ptr(observers_), id] {
            if (const auto observers = weak.lock())
                observers->erase(id);
        });
    }

    void tell(const Arguments&... arguments) const {
        const auto shared = observers_; // whoever is told may take this object along
        const auto round = *shared;
        for (const auto& [id, observer] : round) {
            if (shared->contains(id))
                observer(arguments...);
        }
    }

private:
    std::shared_ptr<std::map<std::uint64_t, Observer>> observers_ =
        std::make_shared<std::map<std::uint64_t, Observer>>();
    std::uint64_t last_ = 0;
};

} // namespace tessarine
