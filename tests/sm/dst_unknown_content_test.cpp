#include <gtest/gtest.h>

#include "sheet_set_builder.h"

// What a newer program wrote on and in each element survives everything that an older one does.

namespace {

/// The golden file, which has each element, line by line.
std::vector<std::string> goldenLines()
{
    std::ifstream in(std::string(KV_TEST_DATA) + "/sm/every_feature.dst", std::ios::binary);
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);)
        lines.push_back(line);
    return lines;
}

bool startsElement(const std::string& line)
{
    const std::size_t at = line.find('<');
    return at != std::string::npos && line[at + 1] != '/' && line[at + 1] != '?';
}

bool isEmptyElement(const std::string& line)
{
    return line.ends_with("/>");
}

std::string elementOf(const std::string& line)
{
    const std::size_t from = line.find('<') + 1;
    return line.substr(from, line.find_first_of(" />", from) - from);
}

std::string joined(const std::vector<std::string>& lines)
{
    std::string text;
    for (const std::string& line : lines)
        text += line + "\n";
    return text;
}

/// The lines with an unknown attribute and an unknown child on the element that starts at @p at.
std::vector<std::string> withUnknown(std::vector<std::string> lines, std::size_t at)
{
    std::string& line = lines[at];
    const std::string indent = line.substr(0, line.find('<'));
    const std::string child = indent + "  <x:child kind=\"new\"><deep/></x:child>";
    const bool wasEmpty = isEmptyElement(line);
    const std::string end = indent + "</" + elementOf(line) + ">";
    line = line.substr(0, line.size() - (wasEmpty ? 2 : 1)) + " x:new=\"a &lt; b\">";
    const auto behind = lines.insert(lines.begin() + static_cast<std::ptrdiff_t>(at) + 1, child);
    if (wasEmpty)
        lines.insert(behind + 1, end);
    return lines;
}

class DstUnknownContent : public SheetSetTest
{
protected:
    std::string savedAgain(const std::string& text)
    {
        replaceOutside(text);
        db = open();
        const bool isSaved = db && db->save(0);
        manager.closeDatabase(db);
        return isSaved ? content() : "not saved";
    }
    /// One real change: the text of the set. Then the file's content.
    std::string afterAChange(const std::string& text)
    {
        replaceOutside(text);
        db = open();
        const bool isKept = db && db->lockDb(db) && db->getSheetSet()->setSheetSetText4(u"new") &&
                            db->unlockDb(db, true);
        manager.closeDatabase(db);
        return isKept ? content() : "not written";
    }
    static std::string changed(std::string text)
    {
        const std::string former = "text4=\" blanks  kept \"";
        return text.replace(text.find(former), former.size(), "text4=\"new\"");
    }

    /// A selection with two members, and a category that points at a block of the set: all three
    /// pointers carry unknown content.
    void openPointers()
    {
        replaceOutside("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                       "<sheetSetFile version=\"1.0\" nextHandle=\"g20\">\n"
                       "  <sheetSet handle=\"g1\">\n"
                       "    <publishOptions handle=\"g2\"/>\n"
                       "    <calloutBlocks>\n"
                       "      <block handle=\"g5\" path=\"a.dwg\"/>\n"
                       "    </calloutBlocks>\n"
                       "    <categories>\n"
                       "      <category handle=\"g6\" name=\"C\">\n"
                       "        <calloutBlocks>\n"
                       "          <use use=\"g5\" scale=\"5\">\n"
                       "            <!-- of the block -->\n"
                       "          </use>\n"
                       "        </calloutBlocks>\n"
                       "      </category>\n"
                       "    </categories>\n"
                       "    <selections>\n"
                       "      <selection handle=\"g7\" name=\"P\">\n"
                       "        <member use=\"g8\" copies=\"8\"/>\n"
                       "        <member use=\"g9\" copies=\"9\">\n"
                       "          <!-- of the second -->\n"
                       "        </member>\n"
                       "      </selection>\n"
                       "    </selections>\n"
                       "    <sheet handle=\"g8\" name=\"A\"/>\n"
                       "    <sheet handle=\"g9\" name=\"B\"/>\n"
                       "  </sheetSet>\n"
                       "</sheetSetFile>\n");
        m_before = content();
        db = open();
        ASSERT_TRUE(db);
        selection = tvrxCast<TvSmSheetSelection>(db->findObject(u"g7"));
        second = tvrxCast<TvSmSheet>(db->findObject(u"g9"));
        callouts = tvrxCast<TvSmViewCategory>(db->findObject(u"g6"))->getCalloutBlocks();
        block = tvrxCast<TvSmFileReference>(db->findObject(u"g5"));
        ASSERT_TRUE(selection && second && block);
    }
    bool holds(const std::string& text) const { return content().find(text) != std::string::npos; }

    std::string m_before;
    TvSmDatabase* db = nullptr;
    TvSmSheetSelection* selection = nullptr;
    TvSmSheet* second = nullptr;
    TvSmReferenceCollection* callouts = nullptr;
    TvSmFileReference* block = nullptr;
};

} // namespace

TEST_F(DstUnknownContent, IsKeptOnAndInEveryElementByteForByte)
{
    const std::vector<std::string> lines = goldenLines();
    std::set<std::string> elements;
    for (std::size_t at = 0; at < lines.size(); ++at) {
        if (!startsElement(lines[at]))
            continue;
        elements.insert(elementOf(lines[at]));
        const std::string text = joined(withUnknown(lines, at));
        EXPECT_EQ(savedAgain(text), text) << lines[at];
        EXPECT_EQ(afterAChange(text), changed(text)) << lines[at];
    }
    EXPECT_EQ(elements.size(), 25u) << "the golden file has every element that there is";
}

TEST_F(DstUnknownContent, OnEveryElementAtOnceIsKept)
{
    std::vector<std::string> lines = goldenLines();
    for (std::size_t at = lines.size(); at-- > 0;)
        if (startsElement(lines[at]))
            lines = withUnknown(lines, at);
    EXPECT_EQ(savedAgain(joined(lines)), joined(lines));
    EXPECT_EQ(afterAChange(joined(lines)), changed(joined(lines)));
}

TEST_F(DstUnknownContent, AroundTheRootIsKeptAndReadAfresh)
{
    const std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                             "<!-- one -->\n<?note two?>\n"
                             "<sheetSetFile version=\"1.0\" nextHandle=\"g3\">\n"
                             "  <sheetSet handle=\"g1\">\n"
                             "    <publishOptions handle=\"g2\"/>\n"
                             "  </sheetSet>\n</sheetSetFile>\n"
                             "<!-- three -->\n<?note four?>\n";
    EXPECT_EQ(savedAgain(text), text);
    db = open();
    editOutside("one", "eins");
    editOutside("four", "vier");
    const std::string changedText = content();
    ASSERT_TRUE(db->load(path()) && db->save(0));
    EXPECT_EQ(content(), changedText);
}

TEST_F(DstUnknownContent, OfAPropertyStandsBehindATypeThatIsNotKnown)
{
    std::vector<std::string> lines = goldenLines();
    const auto line = std::find_if(lines.begin(), lines.end(), [](const std::string& each) {
        return each.find("\"Client\"") != std::string::npos;
    });
    ASSERT_NE(line, lines.end());
    line->replace(line->size() - 2, 2, " type=\"date\" x:unit=\"mm\"/>");
    EXPECT_EQ(savedAgain(joined(lines)), joined(lines));
}

TEST_F(DstUnknownContent, IsReadAfreshWhenTheFileChangedOutside)
{
    const std::vector<std::string> lines = goldenLines();
    for (std::size_t at = 0; at < lines.size(); ++at) {
        if (!startsElement(lines[at]))
            continue;
        replaceOutside(joined(withUnknown(lines, at)));
        db = open();
        ASSERT_TRUE(db) << lines[at];
        editOutside("x:new=\"a &lt; b\"", "x:other=\"1\"");
        editOutside("kind=\"new\"", "kind=\"newer\"");
        const std::string text = content();
        ASSERT_TRUE(db->lockDb(db) && db->getSheetSet()->setSheetSetText4(u"new") &&
                    db->unlockDb(db, true));
        EXPECT_EQ(content(), changed(text)) << lines[at];
        replaceOutside(joined(lines));
        ASSERT_TRUE(db->load(path()) && db->save(0));
        EXPECT_EQ(content(), joined(lines)) << lines[at];
        ASSERT_TRUE(manager.closeDatabase(db));
    }
}

TEST_F(DstUnknownContent, OfAPointerGoesWithIt)
{
    openPointers();
    ASSERT_TRUE(db->lockDb(db) && selection->remove(second) && callouts->remove(block) &&
                db->unlockDb(db, true));
    EXPECT_TRUE(holds("copies=\"8\""));
    EXPECT_FALSE(holds("copies=\"9\"") || holds("of the second")) << content();
    EXPECT_FALSE(holds("scale=\"5\"") || holds("of the block")) << content();
}

TEST_F(DstUnknownContent, OfAPointerComesBackWithIt)
{
    openPointers();
    ASSERT_TRUE(db->lockDb(db) && selection->remove(second) && callouts->remove(block) &&
                selection->add(second) && callouts->add(block) && db->unlockDb(db, true));
    EXPECT_EQ(content(), m_before);
    ASSERT_TRUE(db->lockDb(db) && selection->remove(second) && db->unlockDb(db, true));
    ASSERT_TRUE(db->lockDb(db) && selection->add(second) && db->unlockDb(db, true));
    EXPECT_EQ(content(), m_before);
}

TEST_F(DstUnknownContent, OfAPointerSurvivesARollback)
{
    openPointers();
    ASSERT_TRUE(db->lockDb(db) && selection->remove(second) && callouts->remove(block) &&
                db->unlockDb(db, false));
    ASSERT_TRUE(db->save(0));
    EXPECT_EQ(content(), m_before);
}

TEST_F(DstUnknownContent, OfAPointerAtASheetThatWasTakenOutComesBackWithTheSheet)
{
    openPointers();
    TvSmSheetSet* set = db->getSheetSet();
    ASSERT_TRUE(db->lockDb(db) && set->removeSheet(second) && db->unlockDb(db, true));
    EXPECT_FALSE(holds("copies=\"9\"") || holds("of the second")) << content();
    ASSERT_TRUE(db->lockDb(db) && set->insertComponent(second, nullptr) && db->unlockDb(db, true));
    EXPECT_EQ(content(), m_before);
}

TEST_F(DstUnknownContent, OfAPointerThatIsThereTwiceIsWrittenOnce)
{
    openPointers();
    const std::string member = "<member use=\"g8\" copies=\"8\"/>";
    editOutside(member, member + "\n" + member + "<member use=\"g8\"><a/></member>");
    ASSERT_TRUE(db->load(path()) && db->save(0));
    const std::string once = content();
    EXPECT_EQ(once.find("use=\"g8\""), once.rfind("use=\"g8\"")) << once;
    EXPECT_TRUE(holds("copies=\"8\"") && holds("<a/>")) << once;
    TvSmDatabase again;
    ASSERT_TRUE(again.load(path())) << once;
    ASSERT_TRUE(again.setFileName(folder.file("again.dst")) && again.save(0));
    EXPECT_EQ(folder.read("again.dst"), once);
}

TEST_F(DstUnknownContent, ThatIsNotWellFormedOrTwiceOnAPointerIsRefused)
{
    openPointers();
    const std::string good = "<member use=\"g8\" copies=\"8\"/>";
    for (const char* bad :
         {"<member use=\"g8\" a=\"1\" a=\"2\"/>", "<member use=\"g8\" use=\"g8\"/>",
          "<member use=\"g8\" a<=\"1\"/>", "<member use=\"g8\" a=\"&b;\"/>",
          "<member use=\"g8\"><a></member>", "<member use=\"g8\"></use>", "<member a=\"1\"/>"}) {
        std::string text = m_before;
        replaceOutside(text.replace(text.find(good), good.size(), bad));
        EXPECT_FALSE(db->load(path())) << bad;
        EXPECT_EQ(sm::lastStatus(db).failure(), base::Failure::Damaged) << bad;
    }
}
