#include "LauncherCore/answers/zones/ZoneFamilies.h"
#include "LauncherCore/answers/zones/ZonePlaces.h"
#include "LauncherCore/answers/zones/ZoneText.h"
#include "LauncherCore/answers/zones/ZoneWords.h"
#include "LauncherCore/text/Pattern.h"

#include <fmt/format.h>

#include <array>
#include <span>
#include <utility>

namespace tessarine {

namespace {

using TimeZones::Context;
using ZonePlaces::Place;
using Pair = std::pair<Place, Place>;

/// What parts two places in any text. " and " does so only in a text that asks for a difference:
/// "paris and rome time" are two clocks.
constexpr auto partings =
    std::to_array<std::string_view>({" vs ", " versus ", " minus ", " from "});
constexpr auto partingsOfQuestion = std::to_array<std::string_view>(
    {" and ", " vs ", " versus ", " minus ", " from ", " ahead of ", " behind ", " to ", " of "});

/// What may stand between a question's head and its places.
constexpr auto fillers = std::to_array<std::string_view>(
    {"between", "from", "of", "for", "with", "to", "in", "is", "it"});

constexpr auto openings =
    std::to_array<std::string_view>({"what is the", "what's the", "whats the"});

constexpr auto difference = std::to_array<std::string_view>({"time difference", "difference"});

/// The text parted where both sides are places.
std::optional<Pair>
parted(std::string_view text, std::span<const std::string_view> at, const Context& context) {
    for (const auto parting : at) {
        for (auto found = text.find(parting); found != std::string_view::npos;
             found = text.find(parting, found + 1)) {
            auto first = ZonePlaces::resolve(ZoneWords::trimmed(text.substr(0, found)), context);
            if (!first)
                continue;
            auto second = ZonePlaces::resolve(
                ZoneWords::trimmed(text.substr(found + parting.size())), context);
            if (second)
                return Pair{std::move(*first), std::move(*second)};
        }
    }
    return std::nullopt;
}

/// "paris tokyo" in a text that asks for a difference.
std::optional<Pair> sideBySide(std::string_view text, const Context& context) {
    constexpr auto blank = std::to_array<std::string_view>({" "});
    return parted(text, blank, context);
}

/// "is tokyo ahead of london".
std::optional<Pair> doubted(std::string_view text, const Context& context) {
    static const Pattern pattern(R"(^is\s+(.+?)\s+(?:ahead\s+of|behind)\s+(.+)$)");
    const auto match = text.starts_with("is ") ? pattern.match(text) : std::nullopt;
    if (!match)
        return std::nullopt;
    auto first = ZonePlaces::resolve((*match)[1], context);
    auto second = ZonePlaces::resolve((*match)[2], context);
    if (!first || !second)
        return std::nullopt;
    return Pair{std::move(*first), std::move(*second)};
}

/// "ahead of london is tokyo", the other way round.
std::optional<Pair> inverted(std::string_view rest, const Context& context) {
    static const Pattern pattern(R"(^(?:ahead|behind)\s+(?:of\s+)?(.+?)\s+is\s+(.+)$)");
    const auto match = pattern.match(rest);
    if (!match)
        return std::nullopt;
    auto first = ZonePlaces::resolve((*match)[2], context);
    auto second = ZonePlaces::resolve((*match)[1], context);
    if (!first || !second)
        return std::nullopt;
    return Pair{std::move(*first), std::move(*second)};
}

/// A place is compared to home; the offset of UTC or GMT is asked for by its name.
Place comparedTo(std::string_view head, const Context& context) {
    for (const auto* base : {"utc", "gmt"})
        if (head.starts_with(base))
            return *ZonePlaces::resolve(base, context);
    return {.clock = context.home};
}

std::optional<Pair>
ofQuestion(std::string_view head, std::string_view rest, const Context& context) {
    if (auto pair = inverted(rest, context))
        return pair;
    rest = ZoneWords::withoutAllOf(rest, fillers);
    if (auto pair = parted(rest, partingsOfQuestion, context))
        return pair;
    if (auto place = ZonePlaces::resolve(rest, context))
        return Pair{std::move(*place), comparedTo(head, context)};
    return sideBySide(rest, context);
}

std::optional<Pair> places(std::string_view text, const Context& context) {
    if (auto pair = doubted(text, context))
        return pair;
    if (const auto question = ZoneWords::stripped(text, openings))
        text = question->rest;
    if (const auto head = ZoneWords::stripped(text, ZoneWords::differenceHeads()))
        return ofQuestion(head->prefix, head->rest, context);
    for (const auto words : difference)
        if (const auto rest = ZoneWords::without(text, words))
            return ofQuestion(words, *rest, context);
    return parted(text, partings, context);
}

} // namespace

std::vector<Answer>
ZoneFamilies::difference(std::string_view text, const Context& context, const Formats& formats) {
    const auto pair = places(text, context);
    if (!pair)
        return {};
    const auto& [first, second] = *pair;
    const auto zone = ZonePlaces::zone(first.clock);
    const auto other = ZonePlaces::zone(second.clock);
    if (!zone || !other)
        return {};
    const auto apart = std::chrono::duration_cast<std::chrono::minutes>(zone->offset(context.now) -
                                                                        other->offset(context.now));
    auto value = fmt::format(
        "{} {}", TimeZones::differenceWords(static_cast<int>(apart.count())), second.clock.name);
    auto detail = fmt::format("time difference between {} and {} · {} and {} there now",
                              first.label(),
                              first.clock == second.clock ? "home" : second.label(),
                              TimeZones::nowValue(first.clock, context, formats),
                              TimeZones::nowValue(second.clock, context, formats));
    return {ZoneText::row(first.clock, std::move(value), std::move(detail))};
}

} // namespace tessarine
