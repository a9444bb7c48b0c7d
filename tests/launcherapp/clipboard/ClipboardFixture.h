#pragma once

#include "LauncherCore/clipboard/ClipGroupsRuntime.h"
#include "LauncherCore/clipboard/ClipIdentity.h"
#include "LauncherCore/clipboard/ClipboardJson.h"
#include "launcherapp/clipboard/ClipPictures.h"
#include "launcherapp/clipboard/ClipboardStore.h"
#include "launcherapp/clipboard/ClipboardWatcher.h"
#include "tests/LauncherCore/clipboard/Clippings.h"
#include "tests/fakes/FakePasteboard.h"
#include "tests/fakes/FakePictureCodec.h"
#include "tests/fakes/FakeServices.h"

#include <algorithm>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace tessarine {

/// The clipboard's services over a pasteboard, a disk and a clock in memory.
struct ClipboardFixture {
    static constexpr auto historyPath = "/support/clipboard.json";
    static constexpr auto pictureFolder = "/support/clips";

    explicit ClipboardFixture(std::string historyIsAt = historyPath)
        : history(std::move(historyIsAt)) {}

    std::string history;
    FakeServices services;
    MemoryFileStore& files = services.platform.files;
    VirtualTime& time = services.platform.time;
    FakePasteboard board{time};
    ClipGroupsRuntime runtime{[this] { return services.platform.queue.now(); },
                              [](const std::string&) { return ClipFileBeginning(); }};
    std::shared_ptr<const ClipPictures> pictures =
        std::make_shared<ClipPictures>(std::shared_ptr<FileStore>(std::shared_ptr<void>(), &files),
                                       std::make_shared<FakePictureCodec>(),
                                       pictureFolder);
    ClipboardStore store{{.queue = services.platform.queue,
                          .work = services.platform.work,
                          .prefs = services.prefs,
                          .diagnostics = services.diagnostics,
                          .groups = runtime,
                          .pictures = pictures},
                         StateFile(files,
                                   services.platform.work.serial("state"),
                                   services.diagnostics,
                                   history,
                                   StateFile::Failures::silent)};
    ClipSource front{.bundleID = "org.example.Editor", .name = "Editor"};
    bool hasFrontEnded = false;
    ClipboardWatcher watcher{
        {.queue = services.platform.queue,
         .work = services.platform.work,
         .prefs = services.prefs,
         .diagnostics = services.diagnostics,
         .board = board,
         .store = store,
         .groups = runtime,
         .pictures = pictures,
         .front = [this] { return front; },
         .hasEnded = [this](const ClipSource& source) { return source.name && hasFrontEnded; },
         .shouldSkipQuillet = [](const std::string& id) { return id == "quillet"; }}};

    void start() {
        watcher.start();
        time.settle();
    }

    /// As long as a poll may take.
    void poll() { time.advance(Seconds{0.7}); }

    void copyText(const std::string& text) {
        board.copyText(text);
        poll();
    }

    /// A picture of one colour, offered as PNG.
    void copyPicture(std::uint32_t colour, int side = 8) {
        board.copy({{"image/png", png(colour, side)}});
        poll();
    }

    static std::string png(std::uint32_t colour, int side = 8) {
        return FakePictureCodec::file(FakePictureCodec::pngMark,
                                      FakePictureCodec::picture(side, side, colour));
    }

    const std::vector<ClipboardEntry>& entries() const { return store.history().entries; }

    /// In stored order.
    std::vector<std::string> texts() const {
        std::vector<std::string> texts;
        for (const auto& entry : entries())
            texts.push_back(entry.text.string());
        return texts;
    }

    std::set<std::string> pictureFiles() const {
        std::set<std::string> names;
        for (const auto& entry :
             files.entries(pictureFolder).value_or(std::vector<DirectoryEntry>{}))
            names.insert(entry.name);
        return names;
    }

    std::string onDisk() const { return files.read(historyPath, 1 << 30).value_or(""); }

    static ClipboardEntry textEntry(const std::string& text, double at) {
        return clipping(ClipIdentity::ofText(text), at, text);
    }

    void putOnDisk(std::vector<ClipboardEntry> written) {
        files.file(historyPath, ClipboardJson::encoded({.entries = std::move(written)}));
    }

    double now() const { return services.platform.queue.now(); }
};

} // namespace tessarine
