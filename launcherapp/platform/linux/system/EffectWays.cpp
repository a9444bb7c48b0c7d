#include "launcherapp/platform/linux/system/EffectWays.h"

#include "LauncherCore/text/Folding.h"
#include "LauncherCore/text/Paths.h"
#include "launcherapp/platform/linux/desktop/DBusCall.h"

#include <fmt/format.h>

#include <QDBusError>
#include <utility>

namespace tessarine {

namespace {

/// More than any list of settings, less than anything that hurts.
constexpr std::size_t keptBytes = std::size_t{256} << 10;

std::string firstLine(std::string_view text) {
    return std::string(text.substr(0, text.find('\n')));
}

EffectWays::ProgramAnswer answerOf(const std::string& path, const ProcessEnd& end) {
    EffectWays::ProgramAnswer answer{.output = std::string(Folding::trimmed(end.output))};
    if (end.status == 0)
        return answer;
    const auto name = std::string(Paths::lastPart(path));
    answer.problem = answer.output.empty()
                         ? fmt::format("{} ended with status {}", name, end.status)
                         : fmt::format("{}: {}", name, firstLine(answer.output));
    return answer;
}

/// As programs and desktops tell it: "Cancelled", "canceled", and scrot's "Key was pressed,
/// aborting shot".
bool isChangeOfMind(const std::string& problem) {
    return problem.find("ancel") != std::string::npos ||
           problem.find("aborting shot") != std::string::npos;
}

/// The service may be at it, or have gone while it was.
bool isUnanswered(const QDBusMessage& reply) {
    const auto error = QDBusError(reply).type();
    return error == QDBusError::NoReply || error == QDBusError::Timeout ||
           error == QDBusError::TimedOut;
}

void callInTurn(std::shared_ptr<const std::vector<BusRequest>> calls,
                std::size_t index,
                const EffectWay& otherwise,
                EffectDone done) {
    const auto& [bus, message, timeout] = calls->at(index);
    askBus(bus,
           message,
           timeout,
           [calls, index, otherwise, done = std::move(done)](const QDBusMessage& reply) {
               auto problem = busProblem(reply);
               if (problem && isUnanswered(reply))
                   done(fmt::format("{} was asked, but has not answered",
                                    calls->at(index).message.service().toStdString()));
               else if (problem && index + 1 < calls->size())
                   callInTurn(calls, index + 1, otherwise, done);
               else if (problem && otherwise)
                   otherwise(done);
               else
                   done(std::move(problem));
           });
}

void startProgram(const EffectWays::Doors& doors,
                  std::vector<std::string> arguments,
                  OutputReading::Errors errors,
                  Seconds limit,
                  std::function<void(EffectWays::ProgramAnswer answer)> done) {
    const auto path = arguments.front();
    const auto tooLong = std::make_shared<bool>(false);
    try {
        const auto running = doors->programs.start(
            {.arguments = std::move(arguments)},
            {.errors = errors, .keepBytes = keptBytes},
            [path, tooLong, done](const ProcessEnd& end) {
                if (*tooLong)
                    done({.problem = std::string(Paths::lastPart(path)) + " took too long"});
                else
                    done(answerOf(path, end));
            });
        doors->queue.postAfter(limit, [running, tooLong] {
            if (!running->isRunning())
                return;
            *tooLong = true;
            running->terminate();
        });
    } catch (const ProcessError& error) {
        doors->queue.post(
            [done, problem = std::string(error.what())] { done({.problem = problem}); });
    }
}

/// Takes the ways one after the other. `endsWith` says of a way's result that no other is needed.
void inTurn(std::shared_ptr<const std::vector<EffectWay>> ways,
            std::size_t index,
            bool (*endsWith)(const std::optional<std::string>&),
            EffectDone done) {
    const auto& way = ways->at(index);
    way([ways, index, endsWith, done = std::move(done)](std::optional<std::string> problem) {
        if (index + 1 == ways->size() || endsWith(problem))
            done(std::move(problem));
        else
            inTurn(ways, index + 1, endsWith, done);
    });
}

EffectWay chain(std::vector<EffectWay> ways, bool (*endsWith)(const std::optional<std::string>&)) {
    return [ways = std::make_shared<const std::vector<EffectWay>>(std::move(ways)),
            endsWith](EffectDone done) { inTurn(ways, 0, endsWith, std::move(done)); };
}

} // namespace

Effect
Effect::byFirst(std::vector<BusRequest> calls, std::vector<EffectWay> ways, std::string whyNone) {
    if (calls.empty() && ways.empty())
        return missing(std::move(whyNone));
    return by(EffectWays::firstOf(std::move(calls), std::move(ways)));
}

Effect Effect::byFirst(std::vector<EffectWay> ways, std::string whyNone) {
    return byFirst({}, std::move(ways), std::move(whyNone));
}

QDBusMessage BusTarget::call(const char* method, const QVariantList& values) const {
    auto message = QDBusMessage::createMethodCall(QLatin1String(service),
                                                  QLatin1String(path),
                                                  QLatin1String(interface),
                                                  QLatin1String(method));
    message.setArguments(values);
    return message;
}

void EffectWays::readProgram(const Doors& doors,
                             std::vector<std::string> arguments,
                             Seconds limit,
                             std::function<void(ProgramAnswer answer)> done) {
    startProgram(
        doors, std::move(arguments), OutputReading::Errors::dropped, limit, std::move(done));
}

EffectWay
EffectWays::program(const Doors& doors, std::vector<std::string> arguments, Seconds limit) {
    return [doors, arguments = std::move(arguments), limit](EffectDone done) {
        startProgram(
            doors,
            arguments,
            OutputReading::Errors::merged,
            limit,
            [done = std::move(done)](ProgramAnswer answer) { done(std::move(answer.problem)); });
    };
}

EffectWay EffectWays::detached(const Doors& doors, std::vector<std::string> arguments) {
    return [doors, arguments = std::move(arguments)](EffectDone done) {
        std::optional<std::string> problem;
        try {
            doors->launcher.startDetached(
                {.arguments = arguments, .name = std::string(Paths::lastPart(arguments.front()))});
        } catch (const ProcessError& error) {
            problem = error.what();
        }
        doors->queue.post([done = std::move(done), problem] { done(problem); });
    };
}

EffectWay EffectWays::call(const QDBusConnection& bus, QDBusMessage message, Seconds timeout) {
    return [bus, message = std::move(message), timeout](EffectDone done) {
        callBus(bus, message, timeout, std::move(done));
    };
}

EffectWay EffectWays::firstOf(std::vector<BusRequest> calls, std::vector<EffectWay> ways) {
    auto otherwise = ways.empty() ? EffectWay() : firstOf(std::move(ways));
    if (calls.empty())
        return otherwise;
    return [calls = std::make_shared<const std::vector<BusRequest>>(std::move(calls)),
            otherwise = std::move(otherwise)](EffectDone done) {
        callInTurn(calls, 0, otherwise, std::move(done));
    };
}

EffectWay EffectWays::firstOf(std::vector<EffectWay> ways) {
    return chain(std::move(ways), [](const auto& problem) { return !problem; });
}

EffectWay EffectWays::allOf(std::vector<EffectWay> ways) {
    return chain(std::move(ways), [](const auto& problem) { return problem.has_value(); });
}

EffectWay EffectWays::forgivingCancel(EffectWay way) {
    return [way = std::move(way)](EffectDone done) {
        way([done = std::move(done)](std::optional<std::string> problem) {
            if (problem && isChangeOfMind(*problem))
                problem.reset();
            done(std::move(problem));
        });
    };
}

EffectWay EffectWays::after(const Doors& doors, Seconds delay, EffectWay way) {
    return [doors, delay, way = std::move(way)](EffectDone done) {
        doors->queue.postAfter(delay, [way, done = std::move(done)] { way(done); });
    };
}

} // namespace tessarine
