#include "launcherapp/query/rows/AnswerRows.h"

#include "LauncherCore/answers/Cooking.h"
#include "LauncherCore/answers/Currency.h"
#include "LauncherCore/answers/Units.h"
#include "LauncherCore/text/Folding.h"

#include <cstdint>
#include <utility>
#include <vector>

namespace tessarine {

namespace {

constexpr std::int64_t answerScore = 10'000;
constexpr std::int64_t fanScore = 9900; ///< and one less each: fans keep the order of their tables

/// A row that copies the figure and files how it came about.
ResultRow answerRow(std::string id,
                    const Answer& answer,
                    std::string_view query,
                    const AnswerRowSources& sources) {
    return {.id = std::move(id),
            .kind = RowKind::calc,
            .title = answer.value,
            .subtitle = answer.detail,
            .symbol = answer.symbol,
            .primary =
                [copy = sources.history.verbs.copyText,
                 keep = sources.keep,
                 expression = std::string(query),
                 answer] {
                    if (copy)
                        copy(answer.value);
                    if (keep)
                        keep(expression, answer);
                },
            .primaryLabel = "copy",
            .group = std::string(RowGroup::answers),
            .source = answer.source,
            .glyph = answer.glyph,
            .score = answerScore};
}

Rows fanRows(std::string_view idPrefix,
             const std::vector<Answer>& answers,
             std::string_view query,
             const AnswerRowSources& sources) {
    Rows rows;
    for (const auto& answer : answers) {
        auto id = std::string(idPrefix) + answer.value + " " + answer.detail;
        auto& row = rows.emplace_back(answerRow(std::move(id), answer, query, sources));
        row.score = fanScore - static_cast<std::int64_t>(rows.size());
    }
    return rows;
}

std::vector<Answer> measuresFan(std::string_view query, const Answers::Given& given) {
    auto fan = Answers::unitFan(query, given.measure, given.formats);
    return fan.empty() ? Cooking::fan(query, given.measure, given.formats) : fan;
}

/// Codes of three letters that are units too ("5 cup", "70 kgs") are hardly meant as money.
bool isMoney(const CurrencyReading& reading, MeasureSystem measure) {
    return !Folding::equalIgnoringCase(reading.typed, reading.code) ||
           !Answers::readUnit(reading.typed, measure);
}

} // namespace

AnswerRows answerRows(std::string_view query, const AnswerRowSources& sources) {
    const auto& given = sources.given;
    AnswerRows rows;
    const auto answer = Answers::answer(query, given);
    if (answer) {
        rows.main = answerRow("answer", *answer, query, sources);
        rows.earlier = earlierCalculationRows(sources.history, query, sources.earlierRows);
    } else {
        rows.unitFan = fanRows("unit:", measuresFan(query, given), query, sources);
    }
    // The money of a figure alone is read in the currency strip, not here: every number would be.
    const auto lowered = Folding::lowercase(query);
    rows.currencyReading = Answers::currencyReading(lowered, given.homeCurrency);
    if (rows.currencyReading && !isMoney(*rows.currencyReading, given.measure))
        rows.currencyReading.reset();
    if (rows.currencyReading)
        rows.currencyFan = fanRows("money:",
                                   Answers::currencyFan(lowered,
                                                        given.rates,
                                                        sources.favoriteCurrencies,
                                                        given.homeCurrency,
                                                        given.now,
                                                        Answers::BareNumbers::ignored,
                                                        given.formats),
                                   query,
                                   sources);
    rows.zones =
        fanRows("clock:", TimeZones::answers(query, sources.clocks, given.formats), query, sources);
    return rows;
}

} // namespace tessarine
