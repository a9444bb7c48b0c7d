// What the clipboard's history costs the main thread, where 16 ms is a dropped frame.

#include "LauncherCore/clipboard/ClipGroupsRuntime.h"
#include "launcherapp/clipboard/ClipboardStore.h"
#include "launcherapp/operations/Diagnostics.h"
#include "tests/fakes/FakePictureCodec.h"
#include "tests/fakes/FakeServices.h"

#include <benchmark/benchmark.h>

#include <memory>
#include <string>
#include <utility>

namespace tessarine {
namespace {

constexpr std::size_t longText = 5000000; // characters, the longest text that is kept by default
constexpr std::size_t largeText = 400000; // of which 500 stay within the bound on all texts
constexpr int pictureSide = 1730;         // 12 MB as the fake codec writes it
constexpr auto document = "/support/clipboard.json";

ClipboardEntry entryOf(char letter, std::size_t length, int number) {
    ClipboardEntry::Copy copy;
    copy.id = std::to_string(number);
    copy.text = ClipText(std::string(length, letter));
    return ClipboardEntry::make(std::move(copy));
}

/// Background work stands still until `time.settle`, so that what is timed is the main thread's.
struct Store {
    FakeServices services;
    ClipGroupsRuntime groups{[] { return 0.0; }, [](const std::string&) { return std::nullopt; }};
    std::shared_ptr<const ClipPictures> pictures = std::make_shared<ClipPictures>(
        std::shared_ptr<FileStore>(std::shared_ptr<void>(), &services.platform.files),
        std::make_shared<FakePictureCodec>(),
        "/support/clips");
    ClipboardStore store{{.queue = services.platform.queue,
                          .work = services.platform.work,
                          .prefs = services.prefs,
                          .diagnostics = services.diagnostics,
                          .groups = groups,
                          .pictures = pictures},
                         StateFile(services.platform.files,
                                   services.platform.work.serial("state"),
                                   services.diagnostics,
                                   document,
                                   StateFile::Failures::silent)};

    Store() {
        store.load([] {});
        services.platform.time.settle();
    }

    void fill() {
        for (int i = 0; i < static_cast<int>(ClipboardHistory::keep); ++i)
            store.record(entryOf('x', largeText, i));
    }
};

void record(benchmark::State& state) {
    Store fixture;
    for (int i = 0; auto _ : state) {
        state.PauseTiming();
        auto entry = entryOf('x', longText, ++i % 2); // new, then again
        state.ResumeTiming();
        fixture.store.record(std::move(entry));
    }
}

void keepPicture(benchmark::State& state) {
    const auto png = FakePictureCodec::file(FakePictureCodec::pngMark,
                                            FakePictureCodec::picture(pictureSide, pictureSide, 7));
    for (auto _ : state) {
        state.PauseTiming();
        auto fixture = std::make_unique<Store>();
        auto bytes = png;
        state.ResumeTiming();
        fixture->store.keepPicture(std::move(bytes), [&](const auto& kept) {
            if (!kept)
                state.SkipWithError("no picture");
        });
        state.PauseTiming();
        fixture->services.platform.time.settle();
        fixture.reset();
        state.ResumeTiming();
    }
}

void snapshot(benchmark::State& state) {
    Store fixture;
    fixture.fill();
    for (auto _ : state) {
        fixture.store.bump("1");
        fixture.store.flush();
    }
}

void clear(benchmark::State& state) {
    for (auto _ : state) {
        state.PauseTiming();
        auto fixture = std::make_unique<Store>();
        fixture->fill();
        state.ResumeTiming();
        fixture->store.clear(std::nullopt);
        state.PauseTiming();
        fixture.reset();
        state.ResumeTiming();
    }
}

BENCHMARK(record)->Unit(benchmark::kMillisecond)->Iterations(20);
BENCHMARK(keepPicture)->Unit(benchmark::kMillisecond)->Iterations(20);
BENCHMARK(snapshot)->Unit(benchmark::kMillisecond)->Iterations(200);
BENCHMARK(clear)->Unit(benchmark::kMillisecond)->Iterations(5);

} // namespace
} // namespace tessarine

BENCHMARK_MAIN();
