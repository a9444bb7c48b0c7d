#include "LauncherCore/catalog/AppNaming.h"

#include <gmock/gmock.h>

namespace tessarine {
namespace {

using testing::ElementsAre;

AppNaming::Names names(const std::string& lines,
                       const std::string& path,
                       const std::vector<std::string>& languages = {},
                       const std::string& bundleID = "x") {
    const auto entry = DesktopEntry::parse("[Desktop Entry]\n" + lines, languages);
    return AppNaming::names(*entry, path, bundleID, languages);
}

TEST(AppNaming, theFileNameLeavesTheDomainOut) {
    const struct {
        std::string path;
        std::string name;
    } cases[] = {
        {"/a/TEST Plain.desktop", "TEST Plain"},
        {"/a/firefox.desktop", "firefox"},
        {"/a/org.gnome.Nautilus.desktop", "Nautilus"},
        {"/a/python3.11.desktop", "python3.11"},
        {"/a/Tool 1.2.3.desktop", "Tool 1.2.3"},
        {"/a/odd...desktop", "odd.."},
        {"/a/noending", "noending"},
    };

    for (const auto& [path, name] : cases)
        EXPECT_EQ(AppNaming::fileName(path), name);
}

TEST(AppNaming, everyWordIsHeldOnceInItsOrder) {
    const auto german = names("Name=Files\nName[de]=Dateien\nGenericName=File Manager\n"
                              "GenericName[de]=Dateiverwaltung\nKeywords=folder;FILES;\n"
                              "Keywords[de]=Ordner; ;\n",
                              "/a/org.gnome.Nautilus.desktop",
                              {"de"});
    EXPECT_EQ(german.name, "Dateien");
    EXPECT_THAT(
        german.aliases,
        ElementsAre("Nautilus", "Files", "Dateiverwaltung", "File Manager", "Ordner", "folder"));

    const auto plain = names("Name= Files \nGenericName=files\n", "/a/FILES.desktop");
    EXPECT_EQ(plain.name, "Files");
    EXPECT_THAT(plain.aliases, testing::IsEmpty()); // all of them are the name again
}

TEST(AppNaming, withoutAnyNameTheFileNameStandsIn) {
    EXPECT_EQ(names("Name=\\s\n", "/a/tool.desktop").name, "tool");
}

TEST(AppNaming, aDictationToolIsFoundByWhatItDoes) {
    EXPECT_THAT(names("Name=Wispr\n", "/a/wispr.desktop", {}, "com.electron.wispr-flow").aliases,
                ElementsAre("dictation", "voice typing", "speech to text"));
    EXPECT_TRUE(AppNaming::purposeWords("com.electron.wispr").empty());
}

} // namespace
} // namespace tessarine
