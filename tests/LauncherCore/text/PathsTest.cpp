#include "LauncherCore/text/Paths.h"

#include <gtest/gtest.h>

namespace tessarine {
namespace {

TEST(Paths, areTakenApartAtTheirSlashes) {
    const struct {
        const char* path;
        const char* tidied;
        const char* parent;
        const char* last;
    } cases[] = {
        {"/a/b", "/a/b", "/a", "b"},
        {"/a", "/a", "/", "a"},
        {"/", "/", "/", ""},
        {"/a/b//", "/a/b", "/a", "b"},
    };

    for (const auto& [path, tidied, parent, last] : cases) {
        const auto tidy = Paths::withoutEndSlashes(path);
        EXPECT_EQ(tidy, tidied);
        EXPECT_EQ(Paths::parent(tidy), parent);
        EXPECT_EQ(Paths::lastPart(tidy), last);
    }
}

TEST(Paths, oneFolderHasOneSpelling) {
    const char* const cases[][2] = {
        {"//a///b//", "/a/b"}, {"/a/b", "/a/b"}, {"///", "/"}, {"", ""}, {"a//b", "a/b"}};
    for (const auto& [path, normalized] : cases)
        EXPECT_EQ(Paths::normalized(path), normalized);
}

TEST(Paths, aSiblingThatBeginsAlikeIsNotBelow) {
    EXPECT_TRUE(Paths::isAtOrBelow("/a/b", "/a"));
    EXPECT_TRUE(Paths::isAtOrBelow("/a", "/a"));
    EXPECT_TRUE(Paths::isAtOrBelow("/a", "/a/"));
    EXPECT_TRUE(Paths::isAtOrBelow("/a", "/"));
    EXPECT_FALSE(Paths::isAtOrBelow("/ab", "/a"));
    EXPECT_FALSE(Paths::isAtOrBelow("/a", "/a/b"));
}

TEST(Paths, areShownWithTheHomeFoldersMark) {
    EXPECT_EQ(Paths::shown("/home/u/Documents", "/home/u/"), "~/Documents");
    EXPECT_EQ(Paths::shown("/home/u", "/home/u"), "~");
    EXPECT_EQ(Paths::shown("/home/uma", "/home/u"), "/home/uma");
    EXPECT_EQ(Paths::shown("/srv", ""), "/srv");
    EXPECT_EQ(Paths::shown("/srv", "/"), "/srv"); // the home of a user that has none
}

} // namespace
} // namespace tessarine
