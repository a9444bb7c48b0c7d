#include "launcherapp/platform/linux/accessibility/AtspiSearch.h"

#include "launcherapp/platform/linux/accessibility/PressableThings.h"

#include <dbus/dbus-protocol.h>

#include <algorithm>
#include <array>
#include <utility>

namespace tessarine {

namespace {

constexpr auto accessible = "org.a11y.atspi.Accessible";
constexpr auto actionInterface = "org.a11y.atspi.Action";
constexpr auto textInterface = "org.a11y.atspi.Text";
constexpr std::int64_t siblingsAtOnce = 128; ///< few round trips, and little is asked in vain
constexpr std::int32_t longestText = 200;    ///< characters; a button's words are fewer
constexpr std::int64_t mostActions = 16;

BusCall method(const BusPlace& place, const char* interface, const char* name) {
    return {.place = place, .interface = interface, .method = name};
}

bool isGone(const std::string& error) {
    constexpr std::array<std::string_view, 3> goneErrors{
        DBUS_ERROR_UNKNOWN_OBJECT, DBUS_ERROR_SERVICE_UNKNOWN, DBUS_ERROR_NAME_HAS_NO_OWNER};
    return std::ranges::count(goneErrors, error) > 0;
}

} // namespace

PressAttempt AtspiSearch::pressBelow(const BusPlace& root) {
    const std::array count{BusCall::property(root, accessible, "ChildCount")};
    return below(root, ask(count).front().number().value_or(0), 0).value_or(PressAttempt{});
}

/// Nothing when what is looked for isn't there.
std::optional<PressAttempt>
AtspiSearch::below(const BusPlace& parent, std::int64_t count, int depth) {
    if (depth > maxDepth)
        return std::nullopt;
    count = std::min(count, maxChildren);
    for (std::int64_t first = 0; first < count; first += siblingsAtOnce) {
        const Span span{
            .first = first, .afterLast = std::min(first + siblingsAtOnce, count), .count = count};
        for (const auto& thing : children(parent, span)) {
            if (thing.named) {
                if (auto attempt = press(thing.place))
                    return attempt;
            }
            if (auto attempt = below(thing.place, thing.children, depth + 1))
                return attempt;
        }
        if (silent_.contains(parent.owner) || PrivateBus::Clock::now() >= deadline_)
            return std::nullopt;
    }
    return std::nullopt;
}

std::vector<BusPlace> AtspiSearch::places(const BusPlace& parent, const Span& span) {
    // All at once is one call instead of one for each, but a table would make a million of them.
    if (span.count <= siblingsAtOnce) {
        const auto all = method(parent, accessible, "GetChildren");
        return ask(std::span(&all, 1)).front().places();
    }
    std::vector<BusCall> calls;
    for (auto i = span.first; i < span.afterLast; ++i) {
        calls.push_back(method(parent, accessible, "GetChildAtIndex"));
        calls.back().arguments = {static_cast<std::int32_t>(i)};
    }
    std::vector<BusPlace> places;
    for (const auto& reply : ask(calls)) {
        if (auto place = reply.place())
            places.push_back(*std::move(place));
    }
    return places;
}

/// Those on screen that were not met before.
std::vector<AtspiSearch::Thing> AtspiSearch::children(const BusPlace& parent, const Span& span) {
    std::vector<Thing> things;
    for (auto& place : places(parent, span)) {
        if (seen_.size() < maxThings && seen_.insert(place).second)
            things.push_back({.place = std::move(place)});
    }
    std::vector<BusCall> calls;
    for (const auto& thing : things) {
        calls.push_back(method(thing.place, accessible, "GetState"));
        calls.push_back(method(thing.place, accessible, "GetRole"));
        calls.push_back(BusCall::property(thing.place, accessible, "ChildCount"));
    }
    const auto replies = ask(calls);
    for (std::size_t i = 0; i < things.size(); ++i) {
        auto& thing = things[i];
        thing.states = replies[3 * i].numbers();
        thing.pressable = PressableThings::isPressable(replies[3 * i + 1].number().value_or(0)) &&
                          PressableThings::isEnabled(thing.states);
        thing.children = replies[3 * i + 2].number().value_or(0);
    }
    std::erase_if(things,
                  [](const Thing& thing) { return !PressableThings::isOnScreen(thing.states); });
    readNames(things);
    return things;
}

void AtspiSearch::readNames(std::vector<Thing>& things) {
    std::vector<Thing*> asked;
    std::vector<BusCall> calls;
    for (auto& thing : things) {
        if (!thing.pressable)
            continue;
        asked.push_back(&thing);
        calls.push_back(BusCall::property(thing.place, accessible, "Name"));
        calls.push_back(BusCall::property(thing.place, accessible, "Description"));
        calls.push_back(method(thing.place, accessible, "GetInterfaces"));
    }
    const auto replies = ask(calls);
    std::vector<Thing*> withText;
    for (std::size_t i = 0; i < asked.size(); ++i) {
        const auto isCalled = [&](const BusReply& reply) {
            return PressableThings::isCalled(reply.text().value_or(""), name_);
        };
        const auto interfaces = replies[3 * i + 2].texts();
        if (std::ranges::count(interfaces, actionInterface) == 0)
            continue;
        asked[i]->named = isCalled(replies[3 * i]) || isCalled(replies[3 * i + 1]);
        // What has no text complains in its program's own log when it is asked for one.
        if (!asked[i]->named && std::ranges::count(interfaces, textInterface) > 0)
            withText.push_back(asked[i]);
    }
    readTexts(std::move(withText));
}

void AtspiSearch::readTexts(std::vector<Thing*> things) {
    std::vector<BusCall> calls;
    for (const auto* thing : things) {
        calls.push_back(method(thing->place, textInterface, "GetText"));
        calls.back().arguments = {std::int32_t{0}, longestText};
    }
    const auto replies = ask(calls);
    for (std::size_t i = 0; i < things.size(); ++i)
        things[i]->named = PressableThings::isCalled(replies[i].text().value_or(""), name_);
}

/// Nothing when it can't be pressed after all.
std::optional<PressAttempt> AtspiSearch::press(const BusPlace& place) {
    const std::array countCall{BusCall::property(place, actionInterface, "NActions")};
    const auto count = std::min(ask(countCall).front().number().value_or(0), mostActions);
    std::vector<BusCall> calls;
    for (std::int64_t i = 0; i < count; ++i) {
        calls.push_back(method(place, actionInterface, "GetName"));
        calls.back().arguments = {static_cast<std::int32_t>(i)};
    }
    std::vector<std::string> names;
    for (const auto& reply : ask(calls))
        names.push_back(reply.text().value_or(""));
    const auto action = PressableThings::pressAction(names);
    return action ? std::optional(act(place, *action)) : std::nullopt;
}

PressAttempt AtspiSearch::act(const BusPlace& place, std::size_t action) {
    using Outcome = PressAttempt::Outcome;
    auto call = method(place, actionInterface, "DoAction");
    call.arguments = {static_cast<std::int32_t>(action)};
    // With time of its own: what was never sent has to be told from what isn't answered.
    const auto reply = bus_.call(call, PrivateBus::Clock::now() + patience);
    if (!bus_.isConnected())
        return {.outcome = Outcome::notFound};
    // A press that opens a dialog may be answered when that is closed, and one that ends the
    // program never: it had answered everything before this.
    if (reply.error() == DBUS_ERROR_NO_REPLY)
        return {.outcome = Outcome::pressed};
    if (isGone(reply.error()))
        return {.outcome = Outcome::notFound};
    if (!reply.succeeded())
        return {.outcome = Outcome::refused, .problem = reply.errorText()};
    if (reply.number().value_or(0) == 0)
        return {.outcome = Outcome::refused, .problem = "the app said no"};
    return {.outcome = Outcome::pressed};
}

/// One answer for each call, empty for those of a program that doesn't answer.
std::vector<BusReply> AtspiSearch::ask(std::span<const BusCall> calls) {
    if (calls.empty())
        return {};
    const auto now = PrivateBus::Clock::now();
    if (now >= deadline_ || silent_.contains(calls.front().place.owner))
        return std::vector<BusReply>(calls.size());
    auto replies = bus_.call(calls, std::min(now + patience, deadline_));
    for (std::size_t i = 0; i < calls.size(); ++i) {
        if (replies[i].error() == DBUS_ERROR_NO_REPLY)
            silent_.insert(calls[i].place.owner);
    }
    return replies;
}

} // namespace tessarine
