#include "LauncherCore/catalog/AppNaming.h"
#include "LauncherCore/catalog/DesktopEntry.h"
#include "LauncherCore/catalog/ExecLine.h"
#include "LauncherCore/catalog/Launchable.h"
#include "LauncherCore/catalog/MimeApps.h"
#include "LauncherCore/text/Folding.h"
#include "tests/fuzz/FuzzHarness.h"

#include <cstdio>
#include <cstdlib>
#include <string_view>

using namespace tessarine;

std::vector<std::string> fuzzSeeds() {
    return {
        "[Desktop Entry]\nType=Application\nName=Files\nName[de]=Dateien\nExec=files %U\n"
        "Icon=files\nCategories=Utility;Core;\nKeywords=a;b\\;c;\nMimeType=inode/directory;\n",
        "# comment\n[Desktop Entry]\r\nType=Application\r\nName=X\\sY\\n\r\nNoDisplay=1\r\n"
        "Exec=\"/opt/a b/x\" \"\\$HOME\" %f %i %c %k %% \\\\\r\n\r\n[Desktop Action "
        "new]\r\nName=N\r\n",
        "[Default Applications]\nx-scheme-handler/https=a.desktop;b.desktop;\n"
        "[Removed Associations]\ntext/plain=c.desktop;\n[Added Associations]\ntext/plain=d;\n",
        "\xef\xbb\xbf[Desktop Entry]\nName=\nExec=\nTryExec=/x\nOnlyShowIn=GNOME;\nHidden=true\n",
    };
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    const std::vector<std::string> languages{"de_AT", "de"};
    const std::vector<std::string> desktops{"GNOME"};

    MimeApps associations;
    associations.add(input);
    for (const auto& id : associations.preferred("text/plain"))
        REQUIRE_LAW(!id.empty());

    const auto entry = DesktopEntry::parse(input, languages);
    if (!entry)
        return 0;
    const auto verdict = Launchable::verdict(
        *entry, {.currentDesktops = desktops, .canExecute = [](auto) { return true; }});
    const auto names = AppNaming::names(*entry, "/a/org.x.Y.desktop", "org.x.Y", languages);
    REQUIRE_LAW(!names.name.empty());
    for (const auto& alias : names.aliases)
        REQUIRE_LAW(!alias.empty() && Folding::isUtf8(alias));
    const auto words = ExecLine::words(entry->text("Exec").value_or(""));
    if (verdict == Launchable::Verdict::offered)
        REQUIRE_LAW(words || entry->flag("DBusActivatable"));
    if (words) {
        const std::vector<std::string> uris{"file:///a%20b", "https://x"};
        const auto commands =
            ExecLine::commands(*words, {.uris = uris, .icon = "i", .name = "n", .path = "p"});
        REQUIRE_LAW(!commands.empty() && commands.size() <= uris.size());
    }
    return 0;
}
