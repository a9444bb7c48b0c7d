#include "launcherapp/index/DemonstrationFiles.h"

#include "LauncherCore/query/Matcher.h"

#include <array>
#include <string>
#include <string_view>

namespace tessarine {

namespace {

struct Invented {
    std::string_view name;
    bool isFolder = false;
};

constexpr auto invented = std::to_array<Invented>({
    {"Allotment", true},
    {"Allotment plan.pdf"},
    {"Choir rehearsal.m4a"},
    {"Field notes", true},
    {"Field notes spring.md"},
    {"Harbour at dusk.jpg"},
    {"Invoice 2031.pdf"},
    {"Kite drawings", true},
    {"Lantern parade.mp4"},
    {"Recipe cards", true},
    {"Rhubarb tart.txt"},
    {"Travel budget.ods"},
});

} // namespace

std::vector<SharedItems> demonstrationFiles() {
    auto items = std::make_shared<ItemList>();
    const auto folder = items->addDirectory("/demo/Documents");
    for (const auto& [name, isFolder] : invented)
        items->add(folder, name, Matcher::normalize(name), isFolder);
    return {std::move(items)};
}

} // namespace tessarine
