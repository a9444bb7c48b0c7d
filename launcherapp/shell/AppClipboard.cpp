#include "launcherapp/shell/AppClipboard.h"

#include "launcherapp/clipboard/FrontApp.h"
#include "launcherapp/clipboard/PasteboardTypes.h"
#include "launcherapp/platform/linux/desktop/DesktopNotice.h"
#include "launcherapp/platform/linux/desktop/QtPictureCodec.h"
#include "launcherapp/platform/linux/input/NoKeyInjector.h"
#include "launcherapp/platform/linux/input/SessionKeyInjector.h"
#include "launcherapp/platform/linux/pasteboard/NoPasteboard.h"
#include "launcherapp/platform/linux/pasteboard/SessionPasteboard.h"
#include "launcherapp/shell/AppServices.h"

#include <cstddef>
#include <utility>

namespace tessarine {

namespace {

constexpr std::string_view leftAlone = "this run leaves the clipboard alone";
/// The field takes the beginning of it, as one line. Nobody means to search for more.
constexpr std::size_t longestPaste = std::size_t{16} << 20;

std::unique_ptr<Pasteboard> pasteboard(AppServices& services, AppClipboard::Board wanted) {
    if (wanted == AppClipboard::Board::none)
        return std::make_unique<NoPasteboard>(services.doors.queue, std::string(leftAlone));
    return pasteboard(services.doors.queue, services.doors.desktop);
}

std::unique_ptr<KeyInjector> injector(AppServices& services, AppClipboard::Board wanted) {
    if (wanted == AppClipboard::Board::none)
        return std::make_unique<NoKeyInjector>(services.doors.queue, std::string(leftAlone));
    return keyInjector(services.doors.queue, services.doors.desktop);
}

/// Where somebody types nobody waits for a file; a run that answers and ends does.
ClipGroupsRuntime::FileReader fileReader(const AppServices& services, ClipFileFacts& facts) {
    if (services.run.endsByItself)
        return [&files = services.doors.files](const std::string& path) {
            return ClipFileFacts::read(files, path);
        };
    return [&facts](const std::string& path) { return facts.beginning(path); };
}

/// Where the user has the file; in the support folder unless the preference names a path.
std::string place(const AppServices& services,
                  const Preference<std::string>& preference,
                  std::string_view name) {
    return preference().empty() ? services.support.location() + "/" + std::string(name)
                                : expandingTilde(services.environment, preference());
}

} // namespace

AppClipboard::AppClipboard(AppServices& made, Board wanted)
    : services(made), board(pasteboard(made, wanted)), keys(injector(made, wanted)),
      fileFacts(made.doors.queue, made.doors.work, std::make_shared<PosixFileStore>()),
      runtime([&queue = made.doors.queue] { return queue.now(); }, fileReader(made, fileFacts)),
      pictures(std::make_shared<ClipPictures>(std::make_shared<PosixFileStore>(),
                                              std::make_shared<QtPictureCodec>(),
                                              made.support.location() + "/clips")),
      store({.queue = made.doors.queue,
             .work = made.doors.work,
             .prefs = made.prefs,
             .diagnostics = made.diagnostics,
             .groups = runtime,
             .pictures = pictures},
            StateFile(made.doors.files,
                      made.doors.work.serial("com.corvane.tessarine.clipboard"),
                      made.diagnostics,
                      place(made, made.prefs.clipHistoryFilePath, "clipboard.json"),
                      StateFile::Failures::silent,
                      ClipboardStore::largestDocument)),
      groups({.queue = made.doors.queue,
              .work = made.doors.work,
              .files = made.doors.files,
              .prefs = made.prefs,
              .diagnostics = made.diagnostics,
              .runtime = runtime},
             place(made, made.prefs.clipGroupsFilePath, "clip-groups.json")),
      watcher({.queue = made.doors.queue,
               .work = made.doors.work,
               .prefs = made.prefs,
               .diagnostics = made.diagnostics,
               .board = *board,
               .store = store,
               .groups = runtime,
               .pictures = pictures,
               .front =
                   [&made] {
                       return FrontApp::source(*made.doors.windows, made.running, made.catalog);
                   },
               .hasEnded =
                   [&made](const ClipSource& source) {
                       return FrontApp::hasEnded(source, *made.doors.windows);
                   },
               .shouldSkipQuillet = {}}),
      paster({.queue = made.doors.queue,
              .work = made.doors.work,
              .prefs = made.prefs,
              .diagnostics = made.diagnostics,
              .windows = *made.doors.windows,
              .keys = *keys,
              .store = store,
              .watcher = watcher,
              .pictures = pictures,
              .target =
                  [&made](const AppWindow& window) {
                      return FrontApp::target(window, made.running, made.catalog);
                  }}),
      images(made.doors.work, pictures) {}

void AppClipboard::end() {
    watcher.stop();
    store.end();
}

void AppClipboard::wire() {
    wiring.emplace(ClipboardWiring::Services{.model = services.model,
                                             .queue = services.doors.queue,
                                             .prefs = services.prefs,
                                             .store = store,
                                             .groups = runtime,
                                             .paster = paster,
                                             .images = images,
                                             .typing = [this] { return keys->ability(); },
                                             .copying = [this] { return board->ability(); },
                                             .home = services.environment.home});
}

/// The panel has gone by then, so the desktop has to say it.
void AppClipboard::copyText(const std::string& text) {
    if (const auto ability = board->ability(); !ability.available) {
        services.diagnostics.log("clipboard: nothing was copied, " + ability.reason);
        return DesktopNotice::show("Nothing was copied",
                                   ability.reason,
                                   [&log = services.diagnostics](const auto& problem) {
                                       if (problem)
                                           log.log("clipboard: that could not be shown: " +
                                                   *problem);
                                   });
    }
    board->write(PasteboardTypes::ofText(text));
}

void AppClipboard::readText(std::function<void(std::string text)> got) {
    board->offer([this, got = std::move(got)](const std::optional<PasteboardOffer>& offer) {
        const auto type = offer ? PasteboardTypes::textType(offer->types) : std::nullopt;
        if (!type)
            return;
        board->read(offer->count, *type, longestPaste, [got, type](PasteboardReading reading) {
            if (reading.outcome == PasteboardReading::Outcome::complete)
                got(PasteboardTypes::text(*type, std::move(reading.bytes)));
        });
    });
}

} // namespace tessarine
