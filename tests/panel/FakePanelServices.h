#pragma once

#include "launcherapp/panel/appearance/Appearance.h"
#include "launcherapp/panel/view/PanelViewServices.h"
#include "launcherapp/query/CreditResolver.h"
#include "tests/fakes/FakeDesktopAppearance.h"
#include "tests/fakes/FakeServices.h"

#include <memory>

namespace tessarine {

/// What the panel's view is drawn from, wired over the fakes as the program wires it.
struct FakePanelServices {
    FakeServices services;
    FakeDesktopAppearance desktop;
    std::unique_ptr<SearchModel> owned = services.makeModel();
    SearchModel& model = *owned;
    CreditResolver credits{services.catalog, services.platform.files, services.environment};
    Appearance appearance{services.prefs, desktop, services.diagnostics};

    PanelViewServices view() {
        return {.model = model,
                .prefs = services.prefs,
                .appearance = appearance,
                .desktop = desktop,
                .icons = services.platform.icons,
                .credits = credits,
                .catalog = services.catalog};
    }
};

} // namespace tessarine
