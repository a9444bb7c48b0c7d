#include "launcherapp/sources/AnswerService.h"

#include "LauncherCore/answers/Cooking.h"
#include "LauncherCore/answers/Emoji.h"
#include "LauncherCore/answers/Places.h"
#include "LauncherCore/answers/TimeZones.h"
#include "LauncherCore/answers/Units.h"
#include "launcherapp/platform/WorkQueues.h"
#include "launcherapp/query/rows/AnswerRows.h"
#include "launcherapp/shell/Prefs.h"
#include "launcherapp/sources/CalcStore.h"
#include "launcherapp/sources/Rates.h"
#include "launcherapp/sources/ZoneStore.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace tessarine {

AnswerService::AnswerService(Services services, const Formats::Locales& locales)
    : services_(services), formats_(locales, Zone::utc()) {
    readCalculator();
    filed_ = services_.calculations.onChange([this] { readCalculator(); });
    settings_ = services_.prefs.onChange([this](std::string_view key) {
        if (key == services_.prefs.angleMode.key())
            readCalculator();
    });
}

void AnswerService::warm(WorkQueues& work) {
    work.run(WorkPriority::utility, [] {
        TimeZones::warm();
        return true;
    });
    work.run(WorkPriority::utility, [] {
        Places::warm();
        Emoji::warm();
        Answers::readUnit({}, MeasureSystem::usCustomary);
        Cooking::ingredient({});
        return true;
    });
}

void AnswerService::readCalculator() {
    calculator_ = {.angle = services_.prefs.angleMode(),
                   .variables = services_.calculations.variables()};
}

std::optional<Answer> AnswerService::answer(std::string_view query) {
    const auto home = services_.prefs.homeCurrency();
    return Answers::answer(query, given(services_.queue.now(), home));
}

AnswerRows AnswerService::rows(std::string_view query,
                               const RowVerbs& verbs,
                               const CalcHistoryVerbs& history) {
    const auto& prefs = services_.prefs;
    const double now = services_.queue.now();
    const auto home = prefs.homeCurrency();
    const auto favorites = prefs.favoriteCurrencies();
    const auto clocks = services_.zones.context(now);
    const auto earlier = prefs.calcShowRecent() ? prefs.calcRecentRows() : 0;
    return answerRows(query,
                      {.given = given(now, home),
                       .clocks = clocks,
                       .favoriteCurrencies = favorites,
                       .history = historySources(verbs, history),
                       .earlierRows = static_cast<std::size_t>(std::max<std::int64_t>(0, earlier)),
                       .keep = [this](const std::string& expression, const Answer& answer) {
                           keep(expression, answer);
                       }});
}

Answers::Given AnswerService::given(double now, const std::string& homeCurrency) {
    const auto here = services_.zones.here().identifier;
    if (here != formats_.zone().identifier())
        if (const auto zone = Zone::named(here))
            formats_ = formats_.in(*zone);
    return {.rates = services_.rates.table().get(),
            .now = now,
            .calculator = calculator_,
            .measure = services_.prefs.measureSystem(),
            .homeCurrency = homeCurrency,
            .formats = formats_};
}

void AnswerService::keep(const std::string& expression, const Answer& answer) {
    if (!answer.number)
        return; // words are no calculation
    services_.calculations.record({.expression = expression,
                                   .formatted = answer.value,
                                   .value = *answer.number,
                                   .detail = answer.detail,
                                   .kind = answer.kind,
                                   .assignedName = answer.name});
}

Rows AnswerService::historyRows(std::string_view argument,
                                const RowVerbs& verbs,
                                const CalcHistoryVerbs& history) const {
    return calcHistoryRows(historySources(verbs, history), argument);
}

std::vector<RowAction> AnswerService::historyActions(const ResultRow& row,
                                                     const RowVerbs& verbs,
                                                     const CalcHistoryVerbs& history) const {
    return calcHistoryActions(row, historySources(verbs, history));
}

std::optional<std::string> AnswerService::historyCopyText(const ResultRow& row) const {
    return calcHistoryCopyText(row, services_.calculations.history());
}

CalcHistoryRowSources AnswerService::historySources(const RowVerbs& verbs,
                                                    const CalcHistoryVerbs& history) const {
    return {.history = services_.calculations.history(),
            .isEnabled = services_.calculations.isEnabled(),
            .verbs = verbs,
            .calculations = history};
}

} // namespace tessarine
