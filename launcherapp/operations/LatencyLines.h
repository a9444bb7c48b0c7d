#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tessarine {

class Diagnostics;

/// One line of the report on how the program does.
struct ReportLine {
    enum class Status {
        ok,
        warning, ///< something the user may want to do something about
        info,    ///< nothing is known yet, or nothing follows
    };

    Status status = Status::info;
    std::string_view label;
    std::string value;

    bool operator==(const ReportLine&) const = default;
};

/// How fast the panel was in its last uses, against the bars it is held to. Without a sample a line
/// only tells how to get one. Samples are in milliseconds. Pure; any thread.
namespace LatencyLines {

/// Bar: a median under 50 ms.
ReportLine show(std::span<const double> samples);
/// Bars: a median under 33 ms, and no press over 100 ms.
ReportLine press(std::span<const double> samples);
/// Bar: a median under 16 ms, one frame of a 60 Hz screen.
ReportLine search(std::span<const double> samples);

/// The three of what was recorded in this run, in this order. Main thread.
std::vector<ReportLine> of(const Diagnostics& diagnostics);

} // namespace LatencyLines

} // namespace tessarine
