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
    : queue_(queue), file_(std::move(file)), isEnabled_(std::move(isEnabled)),
      history_(loaded(file_)), variables_(history_.variables()) {}

void CalcStore::record(Calculation calculation) {
    requireMainThread(queue_);
    // JSON has no other numbers, and a history that holds one could not be read again.
    if (!isEnabled_() || !std::isfinite(calculation.value))
        return;
    history_.record({.id = randomUuid(),
                     .expression = std::move(calculation.expression),
                     .formatted = std::move(calculation.formatted),
                     .value = calculation.value,
                     .detail = std::move(calculation.detail),
                     .kind = calculation.kind,
                     .at = queue_.now(),
                     .name = std::move(calculation.assignedName)});
    changed();
}

void CalcStore::remove(std::string_view id) {
    requireMainThread(queue_);
    if (history_.remove(id))
        changed();
}

void CalcStore::pin(std::string_view id) {
    requireMainThread(queue_);
    if (history_.pin(id))
        changed();
}

void CalcStore::unpin(std::string_view id) {
    requireMainThread(queue_);
    if (history_.unpin(id))
        changed();
}

void CalcStore::clear(CalcHistoryStore::Pinned pinned) {
    requireMainThread(queue_);
    history_.clear(pinned);
    changed();
}

Subscription CalcStore::onChange(std::function<void()> changed) {
    return observers_.add(std::move(changed));
}

void CalcStore::changed() {
    variables_ = history_.variables();
    file_.save(CalcHistoryJson::encoded(history_));
    observers_.tell();
}

} // namespace tessarine
