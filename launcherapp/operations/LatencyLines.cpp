#include "launcherapp/operations/LatencyLines.h"

#include "launcherapp/operations/Diagnostics.h"

#include <fmt/format.h>

#include <algorithm>
#include <deque>

namespace tessarine {

namespace {

// Milliseconds.
constexpr double showBar = 50;
constexpr double pressBar = 33;
constexpr double slowestPress = 100;
constexpr double searchBar = 16;

double medianOf(std::span<const double> samples) {
    return Diagnostics::median({samples.begin(), samples.end()}).value_or(0);
}

ReportLine unmeasured(std::string_view label) {
    return {.label = label, .value = "not measured yet; press the hotkey"};
}

ReportLine::Status judged(bool holds) {
    return holds ? ReportLine::Status::ok : ReportLine::Status::warning;
}

std::vector<double> row(const std::deque<double>& samples) {
    return {samples.begin(), samples.end()};
}

} // namespace

ReportLine LatencyLines::show(std::span<const double> samples) {
    constexpr std::string_view label = "Panel show time";
    if (samples.empty())
        return unmeasured(label);
    const auto median = medianOf(samples);
    return {.status = judged(median < showBar),
            .label = label,
            .value = fmt::format("median {:.1f} ms over {} opens (target under {:.0f})",
                                 median,
                                 samples.size(),
                                 showBar)};
}

ReportLine LatencyLines::press(std::span<const double> samples) {
    constexpr std::string_view label = "Keypress to panel";
    if (samples.empty())
        return unmeasured(label);
    const auto median = medianOf(samples);
    const auto slowest = *std::ranges::max_element(samples);
    return {.status = judged(median < pressBar && slowest <= slowestPress),
            .label = label,
            .value = fmt::format("median {:.1f} ms, slowest {:.0f} ms over {} presses (target: "
                                 "median under {:.0f}, none over {:.0f})",
                                 median,
                                 slowest,
                                 samples.size(),
                                 pressBar,
                                 slowestPress)};
}

ReportLine LatencyLines::search(std::span<const double> samples) {
    constexpr std::string_view label = "Search time";
    if (samples.empty())
        return unmeasured(label);
    const auto median = medianOf(samples);
    return {.status = judged(median < searchBar),
            .label = label,
            .value = fmt::format("median {:.2f} ms per keystroke over {} keystrokes (bar: under "
                                 "one 60 Hz frame, {:.0f} ms)",
                                 median,
                                 samples.size(),
                                 searchBar)};
}

std::vector<ReportLine> LatencyLines::of(const Diagnostics& diagnostics) {
    return {show(row(diagnostics.showTimes())),
            press(row(diagnostics.pressTimes())),
            search(row(diagnostics.searchTimes()))};
}

} // namespace tessarine
