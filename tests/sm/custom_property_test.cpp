#include <gtest/gtest.h>

#include <limits>

#include "sheet_set_builder.h"

namespace {

class CustomProperties : public SheetSetTest
{
protected:
    TvSmCustomPropertyValue* make(const TvVariant& value, unsigned short flags = 0)
    {
        auto* made = newFor<TvSmCustomPropertyValue>(bag);
        EXPECT_TRUE(made->setValue(value) && made->setFlags(flags));
        return made;
    }
    std::vector<TvString> names() const
    {
        std::vector<TvString> found;
        for (const sm::Property& property : sm::propertiesOf(bag))
            found.push_back(property.name);
        return found;
    }
    static TvVariant valueOf(const TvSmCustomPropertyValue* value)
    {
        TvVariant out;
        value->getValue(out);
        return out;
    }

    TvSmDatabase* db = create();
    TvSmCustomPropertyBag* bag = db->getSheetSet()->getCustomProperties();
};

} // namespace

TEST_F(CustomProperties, AnEmptyBagGivesAnEmptyWalk)
{
    const std::unique_ptr<TvSmCustomPropertyEnumerator> walk(bag->getEnumerator());
    TvString name = u"former";
    TvSmCustomPropertyValue* value = nullptr;
    EXPECT_FALSE(walk->next(&name, &value));
    EXPECT_EQ(name, u"former");
    EXPECT_EQ(bag->getProperty(u"none"), nullptr);
    EXPECT_FALSE(bag->removeProperty(u"none"));
}

TEST_F(CustomProperties, AWalkGivesPairsInTheOrderOfFirstSetting)
{
    for (const char* name : {"b", "a", "c"})
        ASSERT_TRUE(bag->setProperty(name, make(TvVariant(name))));
    ASSERT_TRUE(bag->setProperty("a", make(TvVariant("again")))); // keeps its place
    const std::unique_ptr<TvSmCustomPropertyEnumerator> walk(bag->getEnumerator());
    TvString name;
    TvSmCustomPropertyValue* value = nullptr;
    for (const char* expected : {"b", "a", "c"}) {
        ASSERT_TRUE(walk->next(&name, &value));
        EXPECT_EQ(name, TvString(expected));
        EXPECT_EQ(value, bag->getProperty(expected));
    }
    EXPECT_FALSE(walk->next(&name, &value));
    walk->reset();
    EXPECT_TRUE(walk->next(nullptr, nullptr));
    EXPECT_TRUE(walk->next(&name, nullptr));
    EXPECT_EQ(name, u"a");
}

TEST_F(CustomProperties, SetPropertyAddsOrReplaces)
{
    TvSmCustomPropertyValue* first = make(TvVariant("1"));
    TvSmCustomPropertyValue* second = make(TvVariant("2"));
    EXPECT_TRUE(bag->setProperty(u"p", first));
    EXPECT_EQ(bag->getProperty(u"p"), first);
    EXPECT_TRUE(bag->setProperty(u"p", first));
    EXPECT_TRUE(bag->setProperty(u"p", second));
    EXPECT_EQ(bag->getProperty(u"p"), second);
    EXPECT_EQ(names(), std::vector<TvString>{u"p"});
    EXPECT_EQ(db->findObject(handleOf(first)), nullptr);
    EXPECT_EQ(db->findObject(handleOf(second)), second);
}

TEST_F(CustomProperties, NamesAreComparedLetterForLetter)
{
    ASSERT_TRUE(bag->setProperty(u"Name", make(TvVariant("1"))));
    EXPECT_EQ(bag->getProperty(u"name"), nullptr);
    EXPECT_TRUE(bag->setProperty(u"name", make(TvVariant("2"))));
    EXPECT_EQ(names().size(), 2u);
}

TEST_F(CustomProperties, NullEmptyNamesAndValuesThatStandElsewhereAreRefused)
{
    TvSmCustomPropertyValue* value = make(TvVariant("1"));
    ASSERT_TRUE(bag->setProperty(u"p", value));
    EXPECT_FALSE(bag->setProperty(u"q", nullptr));
    EXPECT_FALSE(bag->setProperty(u"q", value));
    std::unique_ptr<TvSmCustomPropertyValue> mine(make(TvVariant("2")));
    EXPECT_FALSE(bag->setProperty(TvString(), mine.get()));
    TvSmDatabase other;
    std::unique_ptr<TvSmCustomPropertyValue> foreign(
        newFor<TvSmCustomPropertyValue>(other.getSheetSet()));
    EXPECT_FALSE(bag->setProperty(u"q", foreign.get()));
    TvSmCustomPropertyValue unbound;
    EXPECT_FALSE(bag->setProperty(u"q", &unbound));
    EXPECT_EQ(names(), std::vector<TvString>{u"p"});
}

TEST_F(CustomProperties, ARemovedPropertyIsGoneAndItsValueStaysValid)
{
    TvSmCustomPropertyValue* value = make(TvVariant("1"), 2);
    ASSERT_TRUE(bag->setProperty(u"p", value));
    EXPECT_TRUE(bag->removeProperty(u"p"));
    EXPECT_EQ(bag->getProperty(u"p"), nullptr);
    EXPECT_EQ(value->getFlags(), 2);
    EXPECT_TRUE(bag->setProperty(u"q", value));
    EXPECT_EQ(bag->getProperty(u"q"), value);
}

TEST_F(CustomProperties, AValueMadeForASheetBecomesTheBagsThatItIsPutInto)
{
    TvSmSheet* sheet = addSheet(db->getSheetSet(), u"1", u"S");
    auto* value = newFor<TvSmCustomPropertyValue>(sheet);
    EXPECT_EQ(value->owner(), sheet);
    EXPECT_TRUE(sheet->getCustomProperties()->setProperty(u"p", value));
    EXPECT_EQ(value->owner(), sheet->getCustomProperties());
    EXPECT_EQ(sheet->getCustomProperties()->owner(), sheet);
}

TEST_F(CustomProperties, AFreshValueIsEmptyWithoutFlags)
{
    const TvSmCustomPropertyValue fresh;
    EXPECT_EQ(valueOf(&fresh), TvVariant());
    EXPECT_EQ(fresh.getFlags(), 0);
    EXPECT_EQ(TvSmCustomPropertyValue::kSheetSetProperty, 1);
    EXPECT_EQ(TvSmCustomPropertyValue::kSheetProperty, 2);
}

TEST_F(CustomProperties, EveryTypeOfValueIsGivenBackAndGoesThroughAFile)
{
    const double pi = 3.141592653589793;
    const std::pair<const char*, TvVariant> rows[] = {
        {"text", TvVariant(u"a\nb")},
        {"no text", TvVariant(u"")},
        {"empty", TvVariant()},
        {"int", TvVariant(std::numeric_limits<std::int32_t>::min())},
        {"short", TvVariant(std::numeric_limits<std::int16_t>::max())},
        {"real", TvVariant(pi)},
        {"tiny", TvVariant(5e-324)},
        {"infinite", TvVariant(std::numeric_limits<double>::infinity())},
        {"true", TvVariant(true)},
        {"false", TvVariant(false)},
    };
    for (const auto& [name, value] : rows) {
        ASSERT_TRUE(bag->setProperty(name, make(value, 3)));
        EXPECT_EQ(valueOf(bag->getProperty(name)), value) << name;
    }
    ASSERT_TRUE(db->save(0));
    ASSERT_TRUE(manager.closeDatabase(db));
    db = open();
    ASSERT_TRUE(db);
    const auto* read = db->getSheetSet()->getCustomProperties();
    for (const auto& [name, value] : rows) {
        ASSERT_TRUE(read->getProperty(name)) << name;
        EXPECT_EQ(valueOf(read->getProperty(name)), value) << name;
        EXPECT_EQ(read->getProperty(name)->getFlags(), 3);
    }
}

TEST_F(CustomProperties, ValuesMayChangeTheirType)
{
    TvSmCustomPropertyValue* value = make(TvVariant("text"));
    ASSERT_TRUE(bag->setProperty(u"p", value));
    for (const TvVariant& next : {TvVariant(std::int32_t(5)), TvVariant("again"), TvVariant(),
                                  TvVariant(2.5), TvVariant(true)}) {
        ASSERT_TRUE(value->setValue(next));
        EXPECT_EQ(valueOf(value), next);
    }
}

TEST_F(CustomProperties, MarksBesideTheTypeStayWithTheValue)
{
    TvVariant marked("text");
    marked.setMarks(64);
    const TvSmCustomPropertyValue* value = make(marked);
    ASSERT_TRUE(bag->setProperty(u"p", const_cast<TvSmCustomPropertyValue*>(value)));
    EXPECT_EQ(valueOf(value).type(), 65);
    EXPECT_TRUE(valueOf(value).isString());
}

TEST_F(CustomProperties, AHelperSetsATextAndItsFlagsInOneStep)
{
    EXPECT_TRUE(sm::setTextProperty(bag, u"p", u"one", 1));
    TvSmCustomPropertyValue* value = bag->getProperty(u"p");
    EXPECT_TRUE(sm::setTextProperty(bag, u"p", u"two", 2));
    EXPECT_EQ(bag->getProperty(u"p"), value);
    EXPECT_EQ(valueOf(value), TvVariant("two"));
    EXPECT_EQ(value->getFlags(), 2);
    EXPECT_FALSE(sm::setTextProperty(nullptr, u"p", u"x", 0));
    EXPECT_FALSE(sm::setTextProperty(bag, TvString(), u"x", 0));
    EXPECT_TRUE(sm::propertiesOf(nullptr).empty());
}

TEST_F(CustomProperties, EachKindOfComponentHasABagOfItsOwn)
{
    TvSmSheetSet* set = db->getSheetSet();
    TvSmSheet* sheet = addSheet(set, u"1", u"S");
    TvSmComponent* const components[] = {
        set,
        sheet,
        addSubset(set, u"D"),
        addView(sheet, u"V"),
        addCategory(set, u"C"),
        set->getSheetSelections()->add(u"X", u""),
        set->getPublishOptions(),
        set->getViewCategories(),
        set->getSheetSelections(),
        sheet->getSheetViews(),
    };
    int number = 0;
    for (TvSmComponent* component : components) {
        const TvString text = TvString().format(u"%d", number++);
        EXPECT_TRUE(sm::setTextProperty(component->getCustomProperties(), u"p", text, 2));
    }
    const std::string before = Outline::of(db);
    ASSERT_TRUE(db->save(0));
    ASSERT_TRUE(manager.closeDatabase(db));
    ASSERT_TRUE(open());
    EXPECT_EQ(Outline::of(open()), before);
}

TEST_F(CustomProperties, NumbersOfAFileThatFitNoTypeAreTheNearestThatDo)
{
    replaceOutside("<?xml version=\"1.0\"?>\n<sheetSetFile version=\"1.0\" nextHandle=\"g20\">"
                   "<sheetSet handle=\"g1\">"
                   "<property handle=\"g3\" name=\"high\" type=\"int\" value=\"1e300\"/>"
                   "<property handle=\"g4\" name=\"low\" type=\"short\" value=\"-1e300\"/>"
                   "<property handle=\"g5\" name=\"none\" type=\"int\" value=\"nan\"/>"
                   "</sheetSet></sheetSetFile>");
    ASSERT_TRUE(db->load(path()));
    EXPECT_EQ(valueOf(bag->getProperty(u"high")),
              TvVariant(std::numeric_limits<std::int32_t>::max()));
    EXPECT_EQ(valueOf(bag->getProperty(u"low")),
              TvVariant(std::numeric_limits<std::int16_t>::min()));
    EXPECT_EQ(valueOf(bag->getProperty(u"none")), TvVariant(std::int32_t(0)));
}
