#include "launcherapp/commands/SessionQuestions.h"

#include <algorithm>
#include <array>

namespace tessarine {

namespace {

constexpr std::string_view unsavedWork =
    "Apps will be asked to quit. Anything unsaved is yours to save first.";
constexpr std::string_view unsavedWorkUnasked =
    "Apps can't be asked to quit on this desktop. Anything unsaved is yours to save first.";

constexpr auto questions = std::to_array<SessionQuestion>({
    {SystemAction::restart,
     SystemAction::restartImmediately,
     "Restart this computer?",
     "Restart",
     "Asks first, then restarts this computer at once; save your work before"},
    {SystemAction::shutDown,
     SystemAction::shutDownImmediately,
     "Shut down this computer?",
     "Shut Down",
     "Asks first, then shuts this computer down at once; save your work before"},
    {SystemAction::logOut,
     SystemAction::logOutImmediately,
     "Log out?",
     "Log Out",
     "Asks first, then logs you out at once; save your work before"},
});

} // namespace

const SessionQuestion* SessionQuestions::of(SystemAction action) {
    const auto* const found = std::ranges::find(questions, action, &SessionQuestion::action);
    return found == questions.end() ? nullptr : found;
}

AlertQuestion SessionQuestions::alert(const SessionQuestion& question, Apps apps) {
    return {.title = std::string(question.title),
            .text = std::string(apps == Apps::asked ? unsavedWork : unsavedWorkUnasked),
            .confirm = std::string(question.confirm)};
}

} // namespace tessarine
