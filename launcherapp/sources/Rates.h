#pragma once

#include "LauncherCore/answers/RateSource.h"
#include "LauncherCore/answers/RateTable.h"
#include "launcherapp/operations/StateFile.h"
#include "launcherapp/platform/HttpClient.h"
#include "launcherapp/platform/Observers.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tessarine {

class Diagnostics;
class MainQueue;

/// Where one source of rates is asked. Its requests' paths are fixed, its address is not.
struct RateProvider {
    std::string address; ///< scheme and host, as in "https://rates.example"
    std::string page;    ///< where a reader may check a figure

    /// The host of `address`, with its port if it names one.
    std::string host() const;

    bool operator==(const RateProvider&) const = default;
};

struct RateProviders {
    RateProvider ecb{.address = "https://api.frankfurter.dev", .page = "https://frankfurter.dev"};
    RateProvider open{.address = "https://open.er-api.com",
                      .page = "https://www.exchangerate-api.com/docs/free"};
};

/// The rates of exchange: one table, from the cache of the last run or from the selected source,
/// asked anew twice a day. Whatever goes wrong, the old table stays in use. Main thread only.
class Rates {
public:
    enum class Force { no, yes };

    /// `cache` is "rates.json"; `source` gives the preference.
    Rates(MainQueue& queue,
          HttpClient& web,
          Diagnostics& diagnostics,
          StateFile cache,
          RateProviders providers,
          std::function<RateSource()> source);
    Rates(const Rates&) = delete;
    Rates& operator=(const Rates&) = delete;

    /// Takes the table of the cache, and asks nobody: for a run that answers and ends. A cache
    /// that is broken counts as none.
    void load();

    /// Loads the cache without waiting for the disk, refreshes if it is stale, and looks again
    /// every hour.
    void start();

    /// Shows a table that nobody was asked for, as in a demonstration. It is not saved.
    void show(RateTable table);

    /// Asks the selected source, unless the table is its and younger than twelve hours. To be
    /// called when the preference changes.
    void refreshIfStale(Force force);

    /// Null while there is none.
    const std::shared_ptr<const RateTable>& table() const { return table_; }

    /// Codes of the table's currencies; empty while there is none.
    std::vector<std::string> available() const;

    /// Why the last refresh brought no table, in a sentence; nothing when it did.
    const std::optional<std::string>& lastError() const { return lastError_; }

    bool refreshing() const { return asking_.has_value(); }

    /// Calls `changed` when the table, the error or `refreshing` has changed.
    Subscription onChange(std::function<void()> changed) {
        return changed_.add(std::move(changed));
    }

private:
    const RateProvider& provider() const;
    bool isFresh(const std::string& host) const;
    void giveUp();
    void finish(const RateProvider& provider, const HttpResult& result);
    void take(RateTable table, const RateProvider& provider);
    void fail(const std::string& message, std::string error);

    MainQueue& queue_;
    HttpClient& web_;
    Diagnostics& diagnostics_;
    StateFile cache_;
    const RateProviders providers_;
    std::function<RateSource()> source_;
    std::shared_ptr<const RateTable> table_;
    std::optional<std::string> lastError_;
    bool loading_ = false;
    std::optional<std::string> asking_; ///< the host that is being asked
    Observers<> changed_;
    Subscription request_;
    Subscription timer_;
    std::shared_ptr<int> alive_ = std::make_shared<int>(); ///< for what comes back later
};

} // namespace tessarine
