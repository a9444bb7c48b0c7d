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
                       const std::function<bool(std::string_view)>& commandExists)
    : queue_(queue), files_(std::move(files)), learns_(std::move(learns)),
      log_(loaded<UsageLog>(files_.own, UsageJson::decodedLog)),
      otherDevices_(
          loaded<std::map<std::string, UsageLog>>(files_.synced, UsageJson::decodedDevices)) {
    std::vector<std::string> carried;
    for (const auto& [retired, successor] : UsageLog::renamedIDs()) {
        const bool isUsers = retired.starts_with(commandPrefix) &&
                             commandExists(retired.substr(commandPrefix.size()));
        if (!isUsers && log_.renameID(retired, successor))
            carried.push_back(fmt::format("{} -> {}", retired, successor));
    }
    if (carried.empty())
        return;
    diagnostics.log(
        fmt::format("usage: carried history to replaced rows: {}", fmt::join(carried, ", ")));
    changed();
}

void UsageStore::record(std::string_view id) {
    requireMainThread(queue_);
    if (!learns_())
        return;
    log_.record(id, queue_.now());
    changed();
}

void UsageStore::recordChoice(std::string_view query, std::string_view id) {
    requireMainThread(queue_);
    if (!learns_())
        return;
    log_.recordChoice(query, id, queue_.now());
    changed();
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
    log_ = std::move(log);
    changed();
}

void UsageStore::setOtherDevices(std::map<std::string, UsageLog> devices) {
    requireMainThread(queue_);
    if (devices == otherDevices_)
        return;
    otherDevices_ = std::move(devices);
    combinedCache_.reset();
    files_.synced.save(UsageJson::encoded(otherDevices_));
}

void UsageStore::reset() {
    requireMainThread(queue_);
    log_ = {};
    combinedCache_.reset();
    files_.own.remove();
}

void UsageStore::changed() {
    combinedCache_.reset();
    files_.own.save(UsageJson::encoded(log_));
}

} // namespace tessarine
