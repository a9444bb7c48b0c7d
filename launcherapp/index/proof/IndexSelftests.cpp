#include "launcherapp/index/proof/IndexSelftests.h"

#include "LauncherCore/index/NameIndex.h"
#include "LauncherCore/query/Matcher.h"
#include "launcherapp/index/IndexRoots.h"

#include <fmt/format.h>

#include <array>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tessarine {

namespace {

using Verdict = SelftestResult::Verdict;

/// What people type and what wears a scan out: rare, common and absent, short and long, with
/// blanks, repeating, and one that stands at many words' starts.
constexpr auto needles = std::to_array<std::string_view>({
    "e",      "s",       "in",         "re",         "doc",           "img",
    "aaa",    "sct",     "test",       "main",       "report",        "readme",
    "config", "a b",     "new folder", "2024",       ".pdf",          "_test",
    "qzx",    "invoice", "clipboard",  "dictionary", "final version", "zzzzzzzzzzzz",
});

/// Queries of one and of several words, for the pre-filter.
constexpr auto queries = std::to_array<std::string_view>(
    {"e", "sct", "re", "img", "mai", "a b", "ab b", "new fol", "re do", "inv 20", "main.c"});

/// Longer than two vectors of 64 bytes, so that needles can be laid across every edge.
std::string madeUpText() {
    std::string text;
    for (int i = 0; i < 70; ++i) {
        text += std::string(static_cast<std::size_t>(i % 67), 'x');
        text += i % 3 == 0 ? "aaaa" : i % 3 == 1 ? "new folder" : "report (final version)";
        text += NameScan::terminator;
    }
    return text + "the last report" + NameScan::terminator;
}

std::vector<std::size_t>
placesBy(NameScan::Method method, std::string_view needle, std::string_view text) {
    const NameScan::Finder finder(needle, method);
    std::vector<std::size_t> places;
    for (auto at = finder.next(text, 0); at; at = finder.next(text, *at + 1))
        places.push_back(*at);
    return places;
}

std::vector<std::size_t> placesByMemmem(std::string_view needle, std::string_view text) {
    std::vector<std::size_t> places;
    for (std::size_t from = 0; from < text.size();) {
        const auto* place = static_cast<const char*>(
            ::memmem(text.data() + from, text.size() - from, needle.data(), needle.size()));
        if (!place)
            break;
        places.push_back(static_cast<std::size_t>(place - text.data()));
        from = places.back() + 1;
    }
    return places;
}

class IndexSelftest {
public:
    IndexSelftest(const NameIndex& live, ScanTiming timing, const std::function<double()>& clock)
        : live_(live), timing_(timing), clock_(clock) {}

    SelftestResult run() {
        if (auto failure = compareScans(live_.blob()))
            return refuted(*failure);
        if (auto failure = compareScans(madeUpText()))
            return refuted(*failure);
        if (comparesEqual())
            return refuted("selftest-index: the comparison itself cannot fail; results are not "
                           "being compared");
        if (auto failure = checkPreFilter())
            return refuted(*failure);
        return {.verdict = Verdict::proved,
                .report = fmt::format("selftest-index: {} needles, every place in {} names found "
                                      "alike by memmem, by the table and by the vectors; the "
                                      "pre-filter passed all {} matches and rejected {} names",
                                      needles.size(),
                                      live_.size(),
                                      matches_,
                                      rejected_) +
                          timings_};
    }

private:
    SelftestResult refuted(std::string report) const {
        return {.verdict = Verdict::refuted, .report = std::move(report) + timings_};
    }

    template <typename Find> std::vector<std::size_t> timed(Find find, double& milliseconds) {
        const double started = clock_();
        auto places = find();
        milliseconds = (clock_() - started) * 1000;
        return places;
    }

    std::optional<std::string> compareScans(std::string_view text) {
        for (const auto needle : needles) {
            double table = 0;
            double vectors = 0;
            double reference = 0;
            const auto expected = timed([&] { return placesByMemmem(needle, text); }, reference);
            const auto byTable =
                timed([&] { return placesBy(NameScan::Method::horspool, needle, text); }, table);
            const auto byVectors =
                timed([&] { return placesBy(NameScan::Method::best, needle, text); }, vectors);
            if (timing_ == ScanTiming::yes && text.data() == live_.blob().data()) {
                timings_ += fmt::format(
                    "\n  {:<12} horspool {:6.3f} ms   memmem {:6.3f} ms", needle, table, reference);
                timings_ += fmt::format("\n  {:<12} vectors  {:6.3f} ms", needle, vectors);
            }
            if (byTable != expected || byVectors != expected)
                return fmt::format("selftest-index: MISMATCH on \"{}\": memmem found {} places, "
                                   "horspool {}, the vectors {}",
                                   needle,
                                   expected.size(),
                                   byTable.size(),
                                   byVectors.size());
        }
        return std::nullopt;
    }

    /// The control: two different needles must not be found alike.
    static bool comparesEqual() {
        const std::string text = "clipboard\ndictionary\nmy clipboard\n";
        return placesBy(NameScan::Method::best, "clipboard", text) ==
               placesByMemmem("dictionary", text);
    }

    std::optional<std::string> checkPreFilter() {
        const std::vector<std::string> madeUp{
            "aB", "New Folder", "Some Common Text", "invoice 2024.pdf", "readme", "ReadDocs"};
        for (const auto query : queries) {
            const Matcher::Query folded(query);
            const auto needle = Matcher::normalize(query);
            const auto check = [&](std::string_view name, std::string_view norm) {
                const bool passes = NameScan::couldMatch(needle, norm);
                rejected_ += passes ? 0 : 1;
                const bool isMatch = folded.score(name).has_value();
                matches_ += isMatch ? 1 : 0;
                return passes || !isMatch;
            };
            for (const auto& name : madeUp) {
                if (!check(name, Matcher::normalize(name)))
                    return dropped(query, name);
            }
            for (NameIndex::Position i = 0; i < live_.size(); ++i) {
                if (!check(live_.name(i), live_.norm(i)))
                    return dropped(query, live_.name(i));
            }
        }
        if (rejected_ == 0)
            return "selftest-index: the pre-filter rejected nothing; it is inert";
        return std::nullopt;
    }

    static std::string dropped(std::string_view query, std::string_view name) {
        return fmt::format(
            "selftest-index: PREFILTER DROPPED A MATCH: \"{}\" names \"{}\"", query, name);
    }

    const NameIndex& live_;
    const ScanTiming timing_;
    const std::function<double()>& clock_;
    std::size_t matches_ = 0;
    std::size_t rejected_ = 0;
    std::string timings_;
};

} // namespace

SelftestResult
indexSelftest(const NameIndex& live, ScanTiming timing, const std::function<double()>& clock) {
    return IndexSelftest(live, timing, clock).run();
}

SelftestResult indexDutySelftest() {
    constexpr double bar = 0.1;
    // Walks as they were measured on real machines, in seconds.
    constexpr auto walks = std::to_array<double>({1.0, 2.0, 10.0, 20.0, 53.8, 62.7, 87.2, 307.0});
    const auto duty = [](double walk, double hold) { return walk / (walk + hold); };
    double highest = 0;
    for (const double walk : walks) {
        const double share = duty(walk, IndexRoots::holdSeconds(walk));
        highest = std::max(highest, share);
        if (share > bar)
            return {.verdict = Verdict::refuted,
                    .report = fmt::format("selftest-index-duty: a {:.0f}s walk would hold {:.0f}% "
                                          "of a core",
                                          walk,
                                          share * 100)};
    }
    // The decoy: without a wait the bar must be missed.
    if (duty(walks.front(), 0) <= bar)
        return {.verdict = Verdict::refuted,
                .report = "selftest-index-duty: a zero wait was not caught"};
    return {.verdict = Verdict::proved,
            .report = fmt::format("selftest-index-duty: {} walks from {:.0f} to {:.0f} s hold at "
                                  "most {:.1f}% of a core, and a zero wait is still caught as 100%",
                                  walks.size(),
                                  walks.front(),
                                  walks.back(),
                                  highest * 100)};
}

} // namespace tessarine
