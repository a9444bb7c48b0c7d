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

std::string shellOf(const CommandSpec& command) {
    return command.shell.value_or(std::string(CommandRuntime::usualShell));
}

std::string beginningOf(const std::string& output) {
    const auto shown = Printable::beginning(output, shownOfOutput);
    return Folding::isUtf8(shown) ? Printable::line(shown) : "<not text>";
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

const std::vector<ListRow>* ListCommands::rows(const CommandSpec& command,
                                               std::string_view query) const {
    const auto found = cache_.find(Key(command.id, query));
    return found == cache_.end() ? nullptr : &found->second.rows;
}

void ListCommands::request(const CommandSpec& command,
                           const std::string& query,
                           std::function<void()> then) {
    const Key key(command.id, query);
    const auto log = [&](std::string_view what) {
        services_.diagnostics.log(fmt::format("list {}: {}", command.id, what));
    };
    const auto quoted = Printable::line(query);
    if (cache_.contains(key) || inFlight_.contains(key)) {
        log(fmt::format("skip (cached or in flight) for \"{}\"", quoted));
        return;
    }
    if (!command.script) {
        log("no script");
        return;
    }
    log(fmt::format("starting for \"{}\"", quoted));
    supersede(command.id);
    const auto run = std::make_shared<Run>(Run{.key = key, .then = std::move(then)});
    try {
        run->process = services_.programs.start(
            services_.runtime.scriptProcess(*command.script, shellOf(command), query),
            {.errors = OutputReading::Errors::dropped, .keepBytes = mostOutput},
            [this, run, weak = std::weak_ptr(alive_)](ProcessEnd end) {
                if (!weak.expired() && !run->isSuperseded)
                    parse(run, std::move(end));
            });
    } catch (const ProcessError& error) {
        log(fmt::format("could not start: {}", error.what()));
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
    struct Parsed {
        std::optional<std::vector<ListRow>> rows;
        std::string beginning; ///< of output that is no rows
        std::size_t outputBytes = 0;
    };

    if (const auto last = running_.find(run->key.first);
        last != running_.end() && last->second == run)
        running_.erase(last);
    services_.work.run(
        WorkPriority::userInitiated,
        [end = std::move(end)] {
            Parsed parsed{.outputBytes = end.output.size()};
            if (!end.isCut)
                parsed.rows = parseListRows(end.output);
            if (!parsed.rows)
                parsed.beginning = beginningOf(end.output);
            return parsed;
        },
        [this, run, weak = std::weak_ptr(alive_)](Parsed parsed) {
            if (weak.expired() || run->isSuperseded)
                return;
            if (!parsed.rows)
                services_.diagnostics.log(
                    fmt::format("list {}: output is not rows or {{items:[…]}}: {}",
                                run->key.first,
                                parsed.beginning));
            const auto bytes = parsed.rows ? parsed.outputBytes : 0;
            keep(*run,
                 {.rows = std::move(parsed.rows).value_or(std::vector<ListRow>()),
                  .outputBytes = bytes});
        });
}

void ListCommands::keep(const Run& run, Kept kept) {
    services_.diagnostics.log(
        fmt::format("list {}: cached {} rows, calling back", run.key.first, kept.rows.size()));
    inFlight_.erase(run.key);
    keptOutput_ += kept.outputBytes;
    cache_[run.key] = std::move(kept);
    oldestFirst_.push_back(run.key);
    while (oldestFirst_.size() > 1 &&
           (oldestFirst_.size() > mostQueries || keptOutput_ > mostKeptOutput)) {
        const auto oldest = cache_.find(oldestFirst_.front());
        keptOutput_ -= oldest->second.outputBytes;
        cache_.erase(oldest);
        oldestFirst_.pop_front();
    }
    if (run.then)
        run.then();
}

void ListCommands::choose(const CommandSpec& command, const ListRow& row) {
    const auto target = row.arg.value_or(row.title);
    if (command.onSelect && !command.onSelect->empty()) {
        services_.runtime.runScript(
            *command.onSelect, shellOf(command), target, command.id + ".onSelect");
        return;
    }
    if (auto url = services_.runtime.resolve(target))
        services_.runtime.open({*std::move(url)}, CommandRuntime::Activation::foreground);
    else
        services_.diagnostics.log(
            fmt::format("list {}: \"{}\" is nothing to open", command.id, Printable::line(target)));
}

void ListCommands::forget() {
    while (!running_.empty())
        supersede(std::string(running_.begin()->first));
    alive_ = std::make_shared<char>();
    inFlight_.clear();
    cache_.clear();
    oldestFirst_.clear();
    keptOutput_ = 0;
}

} // namespace tessarine
