#include "launcherapp/platform/linux/accessibility/AtspiSearch.h"

#include <dbus/dbus-protocol.h>

#include <algorithm>
#include <array>
#include <utility>

namespace tessarine {

namespace {

using PressableThings::Likeness;

constexpr auto actionInterface = "org.a11y.atspi.Action";
constexpr auto textInterface = "org.a11y.atspi.Text";
constexpr std::int64_t siblingsAtOnce = 128; ///< few round trips, and little is asked in vain
constexpr std::int32_t longestText = 200;    ///< characters; a button's words are fewer
constexpr std::int64_t mostActions = 16;     ///< GTK and Qt tell three at most

BusCall method(const BusPlace& place, const char* interface, const char* name) {
    return {.place = place, .interface = interface, .method = name};
}

/// Also when the bus answers for a program that ended meanwhile.
bool isUnanswered(const BusReply& reply) {
    return !reply.came() || reply.error() == DBUS_ERROR_NO_REPLY;
}

bool isGone(const BusReply& reply) {
    constexpr std::array<std::string_view, 3> goneErrors{
        DBUS_ERROR_UNKNOWN_OBJECT, DBUS_ERROR_SERVICE_UNKNOWN, DBUS_ERROR_NAME_HAS_NO_OWNER};
    const auto error = reply.error();
    return error && std::ranges::count(goneErrors, *error) > 0;
}

} // namespace

PressAttempt AtspiSearch::pressBelow(std::span<const BusPlace> roots) {
    for (const auto& root : roots) {
        if (auto attempt = below(root, childCount(root), 0))
            return *std::move(attempt);
    }
    for (const auto& place : butForMarks_) {
        if (auto attempt = press(place))
            return *std::move(attempt);
    }
    return {};
}

bool AtspiSearch::showsWindow(std::span<const BusPlace> roots) {
    return std::ranges::any_of(roots, [&](const BusPlace& root) {
        const auto count = childCount(root);
        return !children(root, {.afterLast = std::min(count, siblingsAtOnce), .count = count})
                    .empty();
    });
}

std::int64_t AtspiSearch::childCount(const BusPlace& place) {
    const std::array call{BusCall::property(place, accessible, "ChildCount")};
    return ask(call).front().number().value_or(0);
}

/// Nothing when what is looked for isn't there.
std::optional<PressAttempt>
AtspiSearch::below(const BusPlace& parent, std::int64_t count, int depth) {
    if (depth > maxDepth)
        return std::nullopt;
    count = std::min(count, maxChildren);
    for (std::int64_t first = 0; first < count; first += siblingsAtOnce) {
        const ChildRange range{
            .first = first, .afterLast = std::min(first + siblingsAtOnce, count), .count = count};
        for (const auto& thing : children(parent, range)) {
            if (thing.likeness == Likeness::butForMarks)
                butForMarks_.push_back(thing.place);
            if (thing.likeness == Likeness::same) {
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

std::vector<BusPlace> AtspiSearch::places(const BusPlace& parent, const ChildRange& range) {
    // All at once is one call instead of one for each, but a table would make a million of them.
    if (range.count <= siblingsAtOnce) {
        const auto all = method(parent, accessible, "GetChildren");
        return ask(std::span(&all, 1)).front().places();
    }
    std::vector<BusCall> calls;
    for (auto i = range.first; i < range.afterLast; ++i) {
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
std::vector<AtspiSearch::Thing> AtspiSearch::children(const BusPlace& parent,
                                                      const ChildRange& range) {
    std::vector<BusPlace> met;
    for (auto& place : places(parent, range)) {
        if (seen_.size() < maxThings && seen_.insert(place).second)
            met.push_back(std::move(place));
    }
    const auto shapes = this->shapes(met);
    std::vector<Thing> things;
    std::vector<BusPlace> pressable;
    for (std::size_t i = 0; i < met.size(); ++i) {
        if (!shapes[i].isOnScreen)
            continue;
        things.push_back({.place = met[i], .children = shapes[i].children});
        if (shapes[i].isPressable)
            pressable.push_back(met[i]);
    }
    const auto likenesses = this->likenesses(pressable);
    for (auto& thing : things) {
        if (const auto found = likenesses.find(thing.place); found != likenesses.end())
            thing.likeness = found->second;
    }
    return things;
}

/// One for each place.
std::vector<AtspiSearch::Shape> AtspiSearch::shapes(const std::vector<BusPlace>& places) {
    std::vector<BusCall> calls;
    for (const auto& place : places) {
        calls.push_back(method(place, accessible, "GetState"));
        calls.push_back(method(place, accessible, "GetRole"));
        calls.push_back(BusCall::property(place, accessible, "ChildCount"));
    }
    std::vector<Shape> shapes;
    const auto replies = ask(calls);
    for (auto reply = replies.begin(); reply != replies.end();) {
        const auto states = (reply++)->numbers();
        const auto role = (reply++)->number().value_or(0);
        shapes.push_back({.isOnScreen = PressableThings::isOnScreen(states),
                          .isPressable = PressableThings::isPressable(role) &&
                                         PressableThings::isEnabled(states),
                          .children = (reply++)->number().value_or(0)});
    }
    return shapes;
}

/// Of those that have actions at all.
AtspiSearch::Likenesses AtspiSearch::likenesses(const std::vector<BusPlace>& places) {
    std::vector<BusCall> calls;
    for (const auto& place : places) {
        calls.push_back(BusCall::property(place, accessible, "Name"));
        calls.push_back(BusCall::property(place, accessible, "Description"));
        calls.push_back(method(place, accessible, "GetInterfaces"));
    }
    Likenesses result;
    std::vector<BusPlace> withText;
    const auto replies = ask(calls);
    auto reply = replies.begin();
    for (const auto& place : places) {
        const auto byName = likenessOf(*reply++);
        const auto byDescription = likenessOf(*reply++);
        const auto interfaces = (reply++)->texts();
        if (std::ranges::count(interfaces, actionInterface) == 0)
            continue;
        const auto likeness = std::max(byName, byDescription);
        // What has no text complains in its program's own log when it is asked for one.
        if (likeness == Likeness::none && std::ranges::count(interfaces, textInterface) > 0)
            withText.push_back(place);
        else
            result[place] = likeness;
    }
    result.merge(likenessesOfTexts(withText));
    return result;
}

AtspiSearch::Likenesses AtspiSearch::likenessesOfTexts(const std::vector<BusPlace>& places) {
    std::vector<BusCall> calls;
    for (const auto& place : places) {
        calls.push_back(method(place, textInterface, "GetText"));
        calls.back().arguments = {std::int32_t{0}, longestText};
    }
    Likenesses result;
    const auto replies = ask(calls);
    for (std::size_t i = 0; i < places.size(); ++i)
        result[places[i]] = likenessOf(replies[i]);
    return result;
}

Likeness AtspiSearch::likenessOf(const BusReply& reply) const {
    return PressableThings::likeness(reply.text().value_or(""), name_);
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
    const auto replies = ask(calls);
    // Silence is no name: taken for one, it would stand for an action that moves the keyboard.
    if (std::ranges::any_of(replies, isUnanswered))
        return std::nullopt;
    std::vector<std::string> names;
    for (const auto& reply : replies)
        names.push_back(reply.text().value_or(""));
    const auto action = PressableThings::pressAction(names);
    return action ? std::optional(act(place, *action)) : std::nullopt;
}

PressAttempt AtspiSearch::act(const BusPlace& place, std::size_t action) {
    using Outcome = PressAttempt::Outcome;
    auto call = method(place, actionInterface, "DoAction");
    call.arguments = {static_cast<std::int32_t>(action)};
    if (!bus_.isConnected())
        return {.outcome = Outcome::notFound};
    // With time of its own: what was never sent has to be told from what isn't answered.
    const auto reply = bus_.call(call, PrivateBus::Clock::now() + patience);
    // Perhaps it is pressed, so whoever tries again may turn a toggle back.
    if (!bus_.isConnected())
        return {.outcome = Outcome::refused, .problem = "the accessibility bus was lost"};
    // A press that opens a dialog may be answered when that is closed, and one that ends the
    // program never: it had answered everything before this.
    if (isUnanswered(reply))
        return {.outcome = Outcome::pressed};
    if (isGone(reply))
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
        if (isUnanswered(replies[i]))
            silent_.insert(calls[i].place.owner);
    }
    return replies;
}

} // namespace tessarine
