#include "launcherapp/index/DemonstrationFiles.h"

#include "LauncherCore/query/Matcher.h"

#include <algorithm>
#include <array>
#include <map>
#include <string>
#include <string_view>

namespace tessarine {

namespace {

struct Invented {
    std::string_view folder;
    std::string_view name;
    bool isFolder = false;
};

constexpr std::string_view documents = "/demo/Documents";
constexpr std::string_view allotment = "/demo/Documents/Allotment";
constexpr std::string_view notes = "/demo/Documents/Field notes";
constexpr std::string_view kites = "/demo/Documents/Kite drawings";
constexpr std::string_view recipes = "/demo/Documents/Recipe cards";

constexpr auto invented = std::to_array<Invented>({
    {documents, "Allotment", true},
    {documents, "Allotment plan.pdf"},
    {documents, "Choir rehearsal.m4a"},
    {documents, "Field notes", true},
    {documents, "Field notes spring.md"},
    {documents, "Harbour at dusk.jpg"},
    {documents, "Invoice 2031.pdf"},
    {documents, "Kite drawings", true},
    {documents, "Lantern parade.mp4"},
    {documents, "Recipe cards", true},
    {documents, "Rhubarb tart.txt"},
    {documents, "Travel budget.ods"},
    {allotment, "Beds in March.jpg"},
    {allotment, "Seed order.ods"},
    {allotment, "Watering rota.txt"},
    {notes, "Curlews by the weir.md"},
    {notes, "Heron count.ods"},
    {notes, "Sketches", true},
    {kites, "Box kite.svg"},
    {kites, "Delta with a tail.svg"},
    {recipes, "Barley soup.txt"},
    {recipes, "Plum jam.txt"},
    {recipes, "Sourdough.txt"},
});

/// The folders of the table, by path, and those above it.
class DemonstrationFolders : public DirectoryReader {
public:
    DemonstrationFolders() {
        listings_["/demo"].add("Documents", true);
        for (const auto& [folder, name, isFolder] : invented) {
            listings_[std::string(folder)].add(name, isFolder);
            if (isFolder)
                listings_.try_emplace(std::string(folder) + "/" + std::string(name));
        }
        for (auto& [path, listing] : listings_)
            listing.sort();
    }

    std::optional<DirectoryListing> list(const std::string& path) const override {
        const auto found = listings_.find(path);
        return found == listings_.end() ? std::nullopt : std::optional(found->second);
    }

    bool isLink(const std::string&) const override { return false; }

    bool isGone(const std::string& path) const override { return !listings_.contains(path); }

private:
    std::map<std::string, DirectoryListing> listings_;
};

} // namespace

std::vector<SharedItems> demonstrationFiles() {
    auto items = std::make_shared<ItemList>();
    for (const auto& [folder, name, isFolder] : invented)
        items->add(items->addDirectory(folder), name, Matcher::normalize(name), isFolder);
    return {std::move(items)};
}

std::shared_ptr<const DirectoryReader> demonstrationFolders() {
    return std::make_shared<const DemonstrationFolders>();
}

} // namespace tessarine
