#pragma once

#include "launcherapp/operations/StageMarks.h"
#include "launcherapp/operations/Updater.h"
#include "launcherapp/panel/PanelController.h"
#include "tests/fakes/FakeChords.h"
#include "tests/fakes/FakePanelWindow.h"
#include "tests/fakes/FakeServices.h"

namespace tessarine {

/// The window and the chords of a panel's controller, in memory.
struct FakePanelDesk {
    explicit FakePanelDesk(FakeServices& fakes)
        : services(fakes), window(fakes.platform.time), chords(fakes.diagnostics) {}

    /// What a controller over them is made of.
    PanelController::Services controls(SearchModel& model, StageMarks& stages, Updater& updater) {
        return {.queue = services.platform.queue,
                .diagnostics = services.diagnostics,
                .prefs = services.prefs,
                .model = model,
                .window = window,
                .windows = services.platform.windows,
                .hotkey = chords.hotkey,
                .stages = stages,
                .updater = updater};
    }

    PanelController::Services controls(SearchModel& model) {
        return controls(model, noStages, noUpdater);
    }

    FakeServices& services;
    FakePanelWindow window;
    FakeChords chords;
    StageMarks noStages;
    Updater noUpdater;
};

} // namespace tessarine
