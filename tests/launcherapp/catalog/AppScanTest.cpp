#include "launcherapp/catalog/AppScan.h"

#include "tests/fakes/MemoryFileStore.h"

#include <gmock/gmock.h>

namespace tessarine {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::UnorderedElementsAre;

class AppScanTest : public testing::Test {
protected:
    void entry(const std::string& path, const std::string& name, const std::string& more = "") {
        files.file(path, "[Desktop Entry]\nType=Application\nName=" + name + "\nExec=x\n" + more);
    }

    std::vector<std::string> names(const std::vector<std::string>& roots) {
        std::vector<std::string> result;
        for (const auto& app : AppScan::scan(files, environment, roots).apps)
            result.push_back(app.name);
        return result;
    }

    MemoryFileStore files;
    Environment environment{.home = "/home/u",
                            .dataHome = "/home/u/.local/share",
                            .configHome = "/home/u/.config",
                            .dataDirs = {"/usr/share"},
                            .programDirs = {"/usr/bin"},
                            .desktops = {"GNOME"},
                            .collationLocale = "sv_SE"};
};

TEST_F(AppScanTest, rootsComeInTheOrderOfPrecedence) {
    environment.dataDirs = {"/opt/share", "/usr/share", "/var/lib/flatpak/exports/share"};
    EXPECT_THAT(AppScan::roots(environment, {"~/Apps/", "/usr/share/applications", "relative"}),
                ElementsAre("/home/u/.local/share/applications",
                            "/opt/share/applications",
                            "/usr/share/applications",
                            "/var/lib/flatpak/exports/share/applications",
                            "/home/u/.local/share/flatpak/exports/share/applications",
                            "/var/lib/snapd/desktop/applications",
                            "/home/u/Apps"));
}

TEST_F(AppScanTest, anApplicationIsKnownByItsPathAndItsDesktopFileId) {
    entry("/a/kde/org.x.Tool.desktop", "Tool", "Keywords=hammer;\n");
    const auto apps = AppScan::scan(files, environment, {"/a"}).apps;
    ASSERT_EQ(apps.size(), 1u);
    EXPECT_EQ(apps[0].id, "/a/kde/org.x.Tool.desktop");
    EXPECT_EQ(apps[0].path, apps[0].id);
    EXPECT_EQ(apps[0].bundleID, "kde-org.x.Tool");
    EXPECT_THAT(apps[0].aliases, ElementsAre("hammer"));
}

TEST_F(AppScanTest, theListIsInTheReadersAlphabet) {
    entry("/a/1.desktop", "ö");
    entry("/a/2.desktop", "Z");
    entry("/a/3.desktop", "a");
    entry("/a/4.desktop", "B");
    EXPECT_THAT(names({"/a"}), ElementsAre("a", "B", "Z", "ö"));
}

TEST_F(AppScanTest, theFirstRootsEntryOfAnIdCounts) {
    entry("/user/same.desktop", "Mine");
    entry("/system/same.desktop", "Theirs");
    entry("/user/deleted.desktop", "Deleted", "Hidden=true\n");
    entry("/system/deleted.desktop", "Deleted All The Same");
    entry("/user/helper.desktop", "Helper", "NoDisplay=true\n");
    entry("/system/helper.desktop", "Helper Shown");
    files.file("/user/damaged.desktop", "[Desktop Entry]\nType=Application\nName=\xff\n");
    entry("/system/damaged.desktop", "Whole");
    const auto result = AppScan::scan(files, environment, {"/user", "/system"});
    EXPECT_THAT(names({"/user", "/system"}), ElementsAre("Mine", "Whole"));
    EXPECT_FALSE(result.registry->byID("deleted"));
    EXPECT_EQ(result.registry->byID("helper")->name, "Helper"); // a handler may still be needed
}

TEST_F(AppScanTest, anUndisplayedTwinIsTheSameApplication) {
    entry("/a/viewer.desktop", "Viewer");
    entry("/a/viewer-pdf.desktop", "VIEWER", "NoDisplay=true\nIcon=v\nMimeType=a/pdf;\n");
    entry("/a/panel.desktop", "Panel", "NoDisplay=true\nIcon=p\n");
    entry("/a/panel2.desktop", "Panel", "NoDisplay=true\nIcon=p\n");
    const auto result = AppScan::scan(files, environment, {"/a"});
    EXPECT_THAT(names({"/a"}), ElementsAre("Panel", "Panel", "Viewer"));
    EXPECT_EQ(result.registry->handlerForType("a/pdf")->bundleID, "viewer-pdf");
}

TEST_F(AppScanTest, oneFileIsListedOnceHoweverManyWaysLeadToIt) {
    entry("/app/deploy/1.2/x.desktop", "Exported");
    files.link("/exports/org.x.App.desktop", "/app/deploy/1.2/x.desktop");
    files.link("/exports/other.desktop", "org.x.App.desktop");
    files.link("/again", "/exports");
    const auto apps = AppScan::scan(files, environment, {"/exports", "/again", "/app"}).apps;
    ASSERT_EQ(apps.size(), 1u);
    // Where the link stands, not where it leads: the next update leads it elsewhere.
    EXPECT_EQ(apps[0].id, "/exports/org.x.App.desktop");
    EXPECT_EQ(apps[0].bundleID, "org.x.App");
}

TEST_F(AppScanTest, foldersAreEnteredToADepthAndLinksFollowed) {
    entry("/a/1.desktop", "One");
    entry("/a/b/2.desktop", "Two");
    entry("/a/b/c/3.desktop", "Three");
    entry("/a/b/c/d/4.desktop", "Four");
    entry("/outside/5.desktop", "Five");
    entry("/a/bundle.desktop/6.desktop", "Six");
    files.link("/a/link", "/outside");
    files.link("/a/b/loop", "/a");
    files.link("/a/self", "self");
    EXPECT_THAT(names({"/a"}), ElementsAre("Five", "One", "Three", "Two"));
    EXPECT_THAT(AppScan::scan(files, environment, {"/a", "/none"}).directories,
                ElementsAre("/a", "/a/b", "/a/b/c", "/a/b/loop", "/a/link", "/none"));
    // A root inside another reaches deeper.
    EXPECT_THAT(names({"/a", "/a/b/c"}), ElementsAre("Five", "Four", "One", "Three", "Two"));
}

TEST_F(AppScanTest, theSessionDecidesWhatIsOffered) {
    files.file("/usr/bin/tool", "");
    files.file("/usr/bin/no-program", "");
    files.makeExecutable("/usr/bin/tool");
    entry("/a/1.desktop", "By Name", "TryExec=tool\n");
    entry("/a/2.desktop", "By Path", "TryExec=/usr/bin/tool\n");
    entry("/a/3.desktop", "Gone", "TryExec=gone\n");
    entry("/a/4.desktop", "No Program", "TryExec=no-program\n");
    entry("/a/5.desktop", "Elsewhere", "OnlyShowIn=KDE;\nMimeType=Text/X;\n");
    const auto result = AppScan::scan(files, environment, {"/a"});
    EXPECT_THAT(names({"/a"}), ElementsAre("By Name", "By Path"));
    EXPECT_EQ(result.registry->handlerForType("text/x")->name, "Elsewhere");
}

TEST_F(AppScanTest, whatCannotBeReadCostsNothingElse) {
    entry("/a/good.desktop", "Good");
    entry("/a/large.desktop", "Large", "X-Padding=" + std::string(10 << 20, 'x') + "\n");
    files.file("/a/binary.desktop",
               "\x7f"
               "ELF");
    files.file("/a/empty.desktop", "");
    files.file("/a/open.desktop", "[Desktop Entry]\nType=Application\nName=N\nExec=\"x\n");
    files.file("/a/nameless.desktop", "[Desktop Entry]\nType=Application\nExec=x\n");
    files.link("/a/dangling.desktop", "/nowhere");
    files.link("/a/circle.desktop", "circle.desktop");
    entry("/a/forbidden.desktop", "Forbidden");
    files.forbid("/a/forbidden.desktop");
    entry("/a/closed/x.desktop", "Closed");
    files.forbid("/a/closed");
    files.file("/file", "");
    EXPECT_THAT(names({"/file", "/none", "/a"}), ElementsAre("Good"));
}

TEST_F(AppScanTest, aFolderMayVanishDuringTheScan) {
    entry("/a/1.desktop", "One");
    entry("/b/2.desktop", "Two");
    entry("/c/3.desktop", "Three");
    files.beforeEntries = [this](const std::string& path) {
        if (path == "/b")
            files.remove("/b");
    };
    EXPECT_THAT(names({"/a", "/b", "/c"}), ElementsAre("One", "Three"));
}

TEST_F(AppScanTest, associationsAreReadFromTheirPlacesInOrder) {
    entry("/a/one.desktop", "One");
    entry("/a/two.desktop", "Two");
    const auto prefer = [](const std::string& type, const std::string& id) {
        return "[Default Applications]\n" + type + "=" + id + ".desktop\n";
    };
    files.file("/home/u/.config/gnome-mimeapps.list", prefer("a/a", "one"));
    files.file("/home/u/.config/mimeapps.list", prefer("a/a", "two") + "b/b=two.desktop\n");
    files.file("/usr/share/applications/mimeapps.list", prefer("b/b", "one") + "c/c=one.desktop\n");
    const auto registry = AppScan::scan(files, environment, {"/a"}).registry;
    EXPECT_EQ(registry->handlerForType("a/a")->name, "One");
    EXPECT_EQ(registry->handlerForType("b/b")->name, "Two");
    EXPECT_EQ(registry->handlerForType("c/c")->name, "One");
}

} // namespace
} // namespace tessarine
