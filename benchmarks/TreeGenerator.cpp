#include "benchmarks/TreeGenerator.h"

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <random>
#include <set>
#include <string_view>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace tessarine {

namespace {

constexpr int deepest = 8; ///< depth of the entries that lie deepest
constexpr std::size_t fewestEntries = 15;
constexpr std::size_t mostEntries = 30;
constexpr std::size_t averageEntries = (fewestEntries + mostEntries) / 2;

constexpr auto words = std::to_array<std::string_view>(
    {"Annual",  "Report",   "Invoice", "Budget",   "Meeting", "Notes",    "Draft",   "Final",
     "Holiday", "Project",  "Garden",  "Contract", "Letter",  "Tax",      "Receipt", "Summary",
     "Plan",    "Proposal", "Travel",  "Recipe",   "Lecture", "Chapter",  "Manual",  "Backup",
     "Archive", "Scan",     "Offer",   "Schedule", "Rent",    "Insurance"});
constexpr auto foreign = std::to_array<std::string_view>({"Übersicht",
                                                          "Résumé",
                                                          "señal",
                                                          "日本語",
                                                          "写真",
                                                          "Ελλάδα",
                                                          "Москва",
                                                          "naïve",
                                                          "Straße",
                                                          "café"});
constexpr auto parts = std::to_array<std::string_view>({"index",
                                                        "parse",
                                                        "server",
                                                        "client",
                                                        "view",
                                                        "model",
                                                        "util",
                                                        "render",
                                                        "query",
                                                        "buffer",
                                                        "main",
                                                        "config",
                                                        "test",
                                                        "cache",
                                                        "route",
                                                        "state",
                                                        "event",
                                                        "layout"});
constexpr auto documentEndings = std::to_array<std::string_view>(
    {".pdf", ".docx", ".odt", ".txt", ".xlsx", ".md", ".PDF", ".pptx"});
constexpr auto sourceEndings = std::to_array<std::string_view>(
    {".cpp", ".h", ".py", ".js", ".ts", ".rs", ".json", ".go", ".test.ts"});
constexpr auto photoPrefixes = std::to_array<std::string_view>({"IMG_", "DSC", "PXL_2023", "P10"});
constexpr auto photoEndings =
    std::to_array<std::string_view>({".jpg", ".JPG", ".CR2", ".heic", ".png"});

/// What a directory and all below it holds.
enum class Content { documents, sources, photos, music };

class Namer {
public:
    std::size_t below(std::size_t bound) { return random_() % bound; }

    std::string file(Content content) {
        switch (content) {
        case Content::documents:
            return title() + " " + std::to_string(2005 + below(20)) + any(documentEndings);
        case Content::sources:
            return any(parts) + (below(2) ? "_" : "-") + any(parts) +
                   (below(3) ? "" : std::to_string(below(9))) + any(sourceEndings);
        case Content::photos:
            return any(photoPrefixes) + std::to_string(1000 + below(9000)) + any(photoEndings);
        case Content::music:
            return (below(20) < 10 ? "0" : "1") + std::to_string(below(10)) + " - " + title() +
                   (below(4) ? ".mp3" : ".flac");
        }
        return {};
    }

    std::string folder(Content content) {
        if (content == Content::sources)
            return any(parts) + (below(3) ? "" : "-" + any(parts));
        return content == Content::photos ? std::to_string(2005 + below(20)) + "-" + title()
                                          : title();
    }

    Content content() { return static_cast<Content>(below(4)); }

private:
    template <typename Table> std::string any(const Table& table) {
        return std::string(table[below(table.size())]);
    }

    /// One in twenty isn't ASCII.
    std::string title() { return any(words) + " " + (below(20) == 0 ? any(foreign) : any(words)); }

    std::mt19937 random_{20260401};
};

struct Directory {
    std::string path; ///< with "/" at its end, empty for the root
    int depth = 0;
    Content content = Content::documents;
    std::size_t entries = 0;
};

/// "name", or with a number before its extension where that is taken.
std::string unusedName(std::set<std::string>& taken, const Directory& directory, std::string name) {
    const auto dot = std::min(name.find('.'), name.size());
    auto path = directory.path + name;
    for (int copy = 2; !taken.insert(path).second; ++copy)
        path = directory.path + name.substr(0, dot) + " (" + std::to_string(copy) + ")" +
               name.substr(dot);
    return path;
}

} // namespace

std::vector<PlannedEntry> plannedTree(std::size_t entryCount) {
    Namer namer;
    std::set<std::string> taken;
    std::vector<PlannedEntry> tree;
    tree.reserve(entryCount);
    std::vector<Directory> directories(1);
    while (directories.size() < entryCount / averageEntries) {
        auto& parent = directories[namer.below(directories.size())];
        if (parent.depth + 1 >= deepest || parent.entries >= mostEntries)
            continue;
        ++parent.entries;
        const auto content = parent.depth == 0 ? namer.content() : parent.content;
        auto path = unusedName(taken, parent, namer.folder(content));
        tree.push_back({.path = path, .isFolder = true});
        directories.push_back({.path = path + "/", .depth = parent.depth + 1, .content = content});
    }
    for (const auto& directory : directories) {
        auto wanted = fewestEntries + namer.below(mostEntries - fewestEntries + 1);
        if (&directory == &directories.back())
            wanted = entryCount; // the few that are left over
        for (auto n = directory.entries; n < wanted && tree.size() < entryCount; ++n)
            tree.push_back({.path = unusedName(taken, directory, namer.file(directory.content))});
    }
    return tree;
}

void makeTree(const std::string& root, const std::vector<PlannedEntry>& tree) {
    for (const auto& entry : tree) {
        const auto path = root + "/" + entry.path;
        const int file = entry.isFolder
                             ? ::mkdir(path.c_str(), 0755)
                             : ::open(path.c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0644);
        if (file < 0)
            throw std::system_error(errno, std::generic_category(), path);
        if (!entry.isFolder)
            ::close(file);
    }
}

} // namespace tessarine
