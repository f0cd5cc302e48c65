// Where the palette set stands, from one run to the next.

#include <core/palette_state.h>
#include <ed/tarv_xml.h>
#include <rx/tv_user_messages.h>

#include "session_scene.h"

namespace {

using Names = std::vector<std::string>;

/// Notes what it is told, and is somewhere.
struct NotingPaletteSet : ed::PaletteSet {
    bool isShown() const override { return true; }
    void setShown(bool) override {}
    bool isRolledUp() const override { return false; }
    void EnableDocking(unsigned) override {}
    void RestoreControlBar(int bar, const ed::ScreenRect* rect) override
    {
        told.push_back("bar " + std::to_string(bar) + (rect ? " at" : ""));
    }
    ed::PalettePlacement placement() const override { return place; }
    void setPlacement(const ed::PalettePlacement& placement) override
    {
        place = placement;
        told.push_back("placed");
    }
    ed::PalettePlacement place;
    Names told;
};

struct MissingParser : TarvXmlParser {
    bool start() override { return false; }
    std::unique_ptr<TarvXmlDocument> load(const TvString&) override
    {
        ADD_FAILURE() << "it did not start";
        return nullptr;
    }
    std::unique_ptr<TarvXmlDocument> makeDocument() override { return nullptr; }
};

class PaletteStateTest : public SessionTest, private TvUserMessages
{
protected:
    static constexpr char kFile[] = "roaming/SheetSetPaletteSet.xml";

    void SetUp() override
    {
        SessionTest::SetUp();
        tvrxSetUserMessages(this);
        host.palettes = &palettes;
        host.roaming = folder.file("roaming");
    }
    void TearDown() override
    {
        core::setPaletteStateParser({});
        tvrxSetUserMessages(nullptr);
        SessionTest::TearDown();
    }
    void write(const std::string& text) const
    {
        std::filesystem::create_directories(folder.path() / "roaming");
        folder.write(kFile, text);
    }
    bool isWritten() const { return std::filesystem::exists(folder.path() / kFile); }

    NotingPaletteSet palettes;
    std::vector<int> shown;

private:
    Answer show(const Message& message) override
    {
        shown.push_back(message.text);
        return Answer::Ok;
    }
};

TEST_F(PaletteStateTest, ThePlaceIsTheSameAfterSavingAndLoading)
{
    palettes.place.side = ed::DockSide::Floating;
    palettes.place.floating = {10, 20, 300, 400};
    palettes.place.transparency = 30;
    const ed::PalettePlacement saved = palettes.place;
    SavePaletteState();
    palettes.place = {};
    LoadPaletteState();
    EXPECT_EQ(palettes.place, saved);
    EXPECT_EQ(palettes.told, Names{"placed"});
    EXPECT_TRUE(shown.empty());
}

TEST_F(PaletteStateTest, WithoutAFileItIsDockedOnTheRight)
{
    LoadPaletteState();
    EXPECT_EQ(palettes.told, Names{"bar 59421"});
    EXPECT_FALSE(isWritten());
}

TEST_F(PaletteStateTest, WithoutTheElementItIsDockedOnTheRight)
{
    write("<all><other/></all>");
    LoadPaletteState();
    EXPECT_EQ(palettes.told, Names{"bar 59421"});
}

TEST_F(PaletteStateTest, AFileThatIsNoXmlIsNone)
{
    write("no XML at all");
    LoadPaletteState();
    EXPECT_EQ(palettes.told, Names{"bar 59421"});
    SavePaletteState();
    LoadPaletteState();
    EXPECT_EQ(palettes.told.back(), "placed") << "the next save makes it one";
}

TEST_F(PaletteStateTest, TheElementIsFoundInAnyCaseAndAsTheRoot)
{
    write("<all><ps Orientation='2'/></all>");
    LoadPaletteState();
    EXPECT_EQ(palettes.place.side, ed::DockSide::Left);
    write("<Ps Orientation='5'/>");
    LoadPaletteState();
    EXPECT_EQ(palettes.place.side, ed::DockSide::Bottom);
}

TEST_F(PaletteStateTest, OtherContentOfTheFileStays)
{
    write("<all><!--mine--><other a=\"1\"/><ps Orientation='2' theirs='x'/></all>");
    SavePaletteState();
    const std::string text = folder.read(kFile);
    for (const char* part :
         {"<!--mine-->", "<other a=\"1\" />", "theirs=\"x\"", "Orientation=\"3\""})
        EXPECT_NE(text.find(part), std::string::npos) << part << "\n" << text;
    EXPECT_EQ(text.find("<PS"), std::string::npos) << "the element that is there is taken";
}

TEST_F(PaletteStateTest, AParserThatDoesNotStartIsToldAndNothingIsRestored)
{
    core::setPaletteStateParser([] { return std::make_unique<MissingParser>(); });
    write("<PS Orientation='2'/>");
    LoadPaletteState();
    EXPECT_EQ(shown, std::vector<int>{8033});
    EXPECT_TRUE(palettes.told.empty()) << "its standard place";
    SavePaletteState();
    EXPECT_EQ(shown.size(), 1u) << "silent at the end";
    EXPECT_EQ(folder.read(kFile), "<PS Orientation='2'/>");
}

TEST_F(PaletteStateTest, AParserThatCannotBeMadeIsToldToo)
{
    core::setPaletteStateParser([] { return std::unique_ptr<TarvXmlParser>(); });
    LoadPaletteState();
    EXPECT_EQ(shown, std::vector<int>{8033});
}

TEST_F(PaletteStateTest, WithoutPalettesOrFolderNothingHappens)
{
    host.roaming = TvString();
    SavePaletteState();
    LoadPaletteState();
    EXPECT_EQ(palettes.told, Names{"bar 59421"});
    host.palettes = nullptr;
    host.roaming = folder.file("roaming");
    LoadPaletteState();
    SavePaletteState();
    core::setSessionHost(nullptr);
    LoadPaletteState();
    SavePaletteState();
    EXPECT_FALSE(isWritten());
    EXPECT_TRUE(shown.empty());
}

} // namespace
