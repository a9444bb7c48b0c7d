#include "LauncherCore/catalog/AppRegistry.h"

#include <gmock/gmock.h>

namespace tessarine {
namespace {

InstalledApp app(const std::string& id, const std::string& exec = "x", bool listed = true) {
    return {.bundleID = id, .path = "/a/" + id + ".desktop", .listed = listed, .exec = exec};
}

std::string idOf(const InstalledApp* found) {
    return found ? found->bundleID : "(none)";
}

TEST(AppRegistry, idsAreFoundHoweverTheyAreWritten) {
    const AppRegistry registry({app("org.gnome.Nautilus"), app("org.gnome.Nautilus"), app("fox")},
                               {});
    EXPECT_EQ(registry.byID("org.gnome.Nautilus"), &registry.apps()[0]); // the first counts
    EXPECT_EQ(idOf(registry.byID("ORG.GNOME.nautilus.desktop")), "org.gnome.Nautilus");
    EXPECT_EQ(idOf(registry.byID("Nautilus")), "(none)"); // no guessing by a part
    EXPECT_EQ(idOf(registry.byID("")), "(none)");
    EXPECT_EQ(idOf(registry.byPath("/a/fox.desktop")), "fox");
}

TEST(AppRegistry, whatACommandNamesIsAnEntryAnIdOrAProgram) {
    const AppRegistry registry({app("org.x.Editor", "/usr/bin/editor-bin %F"),
                                app("bare", "tool --new"),
                                app("env-e", "env e")},
                               {});

    const struct {
        std::string text, named, startedBy;
    } cases[] = {
        {"/a/org.x.Editor.desktop", "org.x.Editor", "(none)"},
        {"/b/org.x.Editor.desktop", "org.x.Editor", "(none)"}, // hidden by the other folder's
        {"org.x.editor", "org.x.Editor", "(none)"},
        {"/b/org.x.Editor", "(none)", "(none)"}, // a path, and no entry's
        {"/usr/bin/editor-bin", "(none)", "org.x.Editor"},
        {"editor-bin", "(none)", "org.x.Editor"},
        {"/opt/bin/editor-bin", "(none)", "(none)"}, // another program of that name
        {"/opt/bin/tool", "(none)", "bare"},         // where a bare name may lead
        {"/usr/bin/env", "(none)", "(none)"},        // starts others' programs
        {"", "(none)", "(none)"},
    };

    for (const auto& [text, named, startedBy] : cases) {
        EXPECT_EQ(idOf(registry.named(text)), named) << text;
        EXPECT_EQ(idOf(registry.startedBy(text)), startedBy) << text;
    }
}

TEST(AppRegistry, windowsAreOwnedByTheBestHint) {
    auto editor = app("org.x.Editor", "/usr/bin/editor-bin %F");
    editor.windowClass = "EditorWindow";
    auto helper = app("helper", "/usr/lib/shared-program", false);
    const AppRegistry registry({helper,
                                editor,
                                app("org.gnome.Terminal", "gnome-terminal"),
                                app("shared", "env A=b shared-program"),
                                app("direct", "shared-program")},
                               {});

    const struct {
        WindowOwnerHints window;
        std::string owner;
        const char* reason;
    } cases[] = {
        {{.applicationID = "shared", .className = "EditorWindow"}, "shared", "its own word first"},
        {{.applicationID = "unknown", .className = "editorwindow"},
         "org.x.Editor",
         "then the class"},
        {{.className = "X", .instanceName = "EditorWindow"}, "org.x.Editor", "or the instance"},
        {{.className = "org.gnome.Terminal"}, "org.gnome.Terminal", "an id as class"},
        {{.className = "Terminal"}, "org.gnome.Terminal", "the last part of an id"},
        {{.className = "?", .executable = "/opt/bin/editor-bin"}, "org.x.Editor", "the program"},
        {{.executable = "/usr/bin/shared-program"}, "direct", "a listed one before a helper"},
        {{.executable = "/usr/bin/env"}, "(none)", "a wrapper tells nothing"},
        {{.className = "gnome"}, "(none)", "no part in the middle"},
        {{}, "(none)", "nothing known"},
    };

    for (const auto& [window, owner, reason] : cases)
        EXPECT_EQ(idOf(registry.windowOwner(window)), owner) << reason;
}

TEST(AppRegistry, onlyWhatAWindowSaysOfItselfIsSure) {
    auto editor = app("org.x.Editor", "/usr/bin/editor-bin %F");
    editor.windowClass = "EditorWindow";
    const AppRegistry registry({editor,
                                app("com.example.app", "example"),
                                app("jar", "/usr/bin/java -jar /opt/x.jar"),
                                app("script", "python3.11 /opt/x.py"),
                                app("shell", "electron25 /opt/app"),
                                app("plain", "plain")},
                               {});

    const struct {
        WindowOwnerHints window;
        std::string likely;
        std::string sure;
        const char* reason;
    } cases[] = {
        {{.applicationID = "plain"}, "plain", "plain", "an id, of its own or its control group"},
        {{.className = "EditorWindow"}, "org.x.Editor", "org.x.Editor", "its class as promised"},
        {{.instanceName = "com.example.app"}, "com.example.app", "com.example.app", "a whole id"},
        {{.className = "Tk", .instanceName = "app"}, "com.example.app", "(none)", "any program's"},
        {{.executable = "/opt/editor-bin"}, "org.x.Editor", "(none)", "the same name elsewhere"},
        {{.executable = "/usr/lib/jvm/17/bin/java"}, "(none)", "(none)", "runs any program"},
        {{.executable = "/usr/bin/python3.11"}, "(none)", "(none)", "whatever its version"},
        {{.executable = "/usr/lib/electron25"}, "(none)", "(none)", "or that"},
    };

    for (const auto& [window, likely, sure, reason] : cases) {
        EXPECT_EQ(idOf(registry.windowOwner(window)), likely) << reason;
        EXPECT_EQ(idOf(registry.windowOwner(window, Certainty::sure)), sure) << reason;
    }
}

TEST(AppRegistry, handlersFollowTheUsersAssociations) {
    auto first = app("first");
    first.mimeTypes = {"text/plain", "x-scheme-handler/https"};
    auto second = app("second", "x", false);
    second.mimeTypes = {"text/plain", "text/html"};
    MimeApps associations;
    // The user's own file is read before the system's.
    associations.add(
        "[Default Applications]\nX-Scheme-Handler/HTTPS = gone.desktop;second.desktop\n"
        "[Removed Associations]\ntext/plain=first.desktop;\n");
    associations.add(
        "# system\n[Default Applications]\nx-scheme-handler/https=first.desktop\n"
        "text/plain=first.desktop\n[Added Associations]\nimage/png=first;\nnonsense\n");
    const AppRegistry registry({first, second}, associations);
    EXPECT_EQ(idOf(registry.handlerForScheme("HTTPS")), "second");    // the first that is installed
    EXPECT_EQ(idOf(registry.handlerForType("text/plain")), "second"); // taken away from the other
    EXPECT_EQ(idOf(registry.handlerForType("image/png")), "first");
    EXPECT_EQ(idOf(registry.handlerForType("text/html")), "second"); // by its own word
    EXPECT_EQ(idOf(registry.handlerForScheme("gopher")), "(none)");
}

} // namespace
} // namespace tessarine
