// The files of the clipboard history and of the taught groups, and one filter: whatever the bytes,
// what can be read goes through a save unchanged, and a rule that can be read can be asked.

#include "LauncherCore/clipboard/ClipFilterKeyJson.h"
#include "LauncherCore/clipboard/ClipGroupsJson.h"
#include "LauncherCore/clipboard/ClipGroupsRuntime.h"
#include "LauncherCore/clipboard/ClipboardJson.h"
#include "LauncherCore/text/Folding.h"
#include "tests/fuzz/FuzzHarness.h"

#include <cstdio>
#include <cstdlib>
#include <string_view>

using namespace tessarine;

namespace {

ClipGroupsRuntime& runtime() {
    static ClipGroupsRuntime made([] { return 0.0; },
                                  [](const std::string& path) {
                                      return path.size() % 2 == 0 ? std::optional(path)
                                                                  : std::nullopt;
                                  });
    return made;
}

void checkHistory(std::string_view text) {
    const auto read = ClipboardJson::decoded(text);
    if (!read)
        return;
    const auto again = ClipboardJson::decoded(ClipboardJson::encoded(read->history));
    REQUIRE_LAW(again && again->history == read->history && !again->losesOld);
    std::int64_t total = 0;
    for (const auto& [key, count] : read->history.counts(runtime()))
        total += count;
    REQUIRE_LAW(total == std::ssize(read->history.entries));
    for (const auto& entry : read->history.entries) {
        REQUIRE_LAW(Folding::isUtf8(ClipboardEntry::makePreview(entry.text.string())));
        REQUIRE_LAW(entry.characterCount() <= entry.text.string().size());
    }
    auto pruned = read->history;
    const auto dropped = pruned.prune(1e9, {.textDays = 1, .keep = 1});
    REQUIRE_LAW(dropped.size() + pruned.entries.size() == read->history.entries.size());
}

void checkGroups(std::string_view text) {
    const auto read = ClipGroupsJson::decoded(text);
    if (!read)
        return;
    const auto again = ClipGroupsJson::decoded(ClipGroupsJson::encoded(read->groups));
    REQUIRE_LAW(again && again->groups == read->groups && !again->losesOld);
    const auto [migrated, changed] = ClipGroups::migratingLedger(read->groups);
    REQUIRE_LAW(changed == (migrated != read->groups));
    runtime().setCurrent(migrated);
    const auto entry = ClipboardEntry::make(
        {.id = "a", .text = ClipText("Read and execute \"/h/a.md\"\n[a · b · c]")});
    const auto claiming = runtime().group(entry);
    REQUIRE_LAW(!claiming || migrated.named(claiming->name));
}

} // namespace

std::vector<std::string> fuzzSeeds() {
    return {
        R"({"entries":[{"id":"00ff","kind":"text","text":"two\nlines","preview":"two",)"
        R"("firstSeen":1.25,"lastSeen":2,"count":1,"pinned":false,"pastedInto":[]},)"
        R"({"id":"0a","kind":"image","text":"Image 3×4","preview":"Image 3×4","imageFile":"0a.png",)"
        R"("fullFile":"0a-full.png","firstSeen":2.0,"lastSeen":2.0,"count":7,"pinned":true,)"
        R"("sourceApp":"Bild","fromOtherDevice":true,"syncOrigin":"desk","syncLamport":-9,)"
        R"("syncBlob":{"plain":"p","object":"o","bytes":5,"width":3,"height":4},)"
        R"("blobTooLarge":false,"pastedInto":["Mail"],"new":[{}]}]})",
        ClipGroupsJson::encoded({ClipGroups::templates()}),
        R"({"groups":[{"name":"N","symbol":"tag","match":{"contains":"a","firstLineEndsWith":"d\"",)"
        R"("firstLineContains":"a","startsWith":"R","regex":"(a+)+b|^\\w","maxLength":99,)"
        R"("minLength":1,"pasted":false,"filePattern":"\"(.+)\"","fileState":"contains",)"
        R"("fileNeedle":"h","kind":"text"}}]})",
        R"({"groups":[{"name":"N","symbol":"tag","match":{"regex":"[a-z&&[^x]]{2,}$|(?=é)."}}]
})",
        R"({"builtin":{"_0":"link"}})",
        R"({"group":{"_0":"Receipts"}})",
    };
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    checkHistory(input);
    checkGroups(input);
    const auto [key, problem] = ClipFilterKeyJson::decoded(input);
    REQUIRE_LAW(key.has_value() == problem.empty());
    if (key)
        REQUIRE_LAW(ClipFilterKeyJson::decoded(ClipFilterKeyJson::encoded(*key)).key == key);
    return 0;
}
