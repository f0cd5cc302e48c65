#include "drawings.h"

#include <dwg/raw_save.h>

using dwg::RawDrawing;
using Buffer = std::vector<std::uint8_t>;

namespace {

const char* const kMinimal[] = {"empty-ac1015.dwg", "empty-ac1018.dwg", "empty-ac1021.dwg",
                                "empty-ac1032.dwg"};

// A sample, which no round number of bytes can hide from; a larger one where that is quick.
#if defined(__OPTIMIZE__) && !defined(KV_SANITIZED)
constexpr std::size_t kStep = 7;
#else
constexpr std::size_t kStep = 83;
#endif
constexpr std::size_t kSaveStep = 11 * kStep; // saving takes longer than reading

// Whatever the bytes are, each answer is a value or a status, and what is saved reads back.
void useEverything(const Buffer& file, bool alsoSave)
{
    const auto drawing = RawDrawing::open(file);
    if (!drawing) {
        ASSERT_NE(drawing.status().reason(), base::Reason::None);
        return;
    }
    drawing->check();
    for (const std::string& name : drawing->sectionNames())
        (void)drawing->section(name);
    for (const auto& location : drawing->objects())
        if (const auto record = drawing->object(location))
            (void)record->streams(drawing->version()).failed();
    if (!alsoSave)
        return;
    const auto again = dwg::save(*drawing, {}, {true});
    if (again)
        ASSERT_TRUE(RawDrawing::open(*again));
    else
        ASSERT_NE(int(again.status().reason()), int(base::Reason::DwgVerifyFailed));
}

} // namespace

TEST(HostileDrawing, TruncatedAnywhereGivesAStatus)
{
    for (const char* name : kMinimal) {
        const Buffer whole = minimalDrawing(name);
        for (std::size_t size = 0; size < whole.size(); size += kStep) {
            SCOPED_TRACE(std::string(name) + " cut at " + std::to_string(size));
            useEverything(Buffer(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)),
                          size % kSaveStep == 0);
        }
    }
}

TEST(HostileDrawing, AnyByteWrongGivesAStatusOrADrawing)
{
    for (const char* name : kMinimal) {
        Buffer file = minimalDrawing(name);
        for (std::size_t at = 0; at < file.size(); at += kStep) {
            const std::uint8_t right = file[at];
            for (const int wrong : {0x00, 0x7F, 0x80, 0xFF}) {
                SCOPED_TRACE(std::string(name) + " byte " + std::to_string(at) + " is " +
                             std::to_string(wrong));
                file[at] = static_cast<std::uint8_t>(wrong);
                useEverything(file, at % kSaveStep == 0);
            }
            file[at] = right;
        }
    }
}

TEST(HostileDrawing, TheNameOfAnotherVersionIsNoKey)
{
    for (const char* name : kMinimal)
        for (const char* other : {"AC1015", "AC1018", "AC1021", "AC1024", "AC1027", "AC1032"}) {
            SCOPED_TRACE(std::string(name) + " as " + other);
            Buffer file = minimalDrawing(name);
            std::copy_n(other, 6, file.begin());
            useEverything(file, true);
        }
}
