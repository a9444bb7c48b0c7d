#pragma once

#include "launcherapp/hotkeys/Hotkey.h"
#include "tests/fakes/FakeHotkeyRegistrar.h"
#include "tests/fakes/FakeRivalLaunchers.h"

namespace tessarine {

/// The program's chords on a keyboard in memory.
struct FakeChords {
    explicit FakeChords(Diagnostics& diagnostics)
        : hotkey({.registrar = registrar, .rivals = rivals, .diagnostics = diagnostics}) {}

    FakeHotkeyRegistrar registrar;
    FakeRivalLaunchers rivals;
    Hotkey hotkey;
};

} // namespace tessarine
