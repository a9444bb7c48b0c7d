#pragma once

#include "launcherapp/panel/view/Footer.h"
#include "launcherapp/platform/MainQueue.h"
#include "launcherapp/shell/Prefs.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace tessarine {

class CommandLine;

/// What `--render` is to show, as its qualifiers say. A value.
///
/// Some qualifiers are there to look at what another screen would show: `--render-scale <pixels per
/// point>`, `--render-width <compact|standard|wide>`, `--render-text <regular|large>`,
/// `--render-mirrored` (as in scripts that run from the right) and `--render-opaque` (as without
/// mixing).
struct RenderRequest {
    static constexpr auto defaultQuery = "s"; ///< of the ordinary list and for opening a row of it

    enum class Mode { ordinary, clipboard, browse, person };
    enum class Menu { none, actions, panelActions, filter };

    /// Nothing for a list of its own, which is whole then.
    std::string query;
    Mode mode = Mode::ordinary;
    Menu menu = Menu::none;
    std::optional<AppearancePreset> skin;
    std::optional<std::size_t> selected; ///< a row's position, from 0
    std::optional<std::string> clipFilter;
    std::size_t filterRow = 0;
    std::optional<Footer::FooterState> footer;
    bool hasMark = false;
    std::optional<ClipPreviewPlacement> preview; ///< nothing: as the settings say
    std::optional<std::int64_t> clipRows;        ///< clippings shown at a time
    Seconds settle{0};
    double scale = 2;
    std::optional<PanelWidth> width; ///< nothing: as the settings say
    std::optional<TextScale> text;
    bool isMirrored = false;
    bool isOpaque = false;
};

/// Reads the qualifiers. Nothing, and `problem` in words, when one has a value that it can't have.
struct ReadRequest {
    std::optional<RenderRequest> request;
    std::string problem;
};

ReadRequest readRenderRequest(const CommandLine& commandLine);

} // namespace tessarine
