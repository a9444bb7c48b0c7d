#include "launcherapp/shell/modes/SearchMode.h"

#include "launcherapp/catalog/AppCatalog.h"
#include "launcherapp/commands/ListCommands.h"
#include "launcherapp/query/CreditResolver.h"
#include "launcherapp/query/SearchModel.h"
#include "launcherapp/shell/modes/CommandModes.h"
#include "launcherapp/shell/modes/ModeWaits.h"
#include "launcherapp/shell/modes/Modes.h"

#include <nlohmann/json.hpp>

#include <string_view>

namespace tessarine {

namespace {

using Json = nlohmann::ordered_json;

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

void printNote(ModeContext& context, std::string_view what) {
    printLine(context, {{"note", "NOT MEASURED: " + std::string(what)}});
}

/// Whether a command's script still prints what is to be listed.
bool awaitsRows(const ModeContext& context) {
    return context.commands && context.commands->lists.isWaiting();
}

void search(ModeContext& context, const std::string& query) {
    context.model.setQuery("");
    context.model.setQuery(query);
    ModeWaits::until(
        context,
        [&context] { return !awaitsRows(context); },
        [&context] {
            if (!context.catalog.lastScan())
                printNote(context,
                          "the application catalog never loaded, so applications cannot appear "
                          "below");
            if (awaitsRows(context))
                printNote(context,
                          "the command's script still runs, so its rows cannot appear below");
            for (const auto& row : context.model.rows())
                printRow(context, row);
            context.finish(0);
        });
}

} // namespace

void SearchMode::run(ModeContext& context, const std::string& query) {
    ModeWaits::whenReady(context, [&context, query] { search(context, query); });
}

} // namespace tessarine
