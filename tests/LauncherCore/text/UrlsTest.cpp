#include "LauncherCore/text/Urls.h"

#include <gtest/gtest.h>

namespace tessarine {
namespace {

TEST(Urls, fileUrlAndPathAreInverse) {
    const struct {
        std::string path;
        std::string url;
    } cases[] = {
        {"/usr/share/applications/a.desktop", "file:///usr/share/applications/a.desktop"},
        {"/home/a b/50%#?.txt", "file:///home/a%20b/50%25%23%3F.txt"},
        {"/café", "file:///caf%C3%A9"},
        {"/", "file:///"},
    };

    for (const auto& [path, url] : cases) {
        SCOPED_TRACE(path);
        EXPECT_EQ(Urls::fileUrl(path), url);
        EXPECT_EQ(Urls::filePath(url), path);
    }
}

TEST(Urls, onlyFilesOfThisMachineHaveAPath) {
    const struct {
        std::string url;
        std::optional<std::string> path;
        const char* reason;
    } cases[] = {
        {"file://localhost/a", "/a", "the name of this machine"},
        {"file://elsewhere/a", std::nullopt, "another machine"},
        {"https://example.com/a", std::nullopt, "no file"},
        {"file:///a%00b", std::nullopt, "a NUL would cut the path short"},
        {"file:///100%", "/100%", "a percent sign that encodes nothing"},
        {"file:///a%4", "/a%4", "half an encoding"},
        {"file:///a%zz", "/a%zz", "no hexadecimal digits"},
    };

    for (const auto& [url, path, reason] : cases)
        EXPECT_EQ(Urls::filePath(url), path) << reason;
}

} // namespace
} // namespace tessarine
