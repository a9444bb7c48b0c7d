#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tessarine {

/// What a self-test found out, and the exit status that says so.
struct SelftestResult {
    enum class Verdict {
        proved = 0,
        refuted = 1,
        notMeasured = 2, ///< the environment could show neither
    };

    Verdict verdict = Verdict::refuted;
    std::string report; ///< the lines to print, without a line end after the last
};

/// The lines of a self-test's report, and whether one of them is a failure.
class SelftestLines {
public:
    explicit SelftestLines(std::string_view prefix) : prefix_(prefix) {}

    void say(std::string_view line);

    void require(bool holds, std::string_view failure) {
        if (!holds)
            fail(failure);
    }

    void requireNone(const std::optional<std::string>& failure) {
        if (failure)
            fail(*failure);
    }

    void fail(std::string_view line);

    bool passed() const { return passed_; }

    SelftestResult result() const;

    /// The test could not go on: what had failed until then stays a failure.
    SelftestResult brokenOff(std::string_view reason);

private:
    std::string prefix_;
    std::string report_;
    bool passed_ = true;
};

} // namespace tessarine
