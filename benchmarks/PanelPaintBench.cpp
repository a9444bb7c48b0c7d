// What the panel's view costs for one keystroke: taking over a new list of nine rows, each with
// marked characters, a subtitle and a credit, and painting it at one pixel a point. Bar: 2 ms in
// the median. Nothing is sent to a display.

#include "launcherapp/panel/view/LauncherPanel.h"
#include "launcherapp/panel/view/rows/RowList.h"
#include "tests/panel/FakePanelServices.h"

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QImage>
#include <algorithm>
#include <chrono>
#include <string>
#include <vector>

namespace tessarine {
namespace {

constexpr int shownRows = 9;

struct Panel : FakePanelServices {
    Panel() {
        model.families.windows = [this](std::string_view query) { return rows(query); };
        panel.show();
        model.setQuery("a");
        panel.resize(QSize(720, panel.root().wantedHeight()).grownBy(panel.contentsMargins()));
        panel.root().settle(1);
    }

    /// Other rows for every query, as typing has them.
    static Rows rows(std::string_view query) {
        Rows result;
        for (int i = 0; i < shownRows; ++i)
            result.push_back({.id = "row:" + std::to_string(i),
                              .kind = RowKind::command,
                              .title = std::string(query) + " Travel plans of the year " +
                                       std::to_string(2000 + i),
                              .subtitle = "~/Documents/Travel/" + std::string(query),
                              .symbol = "link",
                              .primaryLabel = "open",
                              .group = std::string(RowGroup::answers),
                              .score = 100 - i,
                              .credit = RowCreditSpec::systemSettings()});
        return result;
    }

    LauncherPanel panel{view()};
};

constexpr double medianBar = 2; ///< milliseconds
bool isWithin = true;           ///< every bar was kept

/// The part of the panel that a keystroke changes, drawn as the backing store has it.
void keystroke(benchmark::State& state) {
    Panel fixture;
    auto& root = fixture.panel.root();
    QImage screen(root.size(), QImage::Format_ARGB32_Premultiplied);
    using Clock = std::chrono::steady_clock;
    std::vector<double> millis;
    int typed = 0;
    for (auto _ : state) {
        const std::string query(1 + static_cast<std::size_t>(++typed % 7), 'a');
        const auto started = Clock::now();
        fixture.model.setQuery(query);
        root.render(&screen, QPoint(), QRegion(), QWidget::DrawChildren);
        millis.push_back(std::chrono::duration<double, std::milli>(Clock::now() - started).count());
    }
    std::ranges::sort(millis);
    state.counters["median_ms"] = millis[millis.size() / 2];
    state.counters["worst_ms"] = millis.back();
    isWithin = isWithin && millis[millis.size() / 2] <= medianBar;
}

/// The selection moves and the list is the same.
void arrowKey(benchmark::State& state) {
    Panel fixture;
    auto& root = fixture.panel.root();
    QImage screen(root.size(), QImage::Format_ARGB32_Premultiplied);
    std::size_t selected = 0;
    for (auto _ : state) {
        fixture.model.select(++selected % shownRows);
        root.render(&screen, QPoint(), QRegion(), QWidget::DrawChildren);
    }
}

BENCHMARK(keystroke)->Unit(benchmark::kMillisecond)->Iterations(2000);
BENCHMARK(arrowKey)->Unit(benchmark::kMillisecond)->Iterations(2000);

} // namespace
} // namespace tessarine

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return tessarine::isWithin ? 0 : 1;
}
