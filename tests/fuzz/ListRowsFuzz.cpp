// What list scripts print, read as rows and shown in the log.

#include "LauncherCore/commands/ListRows.h"
#include "LauncherCore/text/Folding.h"
#include "LauncherCore/text/Printable.h"
#include "tests/fuzz/FuzzHarness.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string_view>

using namespace tessarine;

std::vector<std::string> fuzzSeeds() {
    return {
        R"([{"title": "A", "subtitle": "s", "arg": "x", "icon": "i"}, {"title": "\u00fc"}])",
        R"({"items": [{"title": "A", "arg": null}], "rerun": 0.5})",
        "text \x1b[31m\xff\u2028\u202e\n",
    };
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    if (const auto rows = parseListRows(bytes)) {
        // The envelope changes nothing.
        REQUIRE_LAW(!bytes.starts_with('[') ||
                    parseListRows("{\"items\":" + std::string(bytes) + "}") == rows);
        for (const auto& row : *rows)
            REQUIRE_LAW(Folding::isUtf8(row.title));
    }
    const auto line = Printable::line(bytes);
    REQUIRE_LAW(Folding::isUtf8(line));
    REQUIRE_LAW(std::ranges::none_of(
        line, [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7f; }));
    const auto beginning = Printable::beginning(bytes, size / 2);
    REQUIRE_LAW(beginning.size() <= size / 2);
    REQUIRE_LAW(!Folding::isUtf8(bytes) || Folding::isUtf8(beginning));
    return 0;
}
