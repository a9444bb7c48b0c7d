#include "launcherapp/query/rows/AnswerRows.h"

#include "LauncherCore/answers/Cooking.h"
#include "LauncherCore/answers/Currency.h"
#include "LauncherCore/answers/Units.h"
#include "LauncherCore/text/Folding.h"
#include "launcherapp/query/rows/CopyingRows.h"

#include <cstdint>
#include <utility>
#include <vector>

namespace tessarine {

namespace {

constexpr std::int64_t answerScore = 10'000;
/// Of a fan's first row, and one less each: fans keep the order of their tables, and stand below
/// each other. None has as many rows as lie between.
constexpr std::int64_t moneyScore = 9900;
constexpr std::int64_t unitScore = 9600;
constexpr std::int64_t clockScore = 9300;

/// A row that copies the figure and files how it came about.
ResultRow answerRow(std::string id,
                    const Answer& answer,
                    std::string_view query,
                    const AnswerRowSources& sources) {
    return {.id = std::move(id),
            .kind = RowKind::calc,
            .title = answer.value,
            .subtitle = copyingSubtitle(answer.detail, sources.history.verbs),
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

struct Fan {
    std::string_view idPrefix;
    std::int64_t score = 0;
    std::vector<Answer> answers;
};

Rows fanRows(const Fan& fan, std::string_view query, const AnswerRowSources& sources) {
    Rows rows;
    for (const auto& answer : fan.answers) {
        auto id = std::string(fan.idPrefix) + answer.value + " " + answer.detail;
        auto& row = rows.emplace_back(answerRow(std::move(id), answer, query, sources));
        row.score = fan.score - static_cast<std::int64_t>(rows.size());
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
    if (answer)
        rows.main = answerRow("answer", *answer, query, sources);
    if (answer && answer->number)
        rows.earlier = earlierCalculationRows(sources.history, query, sources.earlierRows);

    // With a target the fan is the answer itself over again.
    if (!answer || answer->kind == AnswerKind::math)
        rows.unitFan = fanRows({"unit:", unitScore, measuresFan(query, given)}, query, sources);

    // A figure alone is money in the currency strip, and has no rows: every number would have.
    const auto lowered = Folding::lowercase(query);
    rows.currencyReading =
        Answers::amountReading(lowered, given.homeCurrency, Answers::BareNumbers::read);
    if (rows.currencyReading && !isMoney(*rows.currencyReading, given.measure))
        rows.currencyReading.reset();
    if (rows.currencyReading) {
        auto fan = Answers::currencyFan(lowered,
                                        given.rates,
                                        sources.favoriteCurrencies,
                                        given.homeCurrency,
                                        given.now,
                                        Answers::BareNumbers::ignored,
                                        given.formats);
        rows.currencyFan = fanRows({"money:", moneyScore, std::move(fan)}, query, sources);
    }
    auto clocks = TimeZones::answers(query, sources.clocks, given.formats);
    rows.zones = fanRows({"clock:", clockScore, std::move(clocks)}, query, sources);
    return rows;
}

} // namespace tessarine
