#include "launcherapp/index/proof/WalkerFixture.h"

#include "LauncherCore/text/Paths.h"
#include "launcherapp/index/IndexRoots.h"

#include <fmt/format.h>

#include <array>
#include <chrono>
#include <filesystem>
#include <system_error>

namespace tessarine {

namespace {

constexpr auto fixtureFiles = std::to_array<std::string_view>({
    "d1/f1.txt",
    "d1/d2/f2.md",
    "d1/d2/d3/f3",
    "d1/d2/d3/d4/f4.TXT",
    "d1/d2/d3/d4/d5/f5.txt",
    "plain.tar.gz",
    ".dotfile",
    ".hidden/visible.txt",
    "node_modules/left-pad/index.js",
    "Thing.app/Contents/MacOS/thing",
    "Photos.noindex/inner/a.jpg",
});

} // namespace

WalkerFixture::WalkerFixture(FileStore& files, const Environment& environment)
    : files_(files),
      // As the walks spell it, since their ids are compared with it.
      root_(Paths::normalized(
          fmt::format("{}/tsr-walker-selftest-{:x}",
                      environment.temporaryDir,
                      std::chrono::steady_clock::now().time_since_epoch().count()))) {
    try {
        make();
    } catch (...) {
        files_.remove(root_);
        throw;
    }
}

WalkerFixture::~WalkerFixture() {
    try {
        files_.remove(root_);
    } catch (const FileError&) {
        // What the system's own clean-up will find.
    }
}

void WalkerFixture::make() {
    for (const auto file : fixtureFiles)
        files_.save(path(file), "");
    files_.makeDirectories(path("d1/d2/d3/d4/d5/d6/d7"));
    // The door to files makes no links, since nothing but this needs one.
    std::error_code error;
    std::filesystem::create_directory_symlink("d1", path("link-to-d1"), error);
    if (error)
        throw FileError(path("link-to-d1") + " could not be made: " + error.message());
}

IndexWalker::Policy WalkerFixture::policy() {
    return {.folderDepth = 6, .fileDepth = 4, .skipDirs = &IndexRoots::skipDirs(), .budget = 1000};
}

std::set<std::string> WalkerFixture::shapeOf(const ItemList& items) const {
    std::set<std::string> shape;
    for (std::size_t i = 0; i < items.size(); ++i)
        shape.insert(items.id(i).substr(root_.size() + 1) + (items.isFolder(i) ? "/" : ""));
    return shape;
}

std::string missingFrom(const std::set<std::string>& first, const std::set<std::string>& second) {
    std::string list;
    for (const auto& path : first) {
        if (!second.contains(path))
            list += (list.empty() ? "" : ", ") + path;
    }
    return list;
}

} // namespace tessarine
