#include "launcherapp/query/rows/CommandRows.h"

#include "LauncherCore/commands/WindowVerb.h"
#include "LauncherCore/query/Matcher.h"
#include "LauncherCore/text/Folding.h"

#include <algorithm>
#include <utility>

namespace tessarine {

namespace {

/// A command's own word stands above even an exact name of anything else.
constexpr std::int64_t wordScore = Matcher::exact + 1;
constexpr std::int64_t wordBeginningScore = 8200;

std::vector<std::string> wordsOf(const CommandSpec& command) {
    std::vector<std::string> words = command.aliases.value_or(std::vector<std::string>{});
    if (command.keyword)
        words.insert(words.begin(), *command.keyword);
    std::erase(words, "");
    return words;
}

/// A query in the two forms in which commands are compared with it.
struct CommandQuery {
    explicit CommandQuery(std::string_view query)
        : folded(query), lowered(Folding::lowercase(query)) {}

    Matcher::Query folded;
    std::string lowered;
};

std::int64_t scoreOfWord(const CommandQuery& query, const std::string& word) {
    const auto lowered = Folding::lowercase(word);
    if (lowered == query.lowered)
        return wordScore;
    const auto match = query.folded.score(word);
    const auto score = match ? match->score : 0;
    return lowered.starts_with(query.lowered) ? std::max(score, wordBeginningScore) : score;
}

std::int64_t bestScore(const CommandQuery& query, const CommandSpec& command) {
    const auto match = query.folded.score(command.name);
    std::int64_t best = match ? match->score : 0;
    const auto consider = [&](const std::string& word) {
        if (!word.empty())
            best = std::max(best, scoreOfWord(query, word));
    };
    if (command.keyword)
        consider(*command.keyword);
    if (command.aliases)
        std::ranges::for_each(*command.aliases, consider);
    return best;
}

std::string_view label(CommandKind kind) {
    switch (kind) {
    case CommandKind::open:
    case CommandKind::app:
        return "open";
    case CommandKind::search:
    case CommandKind::files:
    case CommandKind::list:
        return "search";
    case CommandKind::jump:
        return "jump";
    case CommandKind::script:
    case CommandKind::system:
        return "run";
    }
    return "run";
}

/// Such a command is a filtered search: there is nothing to run.
bool isList(CommandKind kind) {
    return kind == CommandKind::files || kind == CommandKind::list;
}

std::string subtitleOf(const CommandSpec& command, const CommandRowSources& sources) {
    if (auto detail = sources.detail ? sources.detail(command) : std::nullopt)
        return *std::move(detail);
    if (isList(command.kind) && !wordToType(command))
        return "It needs a keyword, to be followed by what you look for";
    return command.keyword.value_or("");
}

std::function<void()> actionOf(const CommandSpec& command,
                               const CommandRowSources& sources,
                               const std::string& argument) {
    if (!isList(command.kind))
        return [run = sources.verbs.runCommand, command, argument] {
            if (run)
                run(command, argument);
        };
    const auto word = wordToType(command);
    if (!word || !sources.typeWord)
        return {};
    return [type = sources.typeWord, text = *word] { type(text); };
}

std::optional<RowCreditSpec> creditOf(const CommandSpec& command) {
    const auto kinds = RowCreditSpec::creditedKinds();
    if (std::ranges::find(kinds, command.kind) == kinds.end())
        return std::nullopt;
    return RowCreditSpec::forCommand(command);
}

} // namespace

std::vector<ResultRow> commandRows(std::span<const CommandSpec> commands,
                                   const CommandRowSources& sources,
                                   std::string_view query) {
    const CommandQuery typed(query);
    std::vector<ResultRow> rows;
    for (const auto& command : commands) {
        const auto score = bestScore(typed, command);
        if (score < 1)
            continue;
        auto row = commandRow(command, sources);
        row.score = score;
        rows.push_back(std::move(row));
    }
    return rows;
}

std::optional<std::string> wordToType(const CommandSpec& command) {
    if (!command.takesArgument())
        return std::nullopt;
    for (const auto& word : wordsOf(command)) {
        if (word.find(' ') == std::string::npos)
            return word + " ";
    }
    return std::nullopt;
}

ResultRow commandRow(const CommandSpec& command,
                     const CommandRowSources& sources,
                     const std::string& argument) {
    return {
        .id = std::string(commandRowPrefix) + command.id,
        .kind = RowKind::command,
        .title = command.name,
        .subtitle = subtitleOf(command, sources),
        .symbol = command.defaultSymbol(),
        .primary = actionOf(command, sources, argument),
        .primaryLabel = std::string(label(command.kind)),
        .group = std::string(RowGroup::commands),
        .credit = creditOf(command),
    };
}

std::optional<Engagement> engagement(std::span<const CommandSpec> commands,
                                     std::string_view query) {
    const auto blank = query.find(' ');
    if (blank == std::string_view::npos)
        return std::nullopt;
    const auto word = Folding::lowercase(query.substr(0, blank));
    for (const auto& command : commands) {
        if (!command.takesArgument())
            continue;
        const auto words = wordsOf(command);
        const auto isWord = [&](const std::string& own) { return Folding::lowercase(own) == word; };
        if (std::ranges::any_of(words, isWord))
            return Engagement{.command = command,
                              .argument = std::string(Folding::trimmed(query.substr(blank + 1)))};
    }
    return std::nullopt;
}

std::vector<ResultRow> engagedRows(const CommandSpec& command,
                                   const CommandRowSources& sources,
                                   const std::string& argument) {
    auto row = commandRow(command, sources, argument);
    // What keeps the command from working comes before what it would work on.
    if (!sources.detail || !sources.detail(command))
        row.subtitle = argument;
    return {std::move(row)};
}

std::vector<ResultRow> featureRows(const Keywords& keywords,
                                   std::string_view query,
                                   const std::function<bool(BuiltinKeyword)>& isThere,
                                   const std::function<void(const std::string&)>& typeWord) {
    const Matcher::Query folded(query);
    std::vector<ResultRow> rows;
    for (const auto& info : Keywords::all()) {
        if (!keywords.isEnabled(info.keyword) || !isThere(info.keyword))
            continue;
        const std::string_view alternatives[] = {info.name};
        std::int64_t score = 0;
        for (const auto& name : keywords.matchNames(info.keyword, alternatives)) {
            if (const auto match = folded.score(name))
                score = std::max(score, match->score);
        }
        if (score < 1)
            continue;
        const auto word = keywords.word(info.keyword);
        const bool takesArgument = !windowVerb(info.keyword);
        if (!takesArgument && Folding::lowercase(query) == Folding::lowercase(word))
            continue; // what the word does stands there already
        rows.push_back({
            .id = "keyword:" + std::string(info.rawValue),
            .kind = RowKind::command,
            .title = std::string(info.name),
            .subtitle = "type " + word + (takesArgument ? " and what you look for" : ""),
            .symbol = "text.cursor",
            .primary = [typeWord, text = word + " "] { typeWord(text); },
            .primaryLabel = "type it",
            .group = std::string(RowGroup::commands),
            .score = score,
        });
    }
    return rows;
}

} // namespace tessarine
