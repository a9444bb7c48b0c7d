#pragma once

#include "tests/fakes/FakeActivationTokens.h"
#include "tests/fakes/FakeApplicationBus.h"
#include "tests/fakes/FakeDirectoryWatcher.h"
#include "tests/fakes/FakeIcons.h"
#include "tests/fakes/FakeMainQueue.h"
#include "tests/fakes/FakeProcessLauncher.h"
#include "tests/fakes/FakeProgramReader.h"
#include "tests/fakes/FakeResidentCopies.h"
#include "tests/fakes/FakeWindowList.h"
#include "tests/fakes/FakeWorkQueues.h"
#include "tests/fakes/MemoryFileStore.h"
#include "tests/fakes/VirtualTime.h"

namespace tessarine {

/// All doors to the world, in memory and in one virtual time.
struct FakePlatform {
    VirtualTime time;
    FakeMainQueue queue{time};
    FakeWorkQueues work{time};
    MemoryFileStore files;
    FakeDirectoryWatcher watcher;
    FakeProcessLauncher processes;
    FakeProgramReader programs{queue};
    FakeApplicationBus bus{queue};
    FakeActivationTokens tokens;
    FakeWindowList windows;
    FakeIcons icons;
    FakeResidentCopies copies{time};
};

} // namespace tessarine
