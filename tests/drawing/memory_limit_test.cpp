#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <db/tv_db_database.h>
#include <dwg/dwg_codec.h>

#include "drawings.h"

#if defined(__SANITIZE_ADDRESS__)
#define KV_SANITIZED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define KV_SANITIZED 1
#endif
#endif

namespace {

std::size_t addressSpaceInUse()
{
    std::ifstream in("/proc/self/statm");
    std::size_t pages = 0;
    in >> pages;
    return pages * static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
}

/// Opens a drawing and every object in it.
int readAll(const std::vector<std::uint8_t>& bytes)
{
    TvDbDatabase drawing(false, true);
    if (drawing.readDwgBytes(bytes) != TvStatus::Ok)
        return 0; // refused: as good
    for (const TvDbObjectId id : drawing.objectIds())
        TvDbObjectPointer<TvDbObject>{id};
    return 0;
}

/// Runs it in a process that may use so much memory and no more. 0: it managed.
int readWithin(const std::vector<std::uint8_t>& bytes, std::size_t limit)
{
    const pid_t child = ::fork();
    if (child == 0) {
        const rlim_t all = addressSpaceInUse() + limit;
        const rlimit most{all, all};
        ::setrlimit(RLIMIT_AS, &most);
        ::alarm(60);
        try {
            ::_exit(readAll(bytes));
        } catch (...) {
            ::_exit(99);
        }
    }
    int status = 0;
    if (child < 0 || ::waitpid(child, &status, 0) != child)
        return -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 1000 + WTERMSIG(status);
}

constexpr std::size_t kMegabyte = 1 << 20;

void expectModest(const std::string& name, const std::vector<std::uint8_t>& bytes)
{
    EXPECT_EQ(readWithin(bytes, 64 * bytes.size() + 64 * kMegabyte), 0) << name;
}

class DrawingMemory : public testing::Test
{
protected:
    void SetUp() override
    {
#ifdef KV_SANITIZED
        GTEST_SKIP() << "a sanitizer needs memory of its own";
#endif
        dwg::install();
        // What is made once and kept is not the drawing's.
        readAll(minimalDrawing("line-ac1032.dwg"));
    }
};

} // namespace

TEST_F(DrawingMemory, OfARealDrawingIsAtMostSixtyFourTimesTheFileAndSixtyFourMegabytes)
{
    const auto drawings = realDrawings("");
    if (drawings.empty())
        GTEST_SKIP() << "no real drawings here";
    for (const auto& [name, facts] : drawings)
        expectModest(name, readFile(drawingsFolder() / name));
}

TEST_F(DrawingMemory, OfADamagedDrawingIsBoundedToo)
{
    for (const char* name : {"line-ac1015.dwg", "line-ac1018.dwg", "line-ac1021.dwg",
                             "line-ac1024.dwg", "line-ac1027.dwg", "line-ac1032.dwg"}) {
        const std::vector<std::uint8_t> whole = minimalDrawing(name);
        // Sizes and counts of all kinds become huge in turn.
        for (std::size_t at = 0x80; at + 4 < whole.size(); at += whole.size() / 60) {
            std::vector<std::uint8_t> damaged = whole;
            std::fill_n(damaged.begin() + static_cast<std::ptrdiff_t>(at), 4, 0x7F);
            expectModest(std::string(name) + " at " + std::to_string(at), damaged);
        }
    }
}

TEST_F(DrawingMemory, TheLimitIsFelt)
{
    // The check above means something only if it can fail.
    const auto hungry = [] {
        std::vector<std::uint8_t> much(256 * kMegabyte, 1);
        return much.back();
    };
    const pid_t child = ::fork();
    if (child == 0) {
        const rlim_t all = addressSpaceInUse() + 64 * kMegabyte;
        const rlimit most{all, all};
        ::setrlimit(RLIMIT_AS, &most);
        try {
            ::_exit(hungry());
        } catch (...) {
            ::_exit(99);
        }
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(WEXITSTATUS(status), 99);
}
