#include "launcherapp/sources/Rates.h"

#include "LauncherCore/answers/RateTableJson.h"
#include "launcherapp/operations/Diagnostics.h"
#include "launcherapp/platform/MainQueue.h"

#include <fmt/format.h>

#include <cmath>
#include <utility>

namespace tessarine {

namespace {

constexpr double freshSeconds = 12 * 3600;
constexpr Seconds checkInterval{3600};
constexpr Seconds checkTolerance{60};
constexpr Seconds requestTimeout{8};

std::string_view path(RateSource source) {
    switch (source) {
    case RateSource::ecb:
        return "/v1/latest?from=USD";
    case RateSource::open:
        return "/v6/latest/USD";
    }
    return "";
}

/// The path begins with a slash, and a configured address may end with one.
std::string requestUrl(std::string_view address, RateSource source) {
    while (address.ends_with('/'))
        address.remove_suffix(1);
    return std::string(address).append(path(source));
}

} // namespace

std::string RateProvider::host() const {
    constexpr std::string_view mark = "://";
    const auto scheme = address.find(mark);
    const auto begin = scheme == std::string::npos ? 0 : scheme + mark.size();
    return address.substr(begin, address.find('/', begin) - begin);
}

Rates::Rates(MainQueue& queue,
             HttpClient& web,
             Diagnostics& diagnostics,
             StateFile cache,
             RateProviders providers,
             std::function<RateSource()> source)
    : queue_(queue), web_(web), diagnostics_(diagnostics), cache_(std::move(cache)),
      providers_(std::move(providers)), source_(std::move(source)) {}

void Rates::load() {
    requireMainThread(queue_);
    const auto text = cache_.load();
    if (auto table = text ? RateTableJson::decoded(*text) : std::nullopt)
        show(*std::move(table));
}

void Rates::show(RateTable table) {
    requireMainThread(queue_);
    table_ = std::make_shared<const RateTable>(std::move(table));
    changed_.tell();
}

void Rates::start() {
    requireMainThread(queue_);
    loading_ = true;
    using Cached = std::optional<RateTable>;
    cache_.loadLater(
        queue_,
        // Always a document, if one without a table: a broken cache is not worth a copy.
        [](const std::string& text) { return std::optional(RateTableJson::decoded(text)); },
        [this, alive = std::weak_ptr(alive_)](const std::optional<Cached>& cached) {
            if (alive.expired())
                return;
            loading_ = false;
            const auto table = cached.value_or(Cached());
            if (table && !table_) // an answer may have been faster than the disk
                show(*table);
            refreshIfStale(Force::no);
        });
    timer_ = queue_.every(checkInterval, checkTolerance, [this] { refreshIfStale(Force::no); });
}

void Rates::refreshIfStale(Force force) {
    requireMainThread(queue_);
    if (loading_ && force == Force::no) // what is loaded decides
        return;
    const auto& asked = provider();
    const auto host = asked.host();
    if (asking_ == host)
        return;
    if (force == Force::no && isFresh(host)) {
        giveUp();
        return;
    }
    // In place of a request to the source of before the preference changed.
    asking_ = host;
    request_ = web_.get({.url = requestUrl(asked.address, source_()), .timeout = requestTimeout},
                        [this, asked](const HttpResult& result) { finish(asked, result); });
    changed_.tell();
}

void Rates::giveUp() {
    if (!asking_)
        return;
    asking_.reset();
    request_.end();
    changed_.tell();
}

std::vector<std::string> Rates::available() const {
    return table_ ? table_->available() : std::vector<std::string>();
}

const RateProvider& Rates::provider() const {
    switch (source_()) {
    case RateSource::ecb:
        return providers_.ecb;
    case RateSource::open:
        return providers_.open;
    }
    return providers_.ecb;
}

bool Rates::isFresh(const std::string& host) const {
    // A time from the future tells of a clock that was put right, and not of a young table.
    return table_ && table_->host == host &&
           std::abs(queue_.now() - table_->fetched) < freshSeconds;
}

void Rates::finish(const RateProvider& provider, const HttpResult& result) {
    asking_.reset();
    if (const auto* failure = std::get_if<HttpFailure>(&result)) {
        const bool isSilent = failure->problem.empty();
        fail(fmt::format("rates: fetch failed ({}); using cached table",
                         isSilent ? "no data" : failure->problem),
             isSilent ? "The rate table could not be fetched." : failure->problem);
        return;
    }
    const auto& answer = std::get<HttpAnswer>(result);
    auto table = answer.isSuccess() ? RateTableJson::decodedAnswer(answer.body) : std::nullopt;
    if (table)
        take(*std::move(table), provider);
    else
        fail(fmt::format("rates: {} answered with no rates", provider.host()),
             provider.host() + " answered without a rate table.");
}

void Rates::take(RateTable table, const RateProvider& provider) {
    table.fetched = queue_.now();
    table.host = provider.host();
    table.checkURL = provider.page;
    cache_.save(RateTableJson::encoded(table));
    diagnostics_.log(
        fmt::format("rates: {} currencies fetched from {}", table.rates.size(), table.host));
    table_ = std::make_shared<const RateTable>(std::move(table));
    lastError_.reset();
    changed_.tell();
}

void Rates::fail(const std::string& message, std::string error) {
    diagnostics_.log(message);
    lastError_ = std::move(error);
    changed_.tell();
}

} // namespace tessarine
