#include "launcherapp/query/UsageStore.h"

#include "LauncherCore/query/UsageJson.h"
#include "launcherapp/operations/Diagnostics.h"
#include "launcherapp/platform/MainQueue.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <utility>
#include <vector>

namespace tessarine {

namespace {

using Devices = std::map<std::string, UsageLog>;

constexpr std::string_view commandPrefix = "cmd:";

/// The document, or an empty one; a text that is none is kept from being overwritten.
template <typename Document, typename Decode> Document loaded(StateFile& file, Decode decode) {
    auto text = file.load();
    if (!text)
        return {};
    if (auto document = decode(*text))
        return *std::move(document);
    file.markDamaged(*std::move(text));
    return {};
}

} // namespace

UsageStore::UsageStore(MainQueue& queue,
                       Diagnostics& diagnostics,
                       Files files,
                       std::function<bool()> learns,
                       std::function<bool(std::string_view)> commandExists)
    : queue_(queue), diagnostics_(diagnostics), files_(std::move(files)),
      learns_(std::move(learns)), commandExists_(std::move(commandExists)) {}

void UsageStore::load() {
    requireMainThread(queue_);
    takeOwn(loaded<UsageLog>(files_.own, UsageJson::decodedLog));
    takeSynced(loaded<Devices>(files_.synced, UsageJson::decodedDevices));
}

void UsageStore::loadLater() {
    requireMainThread(queue_);
    files_.own.loadLater(
        queue_,
        [](const std::string& text) { return UsageJson::decodedLog(text); },
        [this, alive = std::weak_ptr(alive_)](std::optional<UsageLog> log) {
            if (!alive.expired())
                takeOwn(std::move(log).value_or(UsageLog{}));
        });
    files_.synced.loadLater(
        queue_,
        [](const std::string& text) { return UsageJson::decodedDevices(text); },
        [this, alive = std::weak_ptr(alive_)](std::optional<Devices> devices) {
            if (!alive.expired())
                takeSynced(std::move(devices).value_or(Devices{}));
        });
}

Subscription UsageStore::onLoaded(std::function<void()> loaded) {
    return loaded_.add(std::move(loaded));
}

void UsageStore::takeOwn(UsageLog log) {
    log_ = std::move(log);
    isLoaded_ = true;
    combinedCache_.reset();
    carryOver();
    const auto edits = std::exchange(meanwhile_, {});
    for (const auto& edit : edits)
        edit(log_);
    if (!edits.empty())
        changed();
    loaded_.tell();
}

void UsageStore::takeSynced(Devices devices) {
    if (knowsDevices_) // sync was faster than the disk
        return;
    knowsDevices_ = true;
    otherDevices_ = std::move(devices);
    combinedCache_.reset();
    loaded_.tell();
}

void UsageStore::carryOver() {
    std::vector<std::string> carried;
    for (const auto& [retired, successor] : UsageLog::renamedIDs()) {
        const bool isUsers = retired.starts_with(commandPrefix) &&
                             commandExists_(retired.substr(commandPrefix.size()));
        if (!isUsers && log_.renameID(retired, successor))
            carried.push_back(fmt::format("{} -> {}", retired, successor));
    }
    if (carried.empty())
        return;
    diagnostics_.log(
        fmt::format("usage: carried history to replaced rows: {}", fmt::join(carried, ", ")));
    changed();
}

void UsageStore::record(std::string_view id) {
    requireMainThread(queue_);
    if (learns_())
        change([id = std::string(id), at = queue_.now()](UsageLog& log) { log.record(id, at); });
}

void UsageStore::recordChoice(std::string_view query, std::string_view id) {
    requireMainThread(queue_);
    if (learns_())
        change([query = std::string(query), id = std::string(id), at = queue_.now()](
                   UsageLog& log) { log.recordChoice(query, id, at); });
}

const UsageLog& UsageStore::ranking() {
    if (!learns_())
        return none_;
    if (otherDevices_.empty())
        return log_;
    if (!combinedCache_) {
        // In the order of the device ids, so that every run combines to the same log.
        std::vector<const UsageLog*> others;
        for (const auto& [device, log] : otherDevices_)
            others.push_back(&log);
        combinedCache_ = log_.combined(others);
    }
    return *combinedCache_;
}

void UsageStore::restoreLocal(UsageLog log) {
    requireMainThread(queue_);
    change([log = std::move(log)](UsageLog& own) { own = log; });
}

void UsageStore::setOtherDevices(Devices devices) {
    requireMainThread(queue_);
    if (knowsDevices_ && devices == otherDevices_)
        return;
    knowsDevices_ = true;
    otherDevices_ = std::move(devices);
    combinedCache_.reset();
    files_.synced.save(UsageJson::encoded(otherDevices_));
}

void UsageStore::reset() {
    requireMainThread(queue_);
    change([](UsageLog& log) { log = {}; });
}

/// Changes the own log. Before the document is there the change waits for it, and is made again.
void UsageStore::change(Edit edit) {
    edit(log_);
    if (isLoaded_) {
        changed();
        return;
    }
    combinedCache_.reset();
    meanwhile_.push_back(std::move(edit));
}

void UsageStore::changed() {
    combinedCache_.reset();
    if (log_ == UsageLog{})
        files_.own.remove();
    else
        files_.own.save(UsageJson::encoded(log_));
}

} // namespace tessarine
