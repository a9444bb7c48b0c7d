#pragma once

#include "LauncherCore/commands/SystemAction.h"
#include "launcherapp/platform/Alerts.h"

#include <string_view>

namespace tessarine {

/// What the user is asked before an action ends the session.
struct SessionQuestion {
    SystemAction action;
    SystemAction immediately; ///< what is done once it is confirmed and all apps have quit
    std::string_view title;
    std::string_view confirm;
    std::string_view unaskedLine; ///< of its row, where apps can't be asked to quit
};

/// Pure; any thread.
namespace SessionQuestions {

/// Null for an action that doesn't ask first.
const SessionQuestion* of(SystemAction action);

enum class Apps { asked, notAsked };

/// The question, by what will become of the apps that are open.
AlertQuestion alert(const SessionQuestion& question, Apps apps);

} // namespace SessionQuestions
} // namespace tessarine
