// Small XML files: found without regard to case, made where missing, everything else kept.

#include <ed/tarv_xml.h>

#include "temp_folder.h"

namespace {

class Xml : public testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(parser->start()); }
    std::unique_ptr<TarvXmlDocument> loaded(const std::string& text)
    {
        folder.write("a.xml", text);
        return parser->load(folder.file("a.xml"));
    }
    std::string saved(const TarvXmlDocument& document)
    {
        EXPECT_TRUE(document.save(folder.file("b.xml")));
        return folder.read("b.xml");
    }
    TempFolder folder;
    std::unique_ptr<TarvXmlParser> parser = tarvMakeXmlParser();
};

TEST_F(Xml, AChildOfTheRootIsFoundByItsNameInAnyCase)
{
    const auto document = loaded("<all><x/><Ps a='1'/><PS a='2'/></all>");
    TarvXmlElement* found = FindChildElement(document.get(), u"PS");
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(found->attribute(u"a"), u"1") << "the first one";
    EXPECT_EQ(FindChildElement(document.get(), u"q"), nullptr);
    EXPECT_EQ(FindChildElement(nullptr, u"PS"), nullptr);
}

TEST_F(Xml, TheRootItselfIsTakenWhenItHasThatName)
{
    const auto document = loaded("<ps><PS/></ps>");
    EXPECT_EQ(FindChildElement(document.get(), u"PS"), document->root());
}

TEST_F(Xml, DeeperElementsAreNotFound)
{
    EXPECT_EQ(FindChildElement(loaded("<all><x><PS/></x></all>").get(), u"PS"), nullptr);
}

TEST_F(Xml, WhatIsMissingIsMadeAndWhatIsThereIsTaken)
{
    const auto empty = parser->makeDocument();
    TarvXmlElement* made = FindOrCreateChildElement(empty.get(), u"PS", u"State");
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(empty->root()->name(), u"State");
    EXPECT_EQ(FindOrCreateChildElement(empty.get(), u"ps", u"Other"), made);
    const auto other = loaded("<all><x/></all>");
    EXPECT_EQ(FindOrCreateChildElement(other.get(), u"PS", u"State")->name(), u"PS");
    EXPECT_EQ(other->root()->name(), u"all");
    EXPECT_EQ(other->root()->children().size(), 2u);
    EXPECT_EQ(FindOrCreateChildElement(nullptr, u"PS", u"State"), nullptr);
}

TEST_F(Xml, WhatElseStandsInTheFileIsKept)
{
    const auto document =
        loaded("<?xml version=\"1.0\"?>\n<!--mine-->\n<all>\n  <x a=\"1\">some &amp; text</x>"
               "<![CDATA[raw]]><?go now?></all>\n");
    ASSERT_NE(document, nullptr);
    FindOrCreateChildElement(document.get(), u"PS", u"State")->setAttribute(u"bar", u"7");
    const std::string text = saved(*document);
    for (const char* part : {"<!--mine-->", "<x a=\"1\">some &amp; text</x>", "<![CDATA[raw]]>",
                             "<?go now?>", "<PS bar=\"7\" />"})
        EXPECT_NE(text.find(part), std::string::npos) << part << "\n" << text;
}

TEST_F(Xml, AttributesAndElementsComeBackAsTheyWereWritten)
{
    const TvString odd = u"a <b> \"c\" & \u20ac \U0001F600";
    const auto document = parser->makeDocument();
    TarvXmlElement* root = document->makeRoot(u"R");
    root->setAttribute(u"v", u"first");
    root->setAttribute(u"v", odd);
    root->setAttribute(u"gone", u"1");
    root->removeAttribute(u"gone");
    root->addChild(u"One")->addChild(u"Deep");
    root->addChild(u"Two");
    saved(*document);
    const auto again = parser->load(folder.file("b.xml"));
    ASSERT_NE(again, nullptr);
    EXPECT_EQ(again->root()->attribute(u"v"), odd);
    EXPECT_EQ(again->root()->attribute(u"gone"), std::nullopt);
    const auto children = again->root()->children();
    ASSERT_EQ(children.size(), 2u);
    EXPECT_EQ(children[0]->name(), u"One");
    EXPECT_EQ(children[0]->children().size(), 1u);
    EXPECT_EQ(children[1]->name(), u"Two");
}

TEST_F(Xml, ClearingTakesAllAwayAndRoomForOthersIsLeft)
{
    const auto document = loaded("<R a='1'>text<x><y/></x><!--c--></R>");
    TarvXmlElement* root = document->root();
    root->children()[0]->children();
    EXPECT_EQ(root->text(), u"text");
    root->clear();
    EXPECT_TRUE(root->children().empty());
    EXPECT_TRUE(root->text().isEmpty());
    root->addChild(u"new");
    ASSERT_EQ(root->children().size(), 1u);
    EXPECT_EQ(root->children()[0]->name(), u"new");
}

TEST_F(Xml, WhatIsNoXmlIsNoDocument)
{
    for (const char* text : {"", "words", "<a>", "<a></b>", "<!--only-->"})
        EXPECT_EQ(loaded(text), nullptr) << text;
    EXPECT_EQ(parser->load(folder.file("missing.xml")), nullptr);
    EXPECT_EQ(parser->load(folder.file("")), nullptr) << "a folder";
}

TEST_F(Xml, AFileThatIsNestedAHundredThousandTimesDoesNoHarm)
{
    std::string text;
    for (int i = 0; i < 100'000; ++i)
        text += "<a>";
    for (int i = 0; i < 100'000; ++i)
        text += "</a>";
    const auto document = loaded(text);
    ASSERT_NE(document, nullptr);
    EXPECT_EQ(FindChildElement(document.get(), u"b"), nullptr);
}

TEST_F(Xml, AFileOfManyMegabytesIsNotRead)
{
    EXPECT_EQ(loaded("<a>" + std::string(5 << 20, 'x') + "</a>"), nullptr);
}

} // namespace
