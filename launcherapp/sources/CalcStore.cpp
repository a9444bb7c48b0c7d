#include "launcherapp/sources/CalcStore.h"

#include "LauncherCore/answers/CalcHistoryJson.h"
#include "launcherapp/platform/MainQueue.h"
#include "launcherapp/shell/Uuid.h"

#include <cmath>
#include <utility>

namespace tessarine {

namespace {

/// The history, or an empty one; a text that is none is kept from being overwritten.
CalcHistoryStore loaded(StateFile& file) {
    auto text = file.load();
    if (!text)
        return {};
    if (auto history = CalcHistoryJson::decoded(*text))
        return *std::move(history);
    file.markDamaged(*std::move(text));
    return {};
}

} // namespace

CalcStore::CalcStore(MainQueue& queue, StateFile file, std::function<bool()> isEnabled)
    : queue_(queue), file_(std::move(file)), isEnabled_(std::move(isEnabled)) {}

void CalcStore::load() {
    requireMainThread(queue_);
    take(loaded(file_));
}

void CalcStore::loadLater() {
    requireMainThread(queue_);
    file_.loadLater(
        queue_,
        [](const std::string& text) { return CalcHistoryJson::decoded(text); },
        [this, alive = std::weak_ptr(alive_)](std::optional<CalcHistoryStore> history) {
            if (!alive.expired())
                take(std::move(history).value_or(CalcHistoryStore{}));
        });
}

void CalcStore::take(CalcHistoryStore history) {
    history_ = std::move(history);
    isLoaded_ = true;
    const auto edits = std::exchange(meanwhile_, {});
    for (const auto& edit : edits)
        edit(history_);
    if (!edits.empty())
        save();
    changed();
}

void CalcStore::record(Calculation calculation) {
    requireMainThread(queue_);
    // JSON has no other numbers, and a history that holds one could not be read again.
    if (!isEnabled_() || !std::isfinite(calculation.value))
        return;
    CalcEntry entry{.id = randomUuid(),
                    .expression = std::move(calculation.expression),
                    .formatted = std::move(calculation.formatted),
                    .value = calculation.value,
                    .detail = std::move(calculation.detail),
                    .kind = calculation.kind,
                    .at = queue_.now(),
                    .name = std::move(calculation.assignedName)};
    change([entry = std::move(entry)](CalcHistoryStore& history) {
        history.record(entry);
        return true;
    });
}

void CalcStore::remove(std::string_view id) {
    requireMainThread(queue_);
    change([id = std::string(id)](CalcHistoryStore& history) { return history.remove(id); });
}

void CalcStore::pin(std::string_view id) {
    requireMainThread(queue_);
    change([id = std::string(id)](CalcHistoryStore& history) { return history.pin(id); });
}

void CalcStore::unpin(std::string_view id) {
    requireMainThread(queue_);
    change([id = std::string(id)](CalcHistoryStore& history) { return history.unpin(id); });
}

void CalcStore::clear(CalcHistoryStore::Pinned pinned) {
    requireMainThread(queue_);
    change([pinned](CalcHistoryStore& history) {
        history.clear(pinned);
        return true;
    });
}

Subscription CalcStore::onChange(std::function<void()> changed) {
    return observers_.add(std::move(changed));
}

/// Changes the history. Before it is loaded the change waits for it, and is made again.
void CalcStore::change(Edit edit) {
    if (!edit(history_))
        return;
    if (isLoaded_)
        save();
    else
        meanwhile_.push_back(std::move(edit));
    changed();
}

void CalcStore::save() {
    file_.save(CalcHistoryJson::encoded(history_));
}

void CalcStore::changed() {
    variables_ = history_.variables();
    observers_.tell();
}

} // namespace tessarine
