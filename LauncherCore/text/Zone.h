#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tessarine {

/// What a calendar and a clock on the wall show. Gregorian, as every Linux desktop counts.
struct CivilTime {
    std::chrono::year_month_day date{};
    std::chrono::seconds timeOfDay{0}; ///< since midnight by the clock on the wall

    bool operator==(const CivilTime&) const = default;
};

/// One time zone with its history of offsets. A cheap value; any thread. Times are seconds since
/// 1970, UTC.
class Zone {
public:
    /// By its IANA name ("Europe/Athens"); nothing for a name that isn't known.
    static std::optional<Zone> named(std::string_view identifier);

    /// A fixed distance from UTC, positive to the east.
    static Zone fixed(std::chrono::minutes offset);

    static const Zone& utc();

    /// Every zone's IANA name, sorted; without the "Etc/", "SystemV/" and three-letter ones.
    static std::vector<std::string> identifiers();

    /// The ISO 3166 country of a zone; nothing for one of no country or a name that isn't known.
    static std::optional<std::string> region(std::string_view identifier);

    const std::string& identifier() const;

    /// How far the zone's clocks are ahead of UTC at a moment; negative to the west.
    std::chrono::seconds offset(double at) const;

    CivilTime civil(double at) const;

    /// When the zone's clocks show `time`. Of a time that occurs twice the first is meant; one that
    /// a clock change skips counts on from before the change.
    double instant(const CivilTime& time) const;

    /// Midnight that began the day of `at`.
    double startOfDay(double at) const;

private:
    struct State;
    explicit Zone(std::shared_ptr<const State> state);
    std::shared_ptr<const State> state_;
};

} // namespace tessarine
