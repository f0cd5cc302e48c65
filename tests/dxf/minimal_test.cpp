#include "drawing_tools.h"

namespace {

struct Case {
    const char* suffix;
    db::Version version;
};
constexpr Case kCases[] = {
    {"ac1015", db::Version::Ac1015}, {"ac1018", db::Version::Ac1018},
    {"ac1021", db::Version::Ac1021}, {"ac1024", db::Version::Ac1024},
    {"ac1027", db::Version::Ac1027}, {"ac1032", db::Version::Ac1032},
};

TEST(MinimalDrawing, IsWrittenAsTextInEveryVersion)
{
    for (const Case& one : kCases) {
        const OpenFile drawing = openMinimal(std::string("line-") + one.suffix + ".dwg");
        ASSERT_TRUE(drawing);
        Edit edit(*drawing);

        const OpenFile back = edit.written(one.version);

        ASSERT_TRUE(back) << one.suffix;
        EXPECT_EQ(back->version(), one.version);
        ASSERT_EQ(handlesOf(*back, "LINE").size(), 2u) << one.suffix;
        for (const std::uint64_t handle : handlesOf(*drawing, "LINE")) {
            const db::Record line = recordOf(*drawing, handle), read = recordOf(*back, handle);
            EXPECT_EQ(line.point("start"), read.point("start"));
            EXPECT_EQ(line.point("end"), read.point("end"));
            EXPECT_EQ(line.handle("layer"), read.handle("layer"));
            EXPECT_EQ(line.integer("entmode"), read.integer("entmode"));
        }
    }
}

TEST(MinimalDrawing, IsNotWrittenAsTextWhenItIsDamaged)
{
    auto bytes = readFile(std::filesystem::path(KV_TEST_DATA) / "dwg" / "line-ac1015.dwg");
    const auto whole = dwg::DwgCodec().open(bytes);
    ASSERT_TRUE(whole);
    EXPECT_TRUE(Edit(**whole).write(db::Version::Ac1015));
    const auto isDamaged = [&] {
        const auto file = dwg::DwgCodec().open(bytes);
        const auto found = file ? (*file)->check() : std::vector<base::Status>();
        return found.size() == 1 && found[0].reason() == base::Reason::DwgCheckObjectChecksum;
    };
    constexpr std::size_t kHead = 0x100, kStep = 16;
    std::size_t at = kHead;
    for (bytes[at] ^= 1; !isDamaged(); bytes[at] ^= 1) {
        bytes[at] ^= 1;
        at += kStep;
        ASSERT_LT(at, bytes.size());
    }
    const auto file = dwg::DwgCodec().open(bytes);
    const auto refused = Edit(**file).write(db::Version::Ac1015);
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.status().failure(), base::Failure::Damaged);
    EXPECT_EQ(refused.status().reason(), base::Reason::DwgDamageNotSaved);
}

} // namespace
