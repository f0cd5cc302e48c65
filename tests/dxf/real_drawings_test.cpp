#include "drawing_tools.h"
#include "told_objects.h"

namespace {

void expectNothingLost(const std::vector<std::string>& lost)
{
    constexpr std::size_t kShown = 20;
    for (std::size_t i = 0; i < std::min(lost.size(), kShown); ++i)
        ADD_FAILURE() << lost[i];
    EXPECT_EQ(lost.size(), 0u);
}

TEST(RealDrawings, ReadBackFromTextAsTheyWere)
{
    for (const auto& path : allDrawings()) {
        SCOPED_TRACE(path.filename());
        const OpenFile drawing = openDwg(path);
        ASSERT_TRUE(drawing);
        Edit edit(*drawing);
        const std::set<std::uint64_t> away = untoldObjects(*drawing);
        for (const std::uint64_t handle : away)
            edit.erase(handle);

        const OpenFile back = edit.written(drawing->version());

        if (back)
            expectNothingLost(lostBetween(*drawing, *back, away));
    }
}

} // namespace
