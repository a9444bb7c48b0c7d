// The self-tests of the query engine. Each has a control, which must hold, and decoys.

#include "LauncherCore/query/Keywords.h"
#include "launcherapp/platform/FileStore.h"
#include "launcherapp/query/SearchModel.h"
#include "launcherapp/shell/SupportDirectory.h"
#include "launcherapp/shell/modes/Modes.h"
#include "launcherapp/shell/modes/QueryModes.h"

#include <fmt/format.h>

#include <array>
#include <chrono>
#include <string>
#include <string_view>
#include <vector>

namespace tessarine {

namespace {

constexpr int rounds = 12;
constexpr auto shapes = std::to_array<std::string_view>(
    {"t claude", "t mail", "f claude", "ps saf", "left", "15% of 240"});

/// The checks of one self-test, and what they found.
class Checks {
public:
    void require(bool holds, std::string failure) {
        ++count_;
        if (!holds)
            failures_.push_back(std::move(failure));
    }

    int count() const { return count_; }

    bool passed() const { return failures_.empty(); }

    std::string failureLines() const {
        std::string lines = "FAILED:";
        for (const auto& failure : failures_)
            lines += "\n  " + failure;
        return lines;
    }

private:
    int count_ = 0;
    std::vector<std::string> failures_;
};

void end(ModeContext& context, const Checks& checks, const std::string& pass) {
    context.print(checks.passed() ? pass : checks.failureLines());
    context.finish(checks.passed() ? 0 : 1);
}

/// The rules of the keywords, on a set of their own: nothing of the user's is touched.
void checkKeywords(Checks& checks) {
    using enum BuiltinKeyword;
    const auto answers = [](const Keywords& keywords,
                            BuiltinKeyword keyword,
                            std::string_view query,
                            std::string_view argument) {
        return keywords.argument(keyword, query) == std::string(argument);
    };
    Keywords keywords;
    checks.require(answers(keywords, tabs, "t", ""), "a bare keyword gives no empty argument");
    checks.require(answers(keywords, tabs, "T  x ", "x"), "an argument is not trimmed");
    checks.require(!keywords.argument(tabs, "tab"), "decoy: a longer word is taken for a keyword");
    checks.require(!keywords.setWord(tabs, "tab"), "control: a free word is refused");
    checks.require(answers(keywords, tabs, "tab x", "x"), "a renamed keyword does not answer");
    checks.require(!keywords.argument(tabs, "t x"),
                   "decoy: a renamed keyword answers to its old "
                   "word");
    checks.require(keywords.setWord(tabs, "two words").has_value(),
                   "decoy: a word with a space is accepted");
    checks.require(keywords.setWord(tabs, "who").has_value() && keywords.word(tabs) == "tab",
                   "decoy: a word that another keyword has is accepted");
    checks.require(!keywords.setWord(tabs, "") && keywords.word(tabs) == "t",
                   "an empty word does not restore the default");
    keywords.disable(people);
    checks.require(!keywords.argument(people, "who x"), "decoy: a disabled keyword answers");
    checks.require(!keywords.setWord(slack, "who"), "a disabled keyword does not free its word");
    keywords.enable(people);
    checks.require(keywords.setWord(tabs, "who").has_value(),
                   "decoy: a collision is accepted after enabling again");
    checks.require(answers(keywords, people, "who x", "x") && !keywords.argument(slack, "who x"),
                   "of two keywords with one word not exactly the earlier answers");
}

} // namespace

void QueryModes::selftestRecompute(ModeContext& context, const std::string&) {
    context.model.setQuery(std::string(shapes.front()));
    constexpr Seconds warmUp{3};
    context.queue.postAfter(warmUp, [&context] {
        int recomputes = 0;
        for (int round = 0; round < rounds; ++round) {
            for (const auto shape : shapes) {
                context.model.setQuery("");
                context.model.setQuery(std::string(shape));
                ++recomputes;
            }
        }
        context.model.reset();
        context.print(fmt::format(
            "selftest-recompute: {} warm recomputes across {} query shapes, no recursion",
            recomputes,
            shapes.size()));
        context.finish(0);
    });
}

void QueryModes::selftestAtRest(ModeContext& context, const std::string&) {
    const auto model = context.freshModel();
    Checks checks;
    checks.require(!model->isAtRest(),
                   "decoy: a model that has never built its rows reads as at rest, so the warm "
                   "pass and the first show would draw an empty panel");
    model->reset();
    checks.require(model->isAtRest(),
                   "control: after reset() the model does not read as at rest, so every show would "
                   "rebuild its rows");
    const auto rows = model->rows().size();
    model->setQuery("a");
    checks.require(!model->isAtRest(), "a typed query still reads as at rest");
    end(context,
        checks,
        fmt::format("selftest-at-rest: a fresh model is not at rest, reset() puts it at rest with "
                    "{} rows, and a typed query is not at rest",
                    rows));
}

void QueryModes::selftestSettings(ModeContext& context, const std::string&) {
    Checks checks;
    checkKeywords(checks);
    const auto report =
        checks.passed()
            ? fmt::format("{} checks of the keywords' words, arguments and collisions hold, and "
                          "the decoys among them are refused",
                          checks.count())
            : checks.failureLines();
    context.print("selftest-settings: " + report);
    context.finish(checks.passed() ? 0 : 1);
}

void QueryModes::selftestSupportDirectory(ModeContext& context, const std::string&) {
    constexpr int reads = 2000;
    constexpr double barMillis = 20;
    const SupportDirectory directory(context.files, context.environment);
    const auto& first = directory.path();
    const auto started = context.queue.uptime();
    bool stable = true;
    for (int i = 0; i < reads; ++i)
        stable = stable && directory.path() == first;
    const double millis =
        std::chrono::duration<double, std::milli>(context.queue.uptime() - started).count();
    Checks checks;
    checks.require(stable, "the path changed from one read to the next");
    checks.require(millis < barMillis,
                   fmt::format("{} reads took {:.1f} ms; a create-once read should be under 20 ms "
                               "even on a busy disk",
                               reads,
                               millis));
    if (!context.files.info(first)) {
        context.print(fmt::format(
            "selftest-supportdir: NOT MEASURED, {} could not be made, so nothing shows that it is "
            "made only once",
            first));
        context.finish(2);
        return;
    }
    end(context,
        checks,
        fmt::format("selftest-supportdir: {} reads took {:.1f} ms and gave one stable path; the "
                    "folder is there",
                    reads,
                    millis));
}

} // namespace tessarine
