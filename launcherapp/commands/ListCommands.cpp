#include "launcherapp/commands/ListCommands.h"

#include "LauncherCore/text/Folding.h"
#include "LauncherCore/text/Printable.h"
#include "launcherapp/commands/CommandRuntime.h"
#include "launcherapp/operations/Diagnostics.h"
#include "launcherapp/platform/WorkQueues.h"

#include <fmt/format.h>

#include <optional>

namespace tessarine {

namespace {

constexpr std::size_t shownOfOutput = 160; ///< bytes

std::string beginningOf(const std::string& output) {
    const auto shown = Printable::beginning(output, shownOfOutput);
    return Folding::isUtf8(shown) ? Printable::line(shown) : "<not text>";
}

/// What a result takes in memory, its own frame left out.
std::size_t bytesOf(const ListResult& result) {
    const auto bytes = [](const std::optional<std::string>& text) {
        return text ? text->capacity() : 0;
    };
    std::size_t sum = bytes(result.problem);
    for (const auto& row : result.rows)
        sum += sizeof row + row.title.capacity() + bytes(row.subtitle) + bytes(row.arg) +
               bytes(row.icon);
    return sum;
}

/// What a script's output came to, and how the log tells it.
struct Parsed {
    ListResult result;
    std::optional<std::string> line; ///< nothing where all went well
};

/// Why output is no rows, for the user.
std::string problemOf(const ProcessEnd& end) {
    if (end.isCut)
        return fmt::format("Its script printed more than {} MB", ListCommands::mostOutput >> 20);
    if (end.status != 0)
        return fmt::format("Its script ended with status {}", end.status);
    return "Its script printed no rows; the log says what";
}

Parsed parsed(const ProcessEnd& end) {
    auto rows = end.isCut ? std::nullopt : parseListRows(end.output);
    if (!rows)
        return {.result = {.rows = {}, .problem = problemOf(end)},
                .line = fmt::format("output is not rows or {{items:[…]}}: {}",
                                    beginningOf(end.output))};
    Parsed parsed;
    const auto printed = rows->size();
    if (printed > ListCommands::mostRows) {
        rows->resize(ListCommands::mostRows);
        rows->shrink_to_fit();
        parsed.line = fmt::format("the first {} of {} rows are kept", rows->size(), printed);
    }
    if (rows->empty() && end.status != 0)
        parsed.result.problem = problemOf(end);
    parsed.result.rows = *std::move(rows);
    return parsed;
}

} // namespace

/// One start of a command's script.
struct ListCommands::Run {
    Key key;
    std::function<void()> then;
    std::shared_ptr<RunningProcess> process;
    bool isSuperseded = false; ///< it was ended before its end
};

ListCommands::ListCommands(Services services) : services_(services) {}

ListCommands::~ListCommands() {
    forget();
}

const ListResult* ListCommands::rows(const CommandSpec& command, std::string_view query) const {
    if (const auto failed = failed_.find(command.id); failed != failed_.end())
        return &failed->second;
    const auto found = cache_.find(Key(command.id, query));
    return found == cache_.end() ? nullptr : &found->second;
}

void ListCommands::request(const CommandSpec& command,
                           const std::string& query,
                           std::function<void()> then) {
    requireMainThread(services_.queue);
    const Key key(command.id, query);
    const auto quoted = Printable::line(query);
    if (rows(command, query) || inFlight_.contains(key)) {
        log(command.id, fmt::format("skip (cached or in flight) for \"{}\"", quoted));
        return;
    }
    if (command.script.value_or("").empty()) {
        log(command.id, "no script");
        failed_[command.id].problem = "It has no script";
        return;
    }
    log(command.id, fmt::format("starting for \"{}\"", quoted));
    supersede(command.id);
    const auto run = std::make_shared<Run>(Run{.key = key, .then = std::move(then)});
    // One that runs at each key gets no name, so that the session isn't told of each.
    const Script script{
        .text = *command.script, .shell = command.shell, .argument = query, .name = {}};
    try {
        run->process = services_.programs.start(
            services_.runtime.scriptProcess(script),
            {.errors = OutputReading::Errors::dropped, .keepBytes = mostOutput},
            [this, run, weak = std::weak_ptr(alive_)](ProcessEnd end) {
                if (!weak.expired() && !run->isSuperseded)
                    parse(run, std::move(end));
            });
    } catch (const ProcessError& error) {
        log(command.id, fmt::format("could not start: {}", error.what()));
        failed_[command.id].problem = fmt::format("Its script could not start: {}", error.what());
        return;
    }
    inFlight_.insert(key);
    running_[command.id] = run;
}

/// Only the newest query matters. One whose script has ended is on its way all the same.
void ListCommands::supersede(const std::string& id) {
    const auto found = running_.find(id);
    if (found == running_.end())
        return;
    auto& run = *found->second;
    if (run.process->isRunning()) {
        run.isSuperseded = true;
        run.process->terminate();
        inFlight_.erase(run.key);
    }
    running_.erase(found);
}

void ListCommands::parse(const std::shared_ptr<Run>& run, ProcessEnd end) {
    const auto& id = run->key.first;
    if (const auto last = running_.find(id); last != running_.end() && last->second == run)
        running_.erase(last);
    services_.work.run(
        WorkPriority::userInitiated,
        [end = std::move(end)] { return parsed(end); },
        [this, run, weak = std::weak_ptr(alive_)](Parsed parsed) {
            if (weak.expired() || run->isSuperseded)
                return;
            if (parsed.line)
                log(run->key.first, *parsed.line);
            keep(*run, std::move(parsed.result));
        });
}

void ListCommands::keep(const Run& run, ListResult result) {
    log(run.key.first, fmt::format("cached {} rows, calling back", result.rows.size()));
    inFlight_.erase(run.key);
    keptBytes_ += bytesOf(result);
    cache_[run.key] = std::move(result);
    oldestFirst_.push_back(run.key);
    while (oldestFirst_.size() > mostQueries || keptBytes_ > mostKeptBytes) {
        const auto oldest = cache_.find(oldestFirst_.front());
        keptBytes_ -= bytesOf(oldest->second);
        cache_.erase(oldest);
        oldestFirst_.pop_front();
    }
    if (run.then)
        run.then();
}

void ListCommands::choose(const CommandSpec& command, const ListRow& row) {
    requireMainThread(services_.queue);
    const auto target = row.arg.value_or(row.title);
    if (command.onSelect && !command.onSelect->empty()) {
        services_.runtime.runScript({.text = *command.onSelect,
                                     .shell = command.shell,
                                     .argument = target,
                                     .name = command.id + ".onSelect"});
        return;
    }
    if (auto url = services_.runtime.resolve(target))
        services_.runtime.open({*std::move(url)}, CommandRuntime::Activation::foreground);
    else
        log(command.id, fmt::format("\"{}\" is nothing to open", Printable::line(target)));
}

void ListCommands::forget() {
    requireMainThread(services_.queue);
    while (!running_.empty())
        supersede(std::string(running_.begin()->first));
    alive_ = std::make_shared<char>();
    inFlight_.clear();
    cache_.clear();
    failed_.clear();
    oldestFirst_.clear();
    keptBytes_ = 0;
}

void ListCommands::log(std::string_view id, std::string_view what) const {
    services_.diagnostics.log(fmt::format("list {}: {}", Printable::line(id), what));
}

} // namespace tessarine
