// Pictures in JPEG.

#include "jpeg_bytes.h"

#include <db/record_editor.h>
#include <db/tv_db_annotations.h>
#include <temp_folder.h>

#include "jpeg_picture.h"
#include "scene_tools.h"

namespace {

gs::Picture read(const std::string& bytes)
{
    return gs::pictureFromJpeg({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
}

/// Of each channel.
void expectNear(std::uint32_t pixel, int red, int green, int blue)
{
    constexpr int kPacking = 6; // what is lost
    EXPECT_NEAR(int(pixel >> 16 & 0xFF), red, kPacking);
    EXPECT_NEAR(int(pixel >> 8 & 0xFF), green, kPacking);
    EXPECT_NEAR(int(pixel & 0xFF), blue, kPacking);
}

} // namespace

TEST(Jpeg, GivesItsPixelsAndKeepsItsBytes)
{
    const std::string bytes = jpegBytes(redOverBlue());
    const gs::Picture picture = read(bytes);
    ASSERT_EQ(picture.width, 32);
    ASSERT_EQ(picture.height, 32);
    expectNear(picture.at(4, 4), 255, 0, 0);
    expectNear(picture.at(28, 28), 0, 0, 255);
    EXPECT_EQ(std::string(picture.jpeg.begin(), picture.jpeg.end()), bytes);
    EXPECT_FALSE(picture.isGrayJpeg);
}

TEST(Jpeg, InShadesOfGreyHasOneChannel)
{
    gs::Picture gray;
    gray.width = gray.height = 16;
    gray.pixels.assign(256, 0xFF808080);
    const gs::Picture picture = read(jpegBytes(gray, true));
    ASSERT_FALSE(picture.isEmpty());
    expectNear(picture.at(8, 8), 128, 128, 128);
    EXPECT_TRUE(picture.isGrayJpeg);
}

TEST(Jpeg, ThatIsBrokenOrCutIsNothing)
{
    const std::string sound = jpegBytes(redOverBlue());
    EXPECT_TRUE(read("").isEmpty());
    EXPECT_TRUE(read("\xFF\xD8\xFF").isEmpty());
    EXPECT_TRUE(read(std::string(1000, '\xFF')).isEmpty());
    for (std::size_t length = 0; length + 20 < sound.size(); length += 7)
        EXPECT_TRUE(read(sound.substr(0, length)).isEmpty()) << length;
    for (std::size_t at = 2; at < sound.size(); at += 3) { // no harm, whatever comes out
        std::string changed = sound;
        changed[at] = static_cast<char>(changed[at] ^ 0x5A);
        read(changed);
    }
}

TEST(Jpeg, ThatClaimsToBeHugeIsNotUnpacked)
{
    std::string bytes = jpegBytes(redOverBlue());
    const std::size_t frame = bytes.find("\xFF\xC0");
    ASSERT_NE(frame, std::string::npos);
    for (std::size_t i = 5; i < 9; ++i) // height and width
        bytes[frame + i] = '\x7F';
    EXPECT_TRUE(read(bytes).isEmpty());
}

TEST(Jpeg, IsShownAsAnImageOfADrawing)
{
    const TempFolder folder;
    folder.write("site.jpg", jpegBytes(redOverBlue()));
    DrawingScene scene;
    auto* file = new TvDbRasterImageDef;
    file->setSourceFileName(folder.file("site.jpg"));
    TvDbObjectId fileId;
    ASSERT_EQ(scene.database().addTvDbObject(fileId, file), TvStatus::Ok);
    file->close();
    auto* image = new TvDbRasterImage;
    db::RecordEditor edit = image->edit();
    edit.setPoint("u_vec", {1, 0, 0});
    edit.setPoint("v_vec", {0, 1, 0});
    edit.setPoint("size", {32, 32, 0});
    edit.setInteger("display", 1);
    const TvDbObjectId id = scene.add(image);
    TvDbObjectPointer<TvDbRasterImage>(id, TvDb::kForWrite)->setImageDefId(fileId);
    const gs::DisplayList list = scene.list();
    ASSERT_EQ(list.items().size(), 2U); // the picture, and its frame
    gs::View view;
    view.center = {16, 16};
    view.width = view.height = 32;
    const gs::Picture picture = gs::pictureOf(list, view);
    expectNear(picture.at(16, 4), 255, 0, 0);
    expectNear(picture.at(16, 28), 0, 0, 255);

    folder.write("site.jpg", jpegBytes(redOverBlue()).substr(0, 200));
    EXPECT_EQ(scene.list().items().size(), 1U); // the frame alone
}
