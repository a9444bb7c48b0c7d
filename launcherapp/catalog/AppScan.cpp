#include "launcherapp/catalog/AppScan.h"

#include "LauncherCore/catalog/AppNaming.h"
#include "LauncherCore/catalog/DesktopEntry.h"
#include "LauncherCore/catalog/Launchable.h"
#include "LauncherCore/catalog/MimeApps.h"
#include "LauncherCore/commands/SettingsPanes.h"
#include "LauncherCore/text/Collation.h"
#include "LauncherCore/text/Folding.h"
#include "LauncherCore/text/Paths.h"

#include <algorithm>
#include <optional>
#include <set>
#include <string_view>
#include <tuple>
#include <utility>

namespace tessarine {

namespace {

constexpr std::string_view extension = ".desktop";

/// One pass, with what it has met so far.
class Pass {
public:
    Pass(const FileStore& files, const Environment& environment)
        : files_(files), environment_(environment),
          languages_(desktopLanguages(environment.languagePriority, environment.messagesLocale)) {}

    void walkRoot(const std::string& root) {
        root_ = root;
        considerFolder(root, 0);
    }

    AppScan::Result finish(const std::vector<std::string>& roots) {
        directories_.insert(roots.begin(), roots.end());
        unlistTwins();
        auto apps = listed();
        return {.registry =
                    std::make_shared<const AppRegistry>(std::move(installed_), associations()),
                .apps = std::move(apps),
                .directories = {directories_.begin(), directories_.end()}};
    }

private:
    void considerFolder(const std::string& path, int depth) {
        // The depth bounds loops of links as well.
        if (depth >= AppScan::maximumDepth)
            return;
        auto entries = files_.entries(path);
        if (!entries)
            return;
        directories_.insert(path);
        // The kernel gives them in no order; which of two files of one id counts must not change.
        std::ranges::sort(*entries, {}, &DirectoryEntry::name);
        for (const auto& entry : *entries) {
            const auto child = path + "/" + entry.name;
            if (entry.name.ends_with(extension))
                considerEntry(child);
            else if (entry.kind == FileKind::directory)
                considerFolder(child, depth + 1);
        }
    }

    void considerEntry(const std::string& path) {
        const auto bundleID = idOf(path);
        if (claimed_.contains(bundleID))
            return;
        const auto real = files_.realPath(path);
        if (!real || seen_.contains(*real))
            return;
        const auto entry = AppScan::entryAt(files_, path, languages_);
        if (!entry)
            return;
        const auto verdict =
            Launchable::verdict(*entry,
                                {.currentDesktops = environment_.desktops,
                                 .canExecute = [this](std::string_view program) {
                                     return AppScan::canExecute(files_, environment_, program);
                                 }});
        switch (verdict) {
        case Launchable::Verdict::notAnApplication:
        case Launchable::Verdict::incomplete:
            return;
        case Launchable::Verdict::deleted:
        case Launchable::Verdict::programMissing:
            break;
        case Launchable::Verdict::otherDesktop:
            keep(*entry, path, bundleID, Listing::no);
            break;
        case Launchable::Verdict::offered:
            keep(*entry, path, bundleID, isOffered(*entry) ? Listing::yes : Listing::no);
            break;
        }
        claimed_.insert(bundleID);
        seen_.insert(*real);
    }

    /// A page of the desktop's settings asks for no display and has an icon, as some applications
    /// do, but is a place in one of them.
    static bool isOffered(const DesktopEntry& entry) {
        return Launchable::isLaunchable(entry) &&
               !SettingsPanes::opensPage(entry.text("Exec").value_or(""));
    }

    enum class Listing { no, yes };

    void keep(const DesktopEntry& entry,
              const std::string& path,
              const std::string& bundleID,
              Listing listing) {
        auto names = AppNaming::names(entry, path, bundleID, languages_);
        auto mimeTypes = entry.list("MimeType");
        std::ranges::transform(mimeTypes, mimeTypes.begin(), Folding::lowercase);
        if (entry.flag("NoDisplay"))
            undisplayed_.insert(path);
        installed_.push_back({
            .bundleID = bundleID,
            .path = path,
            .name = std::move(names.name),
            .aliases = std::move(names.aliases),
            .listed = listing == Listing::yes,
            .icon = entry.localized("Icon", languages_).value_or(""),
            .exec = entry.text("Exec").value_or(""),
            .workingDirectory = entry.text("Path").value_or(""),
            .terminal = entry.flag("Terminal"),
            .terminalEmulator =
                std::ranges::count(entry.list("Categories"), "TerminalEmulator") > 0,
            .busActivatable = entry.flag("DBusActivatable"),
            .windowClass = entry.text("StartupWMClass").value_or(""),
            .mimeTypes = std::move(mimeTypes),
        });
    }

    /// "kde/konsole.desktop" below a root has the id "kde-konsole".
    std::string idOf(const std::string& path) const {
        auto id = path.substr(root_.size() + 1);
        id.resize(id.size() - extension.size());
        std::ranges::replace(id, '/', '-');
        return id;
    }

    /// An entry that asks for no display and has the name of one that doesn't is the same
    /// application with other file types, as document viewers have one for each.
    void unlistTwins() {
        std::set<std::string> displayed;
        for (const auto& app : installed_) {
            if (app.listed && !undisplayed_.contains(app.path))
                displayed.insert(Folding::fold(app.name));
        }
        for (auto& app : installed_) {
            if (undisplayed_.contains(app.path) && displayed.contains(Folding::fold(app.name)))
                app.listed = false;
        }
    }

    std::vector<CatalogApp> listed() const {
        const Collation collation(environment_.collationLocale);
        std::vector<std::pair<std::string, CatalogApp>> keyed;
        for (const auto& app : installed_) {
            if (app.listed)
                keyed.emplace_back(collation.sortKey(app.name),
                                   CatalogApp{.id = app.path,
                                              .name = app.name,
                                              .path = app.path,
                                              .bundleID = app.bundleID,
                                              .aliases = app.aliases});
        }
        std::ranges::sort(keyed, [](const auto& left, const auto& right) {
            return std::tie(left.first, left.second.path) <
                   std::tie(right.first, right.second.path);
        });
        std::vector<CatalogApp> apps;
        apps.reserve(keyed.size());
        for (auto& [key, app] : keyed)
            apps.push_back(std::move(app));
        return apps;
    }

    /// Where the associations lie, best first (Association between MIME types and applications
    /// 1.0.1): each folder's file of a desktop before that of all desktops.
    MimeApps associations() const {
        std::vector<std::string> folders{environment_.configHome};
        folders.insert(
            folders.end(), environment_.configDirs.begin(), environment_.configDirs.end());
        folders.push_back(environment_.dataHome + "/applications");
        for (const auto& folder : environment_.dataDirs)
            folders.push_back(folder + "/applications");
        MimeApps result;
        for (const auto& folder : folders) {
            for (const auto& desktop : environment_.desktops)
                addAssociations(result,
                                folder + "/" + Folding::lowercase(desktop) + "-mimeapps.list");
            addAssociations(result, folder + "/mimeapps.list");
        }
        return result;
    }

    void addAssociations(MimeApps& result, const std::string& path) const {
        try {
            if (const auto text = files_.read(path, DesktopEntry::maximumBytes))
                result.add(*text);
        } catch (const FileError&) {
            // What can't be read says nothing; the other files still count.
        }
    }

    const FileStore& files_;
    const Environment& environment_;
    const std::vector<std::string> languages_;
    std::string root_;
    std::set<std::string> seen_;    ///< real paths of entries
    std::set<std::string> claimed_; ///< desktop-file ids
    std::set<std::string> directories_;
    std::set<std::string> undisplayed_; ///< paths of entries that ask for no display
    std::vector<InstalledApp> installed_;
};

} // namespace

std::vector<std::string> AppScan::roots(const Environment& environment,
                                        const std::vector<std::string>& extraFolders) {
    std::vector<std::string> roots{environment.dataHome + "/applications"};
    for (const auto& folder : environment.dataDirs)
        roots.push_back(folder + "/applications");
    // Sessions that were never told of these have them missing in XDG_DATA_DIRS.
    roots.push_back(environment.dataHome + "/flatpak/exports/share/applications");
    roots.push_back("/var/lib/flatpak/exports/share/applications");
    roots.push_back("/var/lib/snapd/desktop/applications");
    for (const auto& folder : extraFolders)
        roots.push_back(expandingTilde(environment, folder));
    std::vector<std::string> unique;
    for (auto& root : roots) {
        root = Paths::withoutEndSlashes(root);
        if (root.starts_with('/') && std::ranges::count(unique, root) == 0)
            unique.push_back(std::move(root));
    }
    return unique;
}

std::optional<DesktopEntry> AppScan::entryAt(const FileStore& files,
                                             const std::string& path,
                                             const std::vector<std::string>& languages) {
    try {
        const auto bytes = files.read(path, DesktopEntry::maximumBytes);
        return bytes ? DesktopEntry::parse(*bytes, languages) : std::nullopt;
    } catch (const FileError&) {
        return std::nullopt;
    }
}

bool AppScan::canExecute(const FileStore& files,
                         const Environment& environment,
                         std::string_view program) {
    const auto isExecutable = [&](const std::string& path) {
        const auto info = files.info(path);
        return info && info->kind == FileKind::file && info->executable;
    };
    if (program.find('/') != std::string_view::npos)
        return isExecutable(expandingTilde(environment, program));
    return std::ranges::any_of(environment.programDirs, [&](const std::string& folder) {
        return isExecutable(folder + "/" + std::string(program));
    });
}

AppScan::Result AppScan::scan(const FileStore& files,
                              const Environment& environment,
                              const std::vector<std::string>& roots) {
    Pass pass(files, environment);
    for (const auto& root : roots)
        pass.walkRoot(root);
    return pass.finish(roots);
}

} // namespace tessarine
