#pragma once

#include "launcherapp/panel/view/PanelViewServices.h"
#include "launcherapp/panel/view/modes/RenderRequest.h"
#include "launcherapp/shell/modes/PanelModes.h"

#include <functional>
#include <optional>
#include <string>

class QImage;
class QWidget;

namespace tessarine {

class LauncherPanel;
struct ModeContext;
struct ResultRow;

/// Pictures of the panel, taken of the very widgets that the user sees, and what can be proved by
/// them. Nothing is shown on a screen. Main thread only; the services outlive it.
class RenderModes {
public:
    explicit RenderModes(PanelViewServices services) : services_(services) {}

    /// The modes that `Modes` runs; they refer to this object.
    PanelModes modes();

private:
    void render(ModeContext& context, const std::string& out);
    void renderOnceScanned(ModeContext& context,
                           const RenderRequest& request,
                           const std::string& out,
                           int attempt);
    void takeOnceListed(ModeContext& context,
                        const RenderRequest& request,
                        const std::string& out,
                        int attempt);
    void take(ModeContext& context, const RenderRequest& request, const std::string& out);
    void renderSheet(ModeContext& context, const std::string& out);
    void renderShortcuts(ModeContext& context, const std::string& folder);
    void selftestRenderPurity(ModeContext& context);

    /// Why a picture can't be taken.
    struct Problem {
        std::string words;
        int status = 1; ///< 2 where what it would show is not there to be looked at
    };

    /// Puts the model into the state that is asked for; nothing when it is in it.
    std::optional<Problem> prepare(const RenderRequest& request);
    std::optional<Problem> prepareClipboard(const RenderRequest& request);
    std::optional<Problem> prepareFolder(const RenderRequest& request);
    std::optional<Problem> preparePerson(const RenderRequest& request);
    bool select(const std::function<bool(const ResultRow& row)>& isWanted);
    void prepareMenu(const RenderRequest& request);

    QImage picture(const RenderRequest& request);
    QImage sheetPicture(double scale);

    PanelViewServices services_;
};

} // namespace tessarine
