#pragma once

#include <string>

namespace tessarine {

class Formats;

/// Where a computed figure came from, for the credit under it.
struct AnswerSource {
    std::string host;   ///< the data provider's host name, or what a chart is called, for display
    std::string url;    ///< a page that shows the same figure; empty for none
    double fetched = 0; ///< seconds since 1970, UTC; 0 for a figure that came with the program

    /// The credit, as in "api.example.org · today at 3:07 pm", or with the date of another
    /// day; the host alone for what came with the program.
    std::string line(double now, const Formats& formats) const;

    bool operator==(const AnswerSource&) const = default;
};

namespace Answers {

/// How old a figure is: "7 min ago", "3 h ago". Both times are seconds since 1970.
std::string ageText(double fetched, double now);

} // namespace Answers

} // namespace tessarine
