#include "launcherapp/shell/modes/SearchMode.h"

#include "launcherapp/catalog/AppCatalog.h"
#include "launcherapp/query/CreditResolver.h"
#include "launcherapp/query/SearchModel.h"
#include "launcherapp/shell/modes/Modes.h"

#include <nlohmann/json.hpp>

namespace tessarine {

namespace {

using Json = nlohmann::ordered_json;

/// The catalog's first scan may still be reading a slow disk: it is waited for as long as contacts
/// are, 299 times 50 ms.
constexpr Seconds retryAfter{0.05};
constexpr int lastAttempt = 299;

void printLine(ModeContext& context, const Json& object) {
    // A name from a foreign file may hold anything; the line stays JSON whatever it is.
    context.print(object.dump(-1, ' ', false, Json::error_handler_t::replace));
}

void printRow(ModeContext& context, const ResultRow& row) {
    Json object{{"id", row.id},
                {"kind", name(row.kind)},
                {"group", row.group},
                {"title", row.title},
                {"subtitle", row.subtitle}};
    if (row.credit) {
        const auto& credit = context.credits.resolve(*row.credit);
        object["credit"] = credit.name;
        object["creditFound"] = credit.found;
    }
    printLine(context, object);
}

void search(ModeContext& context, const std::string& query, int attempt) {
    const bool scanned = context.catalog.lastScan().has_value();
    if (!scanned && attempt < lastAttempt) {
        context.queue.postAfter(
            retryAfter, [&context, query, attempt] { search(context, query, attempt + 1); });
        return;
    }
    context.model.setQuery("");
    context.model.setQuery(query);
    if (!scanned)
        printLine(context,
                  {{"note",
                    "NOT MEASURED: the application catalog never loaded, so applications cannot "
                    "appear below"}});
    for (const auto& row : context.model.rows())
        printRow(context, row);
    context.finish(0);
}

} // namespace

void SearchMode::run(ModeContext& context, const std::string& query) {
    search(context, query, 0);
}

} // namespace tessarine
