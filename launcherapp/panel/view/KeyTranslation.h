#pragma once

#include "launcherapp/query/PanelKeys.h"
#include "launcherapp/query/SearchModel.h"

#include <QKeyEvent>
#include <QString>
#include <QStringList>
#include <optional>

/// The keyboard's events as the panel's vocabulary: Command is Ctrl, Option is Alt, Control is
/// Super. It names what was pressed and decides nothing. Main thread only.
namespace tessarine::KeyTranslation {

/// A key that the field hands on before its editor acts; nothing for any other.
std::optional<FieldCommand> fieldCommand(const QKeyEvent& event, Qt::LayoutDirection direction);

/// A chord of the panel; null for none. `digit` is only asked of a chord of that action.
const PanelChord* chord(const QKeyEvent& event);

int digit(const PanelChord& chord);

/// "Ctrl", "K": a chord's keys by their Linux names, modifiers first.
QStringList keyNames(const PanelChord& chord);

/// The first chord of an action, as the user presses it.
QStringList keyNames(PanelKeyAction action);

} // namespace tessarine::KeyTranslation
