// The documents that the program keeps and a person may edit: usage and preferences.

#include "LauncherCore/query/UsageJson.h"
#include "launcherapp/operations/Diagnostics.h"
#include "launcherapp/shell/Prefs.h"
#include "tests/fakes/FakePlatform.h"
#include "tests/fuzz/FuzzHarness.h"

#include <cstdio>
#include <cstdlib>
#include <string_view>

using namespace tessarine;

std::vector<std::string> fuzzSeeds() {
    return {
        R"({"items":{"a":{"launches":[1.5,2],"total":2}},"choices":{"te":{"a":3}}})",
        R"({"d1":{"items":{},"choices":{}},"d2":{"items":{},"choices":{"q":{}}}})",
        R"({"hotkey":{"keyCode":49,"carbonModifiers":256},"favorites":["a","b"],"mode":"dark",
            "clipRetention":{"textDays":1,"fileDays":2,"imageDays":3,"keep":4},"clipRows":3,
            "rememberedOrigin":[1,2.5],"favoriteTitles":{"a":"A"},"unknown":{"x":[null,true]}})",
    };
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string input(reinterpret_cast<const char*>(data), size);
    if (const auto log = UsageJson::decodedLog(input)) {
        for (const auto& [id, record] : log->items) {
            REQUIRE_LAW(record.launches.size() <= UsageLog::keep);
            REQUIRE_LAW(log->frecency(id, 0) >= 0 && log->frecency(id, 0) <= 900);
        }
        for (const auto& [id, value] : log->affinityTable("te", 0))
            REQUIRE_LAW(value >= 1 && value <= 2600);
    }
    UsageJson::decodedDevices(input);

    FakePlatform platform;
    const std::string path = "/config/preferences.json";
    platform.files.file(path, input);
    Diagnostics diagnostics(
        platform.queue,
        platform.work,
        platform.files,
        [] { return "/data"; },
        Diagnostics::Run::oneShot);
    DefaultsStore store(platform.queue,
                        StateFile(platform.files,
                                  platform.work.serial("preferences"),
                                  diagnostics,
                                  path,
                                  StateFile::Failures::logged),
                        diagnostics);
    const Environment environment;
    Prefs prefs(store, environment);
    REQUIRE_LAW(prefs.resultOrder().size() >= Prefs::defaultOrder().size());
    platform.time.settle();
    // Whatever was there: either it was understood, or it lies beside what was saved over it.
    const auto kept = platform.files.read(path + ".damaged", std::string::npos);
    REQUIRE_LAW(!kept || *kept == input);
    REQUIRE_LAW(!prefs.clipSyncDeviceID().empty());
    return 0;
}
