#include "launcherapp/panel/view/KeyTranslation.h"

#include "LauncherCore/commands/VirtualKeys.h"
#include "launcherapp/panel/view/drawing/Drawing.h"

#include <algorithm>
#include <string>

namespace tessarine {

namespace {

/// No virtual key's number.
constexpr std::uint16_t anyOtherKey = 0xFFFF;

/// Where X11 and Wayland have the digit row, whatever is printed on it: a French keyboard types
/// "&" with the key that is row 1 (evdev's KEY_1 is 2, and both count from 8).
constexpr quint32 firstDigitScanCode = 10;

KeyModifiers modifiers(const QKeyEvent& event) {
    const auto held = event.modifiers();
    return {.command = held.testFlag(Qt::ControlModifier),
            .option = held.testFlag(Qt::AltModifier),
            .shift = held.testFlag(Qt::ShiftModifier),
            .control = held.testFlag(Qt::MetaModifier)};
}

std::uint16_t keyCode(int key) {
    switch (key) {
    case Qt::Key_Space:
        return VirtualKeys::space;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return VirtualKeys::enter;
    default:
        return anyOtherKey;
    }
}

/// What the key types without modifiers. Qt gives a Latin key with Ctrl on any layout.
std::string characters(int key) {
    const bool isPrintable = key > Qt::Key_Space && key < Qt::Key_Escape;
    return isPrintable ? QString(QChar(key)).toStdString() : std::string();
}

/// Of a sign that many keyboards have above another one, as the German one has "/" above 7, Shift
/// says nothing. With a letter, a digit or a comma it makes another chord.
bool mayNeedShift(int key) {
    const bool isLetter = key >= Qt::Key_A && key <= Qt::Key_Z;
    const bool isDigit = key >= Qt::Key_0 && key <= Qt::Key_9;
    return !isLetter && !isDigit && key != Qt::Key_Comma && !characters(key).empty();
}

} // namespace

std::optional<FieldCommand> KeyTranslation::fieldCommand(const QKeyEvent& event,
                                                         Qt::LayoutDirection direction) {
    const auto held = event.modifiers() & ~Qt::KeypadModifier;
    if (event.key() == Qt::Key_Backspace && held == Qt::ControlModifier)
        return FieldCommand::deleteToStart;
    if (event.key() == Qt::Key_Home && held == Qt::ControlModifier)
        return FieldCommand::listStart;
    if (event.key() == Qt::Key_End && held == Qt::ControlModifier)
        return FieldCommand::listEnd;
    if (event.key() == Qt::Key_Backtab || (event.key() == Qt::Key_Tab && held == Qt::ShiftModifier))
        return FieldCommand::backTab;
    if (held != Qt::NoModifier)
        return std::nullopt;
    // Inward is the way the text runs.
    const bool isMirrored = direction == Qt::RightToLeft;
    switch (event.key()) {
    case Qt::Key_Up:
        return FieldCommand::up;
    case Qt::Key_Down:
        return FieldCommand::down;
    case Qt::Key_PageUp:
        return FieldCommand::pageUp;
    case Qt::Key_PageDown:
        return FieldCommand::pageDown;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return FieldCommand::enter;
    case Qt::Key_Tab:
        return FieldCommand::tab;
    case Qt::Key_Escape:
        return FieldCommand::escape;
    case Qt::Key_Right:
        return isMirrored ? FieldCommand::left : FieldCommand::right;
    case Qt::Key_Left:
        return isMirrored ? FieldCommand::right : FieldCommand::left;
    default:
        return std::nullopt;
    }
}

const PanelChord* KeyTranslation::chord(const QKeyEvent& event) {
    const auto held = modifiers(event);
    const auto typed = characters(event.key());
    if (const auto* chord = PanelKeys::match(held, keyCode(event.key()), typed))
        return chord;
    if (held.shift && mayNeedShift(event.key())) {
        auto unshifted = held;
        unshifted.shift = false;
        if (const auto* chord = PanelKeys::match(unshifted, anyOtherKey, typed))
            return chord;
    }
    const auto scanCode = event.nativeScanCode();
    if (scanCode < firstDigitScanCode || scanCode > firstDigitScanCode + 8)
        return nullptr;
    const char digit = static_cast<char>('1' + (scanCode - firstDigitScanCode));
    return PanelKeys::match(held, anyOtherKey, std::string_view(&digit, 1));
}

int KeyTranslation::digit(const PanelChord& chord) {
    return chord.characters ? chord.characters->front() - '0' : 0;
}

QStringList KeyTranslation::keyNames(const PanelChord& chord) {
    QStringList names;
    if (chord.modifiers.command)
        names << QStringLiteral("Ctrl");
    if (chord.modifiers.control)
        names << QStringLiteral("Super");
    if (chord.modifiers.option)
        names << QStringLiteral("Alt");
    if (chord.modifiers.shift)
        names << QStringLiteral("Shift");
    if (chord.keyCode)
        names << (*chord.keyCode == VirtualKeys::space ? QStringLiteral("Space")
                                                       : QStringLiteral("Enter"));
    else
        names << Drawing::toQt(*chord.characters).toUpper();
    return names;
}

QStringList KeyTranslation::keyNames(PanelKeyAction action) {
    const auto found = std::ranges::find(PanelKeys::chords(), action, &PanelChord::action);
    return found == PanelKeys::chords().end() ? QStringList() : keyNames(*found);
}

} // namespace tessarine
