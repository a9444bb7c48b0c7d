#include "launcherapp/index/DemonstrationFiles.h"

#include <gtest/gtest.h>

namespace tessarine {
namespace {

TEST(DemonstrationFiles, lieInFoldersThatCanBeGoneInto) {
    const auto folders = demonstrationFolders();
    const auto files = demonstrationFiles();
    std::size_t found = 0;
    const auto visit = [&](const auto& self, const std::string& path) -> void {
        const auto listing = folders->list(path);
        ASSERT_TRUE(listing) << path;
        found += listing->size();
        for (std::size_t entry = 0; entry < listing->size(); ++entry) {
            if (listing->isDirectory(entry))
                self(self, path + "/" + std::string(listing->name(entry)));
        }
    };
    visit(visit, "/demo/Documents");
    EXPECT_EQ(found, files.front()->size()) << "what is found is what is there";
    EXPECT_FALSE(folders->list("/"));
}

} // namespace
} // namespace tessarine
