#include <data_storage.h>

#include "stored_body.h"

using Buffer = std::vector<std::uint8_t>;

namespace {

Buffer body(std::size_t size)
{
    const std::string mark = "ACIS BinaryFile";
    Buffer bytes(mark.begin(), mark.end());
    while (bytes.size() < size)
        bytes.push_back(static_cast<std::uint8_t>(bytes.size() * 7));
    return bytes;
}

} // namespace

TEST(DataStorage, GivesTheBodyOfEachObject)
{
    StorageMaker maker;
    maker.addBytes(0x42, body(100));
    maker.addBytes(0x43, {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n', 0});
    maker.addPages(0x44, body(1000), 300);
    const Buffer section = maker.take();
    const dwg::DataStorage storage(section);
    EXPECT_EQ(storage.bodyOf(0x42), body(100));
    EXPECT_TRUE(storage.bodyOf(0x43).empty()); // a picture
    EXPECT_EQ(storage.pictureOf(0x43).kind, db::Preview::Kind::Png);
    EXPECT_EQ(storage.bodyOf(0x44), body(1000));
    EXPECT_TRUE(storage.bodyOf(0x45).empty());
}

TEST(DataStorage, GivesNoBodyWhosePagesContradictEachOther)
{
    StorageMaker maker;
    maker.addPages(0x44, body(1000), 300);
    const Buffer section = maker.take();
    for (std::size_t at = 0; at < section.size(); ++at)
        for (const std::uint8_t value : {0x00, 0x01, 0x7F, 0x80, 0xFF}) {
            Buffer damaged = section;
            damaged[at] = value;
            const std::size_t size = dwg::DataStorage(damaged).bodyOf(0x44).size();
            ASSERT_TRUE(size == 0 || size == 1000) << at << ' ' << size;
        }
    for (std::size_t size = 0; size < section.size(); ++size) {
        const Buffer cut(section.begin(), section.begin() + static_cast<std::ptrdiff_t>(size));
        EXPECT_TRUE(dwg::DataStorage(cut).bodyOf(0x44).empty()) << size;
    }
}

TEST(DataStorage, ABodyStaysAsItIsWhenTheDrawingIsSaved)
{
    for (const db::Version version : {db::Version::Ac1027, db::Version::Ac1032}) {
        const DrawingWithBody drawing(version, body(5000));
        const auto stored = opened(drawing.bytes);
        ASSERT_TRUE(stored);
        EXPECT_EQ(stored->modelerData(drawing.solid), body(5000));
        EXPECT_TRUE(stored->modelerData(drawing.line).empty());

        DrawingChanges changes(*stored);
        changes.edit(drawing.line).setPoint("start", {1, 2, 3});
        const auto after = changes.written();
        ASSERT_TRUE(after);
        EXPECT_EQ(after->modelerData(drawing.solid), body(5000));
        EXPECT_TRUE(recordOf(*after, drawing.solid).flag("has_binary"));
    }
}
