#pragma once

#include <string_view>

class QImage;

/// The program's own symbols: line drawings in one style, compiled in from the folder `symbols`,
/// one file a name. They don't depend on the desktop's icon theme, so that verbs look alike on
/// every desktop. Main thread only.
namespace tessarine::SymbolDrawing {

/// Whether there is a drawing of this name.
bool exists(std::string_view name);

/// The symbol in a square of `side` pixels; only its opacity means anything. A rounded square for a
/// name that has no drawing, dashed for what is missing.
QImage mask(std::string_view name, int side);

} // namespace tessarine::SymbolDrawing
