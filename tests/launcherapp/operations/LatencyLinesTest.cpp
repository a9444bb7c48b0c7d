#include "launcherapp/operations/LatencyLines.h"

#include "launcherapp/operations/Diagnostics.h"
#include "tests/fakes/FakePlatform.h"

#include <gtest/gtest.h>

namespace tessarine {
namespace {

using Status = ReportLine::Status;
using Samples = std::vector<double>;

TEST(LatencyLines, tellTheFiguresAndWhetherTheBarHolds) {
    struct Case {
        ReportLine (*line)(std::span<const double>);
        Samples samples;
        Status status;
        std::string value;
    };

    const Case cases[] = {
        {LatencyLines::show, {}, Status::info, "not measured yet; press the hotkey"},
        {LatencyLines::press, {}, Status::info, "not measured yet; press the hotkey"},
        {LatencyLines::search, {}, Status::info, "not measured yet; press the hotkey"},
        {LatencyLines::show,
         {49.94, 2, 900}, // one slow opening breaks no median
         Status::ok,
         "median 49.9 ms over 3 opens (target under 50)"},
        {LatencyLines::show,
         {50},
         Status::warning,
         "median 50.0 ms over 1 opens (target under 50)"},
        {LatencyLines::press,
         {100, 6.25, 5}, // a hundred is not over a hundred
         Status::ok,
         "median 6.2 ms, slowest 100 ms over 3 presses (target: median under 33, none over 100)"},
        {LatencyLines::press,
         {101, 6, 5}, // one slow press is what a user remembers
         Status::warning,
         "median 6.0 ms, slowest 101 ms over 3 presses (target: median under 33, none over 100)"},
        {LatencyLines::press,
         {33, 33, 5},
         Status::warning,
         "median 33.0 ms, slowest 33 ms over 3 presses (target: median under 33, none over 100)"},
        {LatencyLines::search,
         {0.5, 1.254, 90},
         Status::ok,
         "median 1.25 ms per keystroke over 3 keystrokes (bar: under one 60 Hz frame, 16 ms)"},
        {LatencyLines::search,
         {16, 16},
         Status::warning,
         "median 16.00 ms per keystroke over 2 keystrokes (bar: under one 60 Hz frame, 16 ms)"},
    };
    for (const auto& [line, samples, status, value] : cases) {
        SCOPED_TRACE(value);
        EXPECT_EQ(line(samples).value, value);
        EXPECT_EQ(line(samples).status, status);
    }
}

TEST(LatencyLines, areMadeOfTheNewestFifty) {
    FakePlatform platform;
    Diagnostics diagnostics(
        platform.queue,
        platform.work,
        platform.files,
        [] { return "/data"; },
        Diagnostics::Run::oneShot);
    diagnostics.recordPress(500);
    for (int press = 0; press < 50; ++press)
        diagnostics.recordPress(4);
    diagnostics.recordSearch(1);
    const auto lines = LatencyLines::of(diagnostics);
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_EQ(lines[0].status, Status::info);
    EXPECT_EQ(lines[1].label, "Keypress to panel");
    EXPECT_EQ(lines[1].value,
              "median 4.0 ms, slowest 4 ms over 50 presses (target: median under 33, none over "
              "100)")
        << "the 51st drops the first";
    EXPECT_EQ(lines[2].label, "Search time");
}

} // namespace
} // namespace tessarine
