#include "launcherapp/operations/Selftest.h"

#include <fmt/format.h>

namespace tessarine {

void SelftestLines::say(std::string_view line) {
    if (!report_.empty())
        report_ += '\n';
    report_ += prefix_;
    report_ += line;
}

void SelftestLines::fail(std::string_view line) {
    say(line);
    passed_ = false;
}

SelftestResult SelftestLines::brokenOff(std::string_view reason) {
    say(fmt::format("NOT MEASURED, {}", reason));
    return {.verdict =
                passed_ ? SelftestResult::Verdict::notMeasured : SelftestResult::Verdict::refuted,
            .report = report_};
}

SelftestResult SelftestLines::result() const {
    return {.verdict = passed_ ? SelftestResult::Verdict::proved : SelftestResult::Verdict::refuted,
            .report = report_};
}

} // namespace tessarine
