#include "launcherapp/panel/view/modes/RenderRequest.h"

#include "launcherapp/panel/appearance/Palette.h"
#include "launcherapp/shell/CommandLine.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <string_view>
#include <vector>

namespace tessarine {

namespace {

constexpr double leastScale = 0.5;
constexpr double mostScale = 4;
constexpr double mostClipRows = 60;  ///< as many as a list has
constexpr double longestSettle = 60; ///< seconds

constexpr auto footerStates = std::to_array<std::string_view>({"collapsed", "hints"});

/// Reads one value after the other and keeps the first problem.
class Qualifiers {
public:
    explicit Qualifiers(const CommandLine& line) : line_(line) {}

    bool has(std::string_view flag) const { return line_.has(flag); }

    std::optional<std::string> text(std::string_view flag) const { return line_.value(flag); }

    /// One of the words, by its position; nothing when the flag is absent.
    template <typename Words>
    std::optional<std::size_t> word(std::string_view flag, const Words& words) {
        const auto value = line_.value(flag);
        if (!value)
            return std::nullopt;
        const auto found = std::ranges::find(words, std::string_view(*value));
        if (found == std::ranges::end(words)) {
            fail(fmt::format("{}: expected one of {}", flag, fmt::join(words, ", ")));
            return std::nullopt;
        }
        return static_cast<std::size_t>(found - std::ranges::begin(words));
    }

    std::optional<double> number(std::string_view flag, double least, double most) {
        const auto value = line_.value(flag);
        if (!value)
            return std::nullopt;
        double number = 0;
        const auto* end = value->data() + value->size();
        const auto [stop, error] = std::from_chars(value->data(), end, number);
        if (error != std::errc() || stop != end || !(number >= least && number <= most)) {
            fail(fmt::format("{}: expected a number from {} to {}", flag, least, most));
            return std::nullopt;
        }
        return number;
    }

    /// A position that people count from 1, counted from 0.
    std::optional<std::size_t> position(std::string_view flag) {
        const auto counted = number(flag, 1, 60);
        return counted ? std::optional(static_cast<std::size_t>(*counted) - 1) : std::nullopt;
    }

    void fail(std::string problem) {
        if (problem_.empty())
            problem_ = std::move(problem);
    }

    const std::string& problem() const { return problem_; }

private:
    const CommandLine& line_;
    std::string problem_;
};

template <typename Enum> std::optional<Enum> stored(Qualifiers& qualifiers, std::string_view flag) {
    const auto found = qualifiers.word(flag, StoredNames<Enum>::names);
    return found ? std::optional(static_cast<Enum>(*found)) : std::nullopt;
}

RenderRequest::Mode modeOf(const Qualifiers& qualifiers) {
    using enum RenderRequest::Mode;
    if (qualifiers.has("--clip") || qualifiers.has("--clip-filter"))
        return clipboard;
    if (qualifiers.has("--person"))
        return person;
    return qualifiers.has("--browse") ? browse : ordinary;
}

RenderRequest::Menu menuOf(const Qualifiers& qualifiers) {
    using enum RenderRequest::Menu;
    if (qualifiers.has("--filter-menu") || qualifiers.has("--filter-menu-row"))
        return filter;
    if (qualifiers.has("--panel-actions"))
        return panelActions;
    return qualifiers.has("--actions") ? actions : none;
}

} // namespace

ReadRequest readRenderRequest(const CommandLine& commandLine) {
    Qualifiers qualifiers(commandLine);
    RenderRequest request;
    request.mode = modeOf(qualifiers);
    const bool isOfClips = request.mode == RenderRequest::Mode::clipboard;
    request.query =
        qualifiers.text("--query").value_or(isOfClips ? "" : RenderRequest::defaultQuery);
    request.menu = menuOf(qualifiers);
    request.skin = stored<AppearancePreset>(qualifiers, "--skin");
    request.selected = qualifiers.position("--select");
    request.clipFilter = qualifiers.text("--clip-filter");
    request.filterRow = qualifiers.position("--filter-menu-row").value_or(0);
    if (const auto state = qualifiers.word("--footer", footerStates))
        request.footer = static_cast<Footer::FooterState>(*state);
    request.hasMark = qualifiers.has("--mark");
    request.preview = stored<ClipPreviewPlacement>(qualifiers, "--preview-placement");
    if (const auto rows = qualifiers.number("--clip-rows", 1, mostClipRows))
        request.clipRows = static_cast<std::int64_t>(*rows);
    request.settle = Seconds(qualifiers.number("--settle", 0, longestSettle).value_or(0));
    request.scale =
        qualifiers.number("--render-scale", leastScale, mostScale).value_or(request.scale);
    request.width = stored<PanelWidth>(qualifiers, "--render-width");
    request.text = stored<TextScale>(qualifiers, "--render-text");
    request.isMirrored = qualifiers.has("--render-mirrored");
    request.isOpaque = qualifiers.has("--render-opaque");
    if (!qualifiers.problem().empty())
        return {.problem = qualifiers.problem()};
    return {.request = std::move(request)};
}

} // namespace tessarine
