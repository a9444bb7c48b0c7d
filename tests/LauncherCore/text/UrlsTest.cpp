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
        {"file:/a", "/a", "no host at all"},
        {"file:a", std::nullopt, "no absolute path"},
        {"file:////a", "//a", "an empty host, then the path"},
        {"file:///a.html#top", "/a.html", "a place within the file"},
        {"file:///a.html?x=1#top", "/a.html", "a query"},
        {"file:///a%23b%3Fc", "/a#b?c", "the file's own characters"},
        {"file:///a%00b", std::nullopt, "a NUL would cut the path short"},
        {"file:///100%", "/100%", "a percent sign that encodes nothing"},
        {"file:///a%4", "/a%4", "half an encoding"},
        {"file:///a%zz", "/a%zz", "no hexadecimal digits"},
    };

    for (const auto& [url, path, reason] : cases)
        EXPECT_EQ(Urls::filePath(url), path) << reason;
}

TEST(Urls, aTextIsAUrlByItsSchemeAlone) {
    const struct {
        const char* reason;
        std::string text;
        std::optional<std::string> url;
    } cases[] = {
        {"no scheme", "example.org", std::nullopt},
        {"none before the colon", ":x", std::nullopt},
        {"a digit begins no scheme", "1a:b", std::nullopt},
        {"a line end", "https://a\nb", std::nullopt},
        {"only the scheme is lowered", "HTTPS://A/B", "https://A/B"},
        {"what is encoded stays so", "https://a/%41?b=c&d#e", "https://a/%41?b=c&d#e"},
        {"blanks, quotation marks and foreign letters", "x:a \"ü", "x:a%20%22%C3%BC"},
    };

    for (const auto& [reason, text, url] : cases)
        EXPECT_EQ(Urls::withScheme(text), url) << reason;
}

} // namespace
} // namespace tessarine
