#pragma once

#include "launcherapp/platform/Alerts.h"

#include <QPointer>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

class QMessageBox;

namespace tessarine {

/// Small windows of the program's own, which hold nothing else up and delete themselves. Texts are
/// shown as they are, marks of HTML too. Without a display the answer is no, and what is told goes
/// to the log. Main thread only; windows that are still open when the application object ends go
/// with it, unanswered.
class QtAlerts : public Alerts {
public:
    /// Takes a line for the log.
    using Log = std::function<void(std::string_view line)>;

    explicit QtAlerts(Log log);

    /// Return and Escape both leave it undone: only the button itself does it, clicked or pressed
    /// once the user has gone to it.
    void ask(const AlertQuestion& question, std::function<void(bool confirmed)> answered) override;
    /// What is told already in an open window brings that up again.
    void tell(const std::string& title, const std::string& text) override;
    Subscription wait(const std::string& title,
                      const std::string& text,
                      std::function<void()> takenBack) override;

private:
    Log log_;
    std::vector<QPointer<QMessageBox>> told_; ///< null for those that were closed
};

} // namespace tessarine
