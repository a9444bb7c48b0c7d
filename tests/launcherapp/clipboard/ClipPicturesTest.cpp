#include "launcherapp/clipboard/ClipPictures.h"

#include "tests/fakes/FakePictureCodec.h"
#include "tests/fakes/MemoryFileStore.h"

#include <gmock/gmock.h>

namespace tessarine {
namespace {

using testing::IsEmpty;
using testing::UnorderedElementsAre;

constexpr auto folder = "/clips";

struct Folder {
    std::shared_ptr<MemoryFileStore> files = std::make_shared<MemoryFileStore>();
    std::shared_ptr<FakePictureCodec> codec = std::make_shared<FakePictureCodec>();
    ClipPictures pictures{files, codec, folder};

    std::string onDisk(const std::string& name) const {
        return files->read(std::string(folder) + "/" + name, 1 << 30).value_or("");
    }
};

const auto picture = FakePictureCodec::picture(1024, 256, 0xff102030);

TEST(ClipPictures, theSamePixelsAreTheSameClippingInEveryFormat) {
    Folder fixture;
    std::vector<std::string> ids;
    for (const auto mark : {FakePictureCodec::pngMark,
                            FakePictureCodec::bmpMark,
                            FakePictureCodec::tiffMark,
                            FakePictureCodec::jpegMark}) {
        const auto kept = fixture.pictures.keep(FakePictureCodec::file(mark, picture));
        ASSERT_TRUE(kept);
        ids.push_back(kept->id);
    }
    EXPECT_THAT(ids, testing::Each(ids.front()));
    // The same pixels in rows of another length are another picture.
    const auto other = FakePictureCodec::picture(256, 1024, 0xff102030);
    EXPECT_NE(fixture.pictures.keep(FakePictureCodec::file(FakePictureCodec::pngMark, other))->id,
              ids.front());
}

TEST(ClipPictures, aPictureIsKeptWholeAndSmall) {
    Folder fixture;
    const auto png = FakePictureCodec::file(FakePictureCodec::pngMark, picture);
    const auto kept = fixture.pictures.keep(FakePictureCodec::file("BM", picture));
    ASSERT_TRUE(kept);
    EXPECT_EQ(kept->width, 1024);
    EXPECT_EQ(kept->height, 256);
    EXPECT_EQ(kept->imageFile, kept->id + ".png");
    EXPECT_EQ(kept->fullFile, kept->id + "-full.png");
    EXPECT_EQ(fixture.onDisk(*kept->fullFile), png);
    const auto small = fixture.pictures.image(*kept->imageFile, 4096);
    ASSERT_TRUE(small);
    EXPECT_EQ(small->widthPixels, ClipPictures::thumbnailPixels);
    EXPECT_EQ(small->heightPixels, 128);
    EXPECT_THAT(fixture.pictures.names(), UnorderedElementsAre(*kept->imageFile, *kept->fullFile));
}

TEST(ClipPictures, aPictureOverTheLimitKeepsItsThumbnailAlone) {
    Folder fixture;
    // 16 bytes of the fake format stand before the pixels.
    const int side = 1732;
    const auto largest = FakePictureCodec::picture(side, side, 7);
    ASSERT_LE(FakePictureCodec::file(FakePictureCodec::pngMark, largest).size(),
              ClipPictures::largestFullBytes);
    EXPECT_TRUE(fixture.pictures.keep(FakePictureCodec::file("BM", largest))->fullFile);
    const auto larger = FakePictureCodec::picture(side + 1, side, 7);
    const auto kept = fixture.pictures.keep(FakePictureCodec::file("BM", larger));
    EXPECT_TRUE(kept->imageFile);
    EXPECT_FALSE(kept->fullFile);
    EXPECT_EQ(kept->tooLargeBytes, 16U + 4U * 1733U * 1732U);
}

TEST(ClipPictures, whatIsNoPictureOrCannotBeWrittenIsSaidSo) {
    Folder fixture;
    const auto png = FakePictureCodec::file(FakePictureCodec::pngMark, picture);
    for (const auto& bytes : {std::string(), std::string("garbage"), png.substr(0, 100)})
        EXPECT_FALSE(fixture.pictures.keep(bytes));
    fixture.files->forbid(folder);
    const auto kept = fixture.pictures.keep(png);
    ASSERT_TRUE(kept);
    EXPECT_FALSE(kept->imageFile);
    EXPECT_FALSE(kept->fullFile);
    EXPECT_TRUE(kept->problem);
    EXPECT_FALSE(fixture.pictures.png(kept->id + ".png"));
}

TEST(ClipPictures, onlyFilesOfItsOwnAreTouched) {
    Folder fixture;
    const std::string id = "0123456789abcdef01234567";

    const struct {
        const char* reason;
        std::string name;
        bool isOurs;
    } cases[] = {
        {"a thumbnail", id + ".png", true},
        {"a whole picture", id + "-full.png", true},
        {"one that is being written", id + ".png.tmp", false},
        {"upper case is somebody else's", "0123456789ABCDEF01234567.png", false},
        {"too short", "0123.png", false},
        {"another ending", id + "-half.png", false},
        {"another folder", "../" + id + ".png", false},
    };

    for (const auto& each : cases) {
        SCOPED_TRACE(each.reason);
        EXPECT_EQ(ClipPictures::isName(each.name), each.isOurs);
        fixture.files->file("/clips/" + each.name, "x");
        fixture.pictures.remove(each.name);
        EXPECT_EQ(fixture.files->info("/clips/" + each.name).has_value(), !each.isOurs);
    }
    EXPECT_THAT(fixture.pictures.names(), IsEmpty());
}

} // namespace
} // namespace tessarine
