#include "launcherapp/sources/DemonstrationAnswers.h"

#include "launcherapp/catalog/DemonstrationApps.h"

#include <algorithm>
#include <array>

namespace tessarine {

namespace {

struct Habit {
    std::string_view name;
    int launches;
};

// In the order in which an empty field shows them.
constexpr auto habits = std::to_array<Habit>({
    {"Firewheel", 8},
    {"Bluebird Mail", 7},
    {"Teletype", 6},
    {"Gramophone", 5},
    {"Fieldnotes", 4},
    {"Almanac", 3},
    {"Darkroom", 2},
    {"Night Sky", 1},
});

constexpr double hour = 3600;

} // namespace

RateTable DemonstrationAnswers::rates(double now) {
    return {.base = "USD",
            .rates = {{"AUD", 1.51}, {"BRL", 5.4},  {"CAD", 1.37}, {"CHF", 0.8},  {"CNY", 7.05},
                      {"CZK", 20.8}, {"DKK", 6.4},  {"EUR", 0.86}, {"GBP", 0.75}, {"HUF", 332},
                      {"INR", 89.5}, {"JPY", 154},  {"KRW", 1450}, {"MXN", 18.2}, {"NOK", 10.1},
                      {"NZD", 1.74}, {"PLN", 3.65}, {"SEK", 9.4},  {"SGD", 1.29}, {"ZAR", 17.1}},
            .fetched = now - 2 * hour,
            .host = "rates.example",
            .checkURL = "https://rates.example"};
}

std::vector<CalcStore::Calculation> DemonstrationAnswers::calculations() {
    return {
        {.expression = "5 km in miles",
         .formatted = "3.10686 mi",
         .value = 3.106855961,
         .kind = CalcEntry::Kind::unit},
        {.expression = "rent = 1240",
         .formatted = "1,240",
         .value = 1240,
         .detail = "rent is now 1,240",
         .assignedName = "rent"},
        {.expression = "rent * 12", .formatted = "14,880", .value = 14880},
        {.expression = "24 * 18.5", .formatted = "444", .value = 444},
        {.expression = "sqrt(2) * 10", .formatted = "14.1421356237", .value = 14.142135623730951}};
}

UsageLog DemonstrationAnswers::usage(double now) {
    UsageLog log;
    const auto apps = demonstrationApps();
    for (const auto& [name, launches] : habits) {
        const auto app = std::ranges::find(apps, name, &CatalogApp::name);
        for (int launch = launches; app != apps.end() && launch > 0; --launch)
            log.record(app->id, now - launch * hour / 4);
    }
    return log;
}

} // namespace tessarine
