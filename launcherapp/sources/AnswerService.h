#pragma once

#include "LauncherCore/answers/Answers.h"
#include "LauncherCore/text/Formats.h"
#include "launcherapp/platform/Subscription.h"
#include "launcherapp/query/RowFamilies.h"
#include "launcherapp/query/RowVerbs.h"
#include "launcherapp/query/rows/CalcHistoryRows.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tessarine {

class CalcStore;
class MainQueue;
class Prefs;
class Rates;
class WorkQueues;
class ZoneStore;

/// Everything that the answers are worked out with, as it stands now: settings, rates, clocks,
/// saved figures, and how this user writes numbers. Main thread only.
class AnswerService {
public:
    struct Services {
        MainQueue& queue;
        Prefs& prefs;
        const Rates& rates;
        const ZoneStore& zones;
        CalcStore& calculations;
    };

    AnswerService(Services services, const Formats::Locales& locales);
    AnswerService(const AnswerService&) = delete;
    AnswerService& operator=(const AnswerService&) = delete;

    /// Builds the tables in the background, so that the first question finds them.
    static void warm(WorkQueues& work);

    std::optional<Answer> answer(std::string_view query);

    AnswerRows rows(std::string_view query, const RowVerbs& verbs, const CalcHistoryVerbs& history);

    /// The list of the history's keyword.
    Rows historyRows(std::string_view argument,
                     const RowVerbs& verbs,
                     const CalcHistoryVerbs& history) const;
    std::vector<RowAction> historyActions(const ResultRow& row,
                                          const RowVerbs& verbs,
                                          const CalcHistoryVerbs& history) const;
    std::optional<std::string> historyCopyText(const ResultRow& row) const;

private:
    Answers::Given given(double now, const std::string& homeCurrency);
    void readCalculator();
    void keep(const std::string& expression, const Answer& answer);
    CalcHistoryRowSources historySources(const RowVerbs& verbs,
                                         const CalcHistoryVerbs& history) const;

    Services services_;
    Formats formats_;
    Calc::Context calculator_;
    Subscription filed_;
    Subscription settings_;
};

} // namespace tessarine
