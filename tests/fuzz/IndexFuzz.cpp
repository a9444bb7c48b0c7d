// What the file index reads that others wrote: its cache, the kernel's list of mounts, the user's
// folders; and the scan over whatever names came of it.

#include "LauncherCore/index/MountInfo.h"
#include "LauncherCore/index/NameIndex.h"
#include "LauncherCore/query/UsageLog.h"
#include "launcherapp/index/IndexCache.h"
#include "launcherapp/platform/Environment.h"
#include "tests/fuzz/FuzzHarness.h"

#include <cstdio>
#include <cstdlib>
#include <string_view>

using namespace tessarine;

namespace {

std::optional<ItemList> readBack(std::string_view document, std::size_t pieceBytes) {
    IndexCache::Reader reader([](std::string_view) { return true; });
    for (std::size_t at = 0; at < document.size(); at += pieceBytes) {
        if (!reader.take(document.substr(at, pieceBytes)))
            break;
    }
    return reader.finish();
}

std::string documentOf(const NameIndex& index) {
    std::string document;
    IndexCache::Writer writer(index);
    while (const auto piece = writer.next())
        document += *piece;
    return document;
}

void checkScan(const NameIndex& index, std::string_view needle) {
    if (needle.empty())
        return;
    const NameScan::Finder best(needle);
    const NameScan::Finder table(needle, NameScan::Method::horspool);
    const std::string_view text = index.blob();
    for (std::size_t at = 0; at <= text.size();) {
        const auto place = best.next(text, at);
        REQUIRE_LAW(place == table.next(text, at));
        if (!place)
            break;
        at = *place + 1;
    }
    for (const auto& found : index.search({.query = needle, .limit = 3}, UsageLog(), 0))
        REQUIRE_LAW(found.item.id.starts_with('/'));
}

} // namespace

std::vector<std::string> fuzzSeeds() {
    return {
        R"([{"id":"/a/b c","name":"b c","norm":"b c","isFolder":true,"ext":""},)"
        R"({"id":"/a/b c/d.txt","name":"d.txt","norm":"d.txt","isFolder":false,"ext":"txt"},)"
        R"({"id":"/media/u/X","name":"Drive \u00e9\"","norm":"drive e","isFolder":true,"ext":""}])",
        "36 25 0:31 / /run/media/u/My\\040Disk rw,nosuid shared:5 - ext4 /dev/sdb1 rw\n"
        "40 36 0:31 / /mnt rw - nfs server:/x rw\n",
        "XDG_DESKTOP_DIR=\"$HOME/Desk\\\"top\"\nXDG_DOWNLOAD_DIR=\"/x\"\n",
    };
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string input(reinterpret_cast<const char*>(data), size);
    const auto whole = readBack(input, input.size() + 1);
    const auto pieces = readBack(input, 7);
    REQUIRE_LAW(whole.has_value() == pieces.has_value());
    if (whole) {
        REQUIRE_LAW(*whole == *pieces);
        const NameIndex index({std::make_shared<const ItemList>(*whole)});
        const auto again = readBack(documentOf(index), 11);
        REQUIRE_LAW(again && *again == *whole);
        checkScan(index, input.substr(0, 3));
        checkScan(index, "d");
    }
    for (const auto& mount : MountInfo::parse(input))
        REQUIRE_LAW(mount.path.starts_with('/'));
    const auto folders = userFolders({.home = "/h"}, input);
    REQUIRE_LAW(folders.desktop.empty() || folders.desktop.starts_with('/'));
    return 0;
}
