#include "LauncherCore/text/Zone.h"

#include "LauncherCore/text/UnicodeText.h"

#include <unicode/simpletz.h>
#include <unicode/strenum.h>
#include <unicode/timezone.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace tessarine {

namespace {

using UnicodeText::decoded;
using UnicodeText::encoded;

constexpr double millisecondsPerSecond = 1000;

double secondsOf(const CivilTime& time) {
    const auto days = std::chrono::sys_days(time.date).time_since_epoch();
    return static_cast<double>(std::chrono::seconds(days).count() + time.timeOfDay.count());
}

bool isOfAPlace(const std::string& identifier) {
    return identifier.find('/') != std::string::npos && !identifier.starts_with("Etc/") &&
           !identifier.starts_with("SystemV/") && !identifier.starts_with("US/");
}

} // namespace

struct Zone::State {
    std::string identifier;
    std::unique_ptr<icu::TimeZone> zone;
};

Zone::Zone(std::shared_ptr<const State> state) : state_(std::move(state)) {}

std::optional<Zone> Zone::named(std::string_view identifier) {
    auto zone = std::unique_ptr<icu::TimeZone>(icu::TimeZone::createTimeZone(decoded(identifier)));
    if (*zone == icu::TimeZone::getUnknown() && identifier != "Etc/Unknown")
        return std::nullopt;
    return Zone(std::make_shared<State>(State{std::string(identifier), std::move(zone)}));
}

Zone Zone::fixed(std::chrono::minutes offset) {
    const auto milliseconds = std::chrono::milliseconds(offset).count();
    auto zone =
        std::make_unique<icu::SimpleTimeZone>(static_cast<std::int32_t>(milliseconds), u"Fixed");
    return Zone(std::make_shared<State>(State{"Fixed", std::move(zone)}));
}

const Zone& Zone::utc() {
    static const Zone zone = fixed(std::chrono::minutes(0));
    return zone;
}

std::vector<std::string> Zone::identifiers() {
    UErrorCode error = U_ZERO_ERROR;
    const std::unique_ptr<icu::StringEnumeration> names(
        icu::TimeZone::createTimeZoneIDEnumeration(UCAL_ZONE_TYPE_ANY, nullptr, nullptr, error));
    std::vector<std::string> result;
    while (names && U_SUCCESS(error)) {
        const auto* name = names->snext(error);
        if (!name)
            break;
        if (auto identifier = encoded(*name); isOfAPlace(identifier))
            result.push_back(std::move(identifier));
    }
    std::ranges::sort(result);
    return result;
}

std::optional<std::string> Zone::region(std::string_view identifier) {
    constexpr std::size_t countryLength = 2; // "001" is the world
    std::array<char, 8> region{};
    UErrorCode error = U_ZERO_ERROR;
    const auto length = icu::TimeZone::getRegion(
        decoded(identifier), region.data(), static_cast<std::int32_t>(region.size()), error);
    if (U_FAILURE(error) || length != countryLength)
        return std::nullopt;
    return std::string(region.data(), countryLength);
}

const std::string& Zone::identifier() const {
    return state_->identifier;
}

std::chrono::seconds Zone::offset(double at) const {
    UErrorCode error = U_ZERO_ERROR;
    std::int32_t fromUtc = 0;
    std::int32_t daylightSaving = 0;
    state_->zone->getOffset(at * millisecondsPerSecond, 0, fromUtc, daylightSaving, error);
    return std::chrono::duration_cast<std::chrono::seconds>(
        std::chrono::milliseconds(fromUtc + daylightSaving));
}

CivilTime Zone::civil(double at) const {
    using std::chrono::seconds;
    const std::chrono::sys_seconds local{seconds(static_cast<std::int64_t>(std::floor(at))) +
                                         offset(at)};
    const auto day = std::chrono::floor<std::chrono::days>(local);
    return {.date = std::chrono::year_month_day(day), .timeOfDay = local - day};
}

double Zone::instant(const CivilTime& time) const {
    const double local = secondsOf(time);
    // The offset a day before holds until a change between: it reads a skipped time on from before
    // the change, and of a repeated time the first.
    constexpr double day = 86400;
    const double first = local - static_cast<double>(offset(local - day).count());
    if (civil(first) == time)
        return first;
    const double second = local - static_cast<double>(offset(local + day).count());
    return civil(second) == time ? second : first;
}

double Zone::startOfDay(double at) const {
    return instant({.date = civil(at).date});
}

} // namespace tessarine
