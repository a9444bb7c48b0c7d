#pragma once

#include "launcherapp/panel/appearance/Color.h"
#include "launcherapp/shell/Prefs.h"

#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace tessarine {

/// The colours of one appearance of the panel, by what they are for. A value; every preset has one,
/// and in each every text can be read.
struct Palette {
    enum class Tone { dark, light };

    Tone tone = Tone::dark;
    Color panel; ///< the only one that may let what is behind it through
    Color border;
    Color separator;
    Color shadow;

    Color fieldText;
    Color placeholder;
    Color textSelection; ///< behind text selected in the field

    Color title;
    Color subtitle;
    Color matched; ///< the characters that the query names
    Color credit;
    Color digit;
    Color symbol;     ///< line drawings
    Color symbolTile; ///< behind a line drawing that stands for an icon
    Color running;    ///< the mark of a running application

    Color selection; ///< behind the selected row
    Color selectedTitle;
    Color selectedSubtitle;
    Color selectedMatched;
    Color selectedTile; ///< as `symbolTile`, in the selected row
    Color hover;        ///< behind the row under the pointer

    Color footerText;
    Color keyCap; ///< behind the name of a key
    Color keyCapText;

    Color menu; ///< behind menus and the sheet of shortcuts
    Color menuText;
    Color menuSelection;
    Color accent;
    Color destructive;

    bool operator==(const Palette&) const = default;
};

/// Which presets there are and what they look like. Pure; any thread.
namespace Palettes {

/// All thirteen, the dark ones first.
std::span<const AppearancePreset> presets();

const Palette& palette(AppearancePreset preset);

/// The preset with another accent, as far towards its text's colour as it takes to read what is
/// drawn in it and on it.
Palette withAccent(AppearancePreset preset, Color accent);

/// As stored and as `--skin` takes it: "ink".
std::string_view name(AppearancePreset preset);

/// Nothing for a word that names no preset.
std::optional<AppearancePreset> named(std::string_view name);

/// The colour behind the first letter of a name that has no picture; white can be read on it. The
/// same for the same name, always.
Color monogram(std::string_view name);

/// One thing that is drawn on another.
struct Pair {
    enum class Kind {
        text, ///< needs 4.5 to 1 (WCAG 2.1, success criterion 1.4.3, level AA)
        mark, ///< a drawing or a mark, needs 3 to 1 (1.4.11)
    };

    std::string_view foreground;
    std::string_view background;
    Kind kind = Kind::text;
    double ratio = 0; ///< the worse of black and white behind the panel

    double required() const { return kind == Kind::text ? 4.5 : 3.0; }

    bool passes() const { return ratio >= required(); }
};

/// Every text and mark of a palette on every background it is drawn on.
std::vector<Pair> pairs(const Palette& palette);

} // namespace Palettes
} // namespace tessarine
