#include <limits>

#include <db/record.h>
#include <db/record_editor.h>

namespace {

db::Record make(const char* name)
{
    return db::Record(*db::classNamed(name));
}

} // namespace

TEST(Record, IsMadeWithTheDefaultsOfItsTable)
{
    const db::Record layer = make("LAYER");
    EXPECT_EQ(layer.integer("flags"), 0x3F0);
    EXPECT_EQ(layer.text("name"), u"");
    EXPECT_EQ(layer.handle("ltype"), 0u);
    EXPECT_EQ(layer.structure("color").integer("value"), static_cast<std::int32_t>(0xC0000000));
    const db::Record line = make("LINE");
    EXPECT_EQ(line.point("normal"), (db::Point{0, 0, 1}));
    EXPECT_EQ(line.real("ltype_scale"), 1.0);
    EXPECT_EQ(line.structure("color").integer("flags"), 256);
    EXPECT_EQ(make("INSERT").point("scale"), (db::Point{1, 1, 1}));
    EXPECT_EQ(make("LAYOUT").point("extmin").y, 1e20);
    EXPECT_EQ(make("DIMSTYLE").integer("DIMLWD"), -2);
    EXPECT_EQ(make("HEADER_VARIABLES").integer("TIMEZONE"), -8000);
}

TEST(Record, FillsArraysOfFixedLength)
{
    EXPECT_EQ(make("MATERIAL").structure("diffuse_map").array("matrix").size(), 16u);
    EXPECT_EQ(make("LTYPE").bytes("text_area").size(), 256u);
    const db::Record style = make("TABLESTYLE");
    ASSERT_EQ(style.array("rows").size(), 3u);
    EXPECT_EQ(style.array("rows")[2].array("borders").size(), 6u);
}

TEST(Record, AnswersZeroOrEmptyForOtherNamesAndKinds)
{
    const db::Record line = make("LINE");
    EXPECT_FALSE(line.has("tab_order"));
    EXPECT_TRUE(line.has("layer"));
    EXPECT_EQ(line.integer("tab_order"), 0);
    EXPECT_EQ(line.integer("start"), 0);
    EXPECT_EQ(line.text("layer"), u"");
    EXPECT_EQ(line.handle("thickness"), 0u);
    EXPECT_TRUE(line.bytes("start").empty());
    EXPECT_FALSE(line.structure("start"));
    EXPECT_EQ(line.structure("start").real("x"), 0.0);
    EXPECT_TRUE(line.array("layer").isEmpty());
    EXPECT_EQ(line.array("reactors").handle(0), 0u);
    EXPECT_FALSE(line.array("eed")[5]);
}

TEST(Record, AnEmptyOneHasNothing)
{
    const db::Record none;
    EXPECT_EQ(none.classDef(), nullptr);
    EXPECT_FALSE(none.fields());
    EXPECT_EQ(none.text("name"), u"");
    EXPECT_TRUE(none == db::Record());
}

TEST(RecordEditor, ChangesScalarsTextsAndReferences)
{
    db::Record layout = make("LAYOUT");
    db::RecordEditor edit(layout);
    EXPECT_TRUE(edit.setText("name", u"Grundriß 1"));
    EXPECT_TRUE(edit.setInteger("tab_order", 3));
    EXPECT_TRUE(edit.setReal("paper_width", 841.0));
    EXPECT_TRUE(edit.setPoint("limmax", {12, 9}));
    EXPECT_TRUE(edit.setHandle("block_record", 0x1F));
    EXPECT_EQ(layout.text("name"), u"Grundriß 1");
    EXPECT_EQ(layout.integer("tab_order"), 3);
    EXPECT_EQ(layout.real("paper_width"), 841.0);
    EXPECT_EQ(layout.point("limmax"), (db::Point{12, 9, 0}));
    EXPECT_EQ(layout.handle("block_record"), 0x1Fu);
}

TEST(RecordEditor, RefusesAndKeepsWhatDoesNotFit)
{
    db::Record layout = make("LAYOUT");
    db::RecordEditor edit(layout);
    const db::Record before = layout;
    EXPECT_FALSE(edit.setInteger("name", 1));
    EXPECT_FALSE(edit.setInteger("no such field", 1));
    EXPECT_FALSE(edit.setInteger("tab_order", std::int64_t(1) << 40));
    EXPECT_FALSE(edit.setText("tab_order", u"x"));
    EXPECT_FALSE(edit.setText("name", std::u16string(70000, u'x')));
    EXPECT_FALSE(edit.setHandle("block_record", std::uint64_t(1) << 62));
    EXPECT_FALSE(edit.setDate("tab_order", 1, 1));
    EXPECT_FALSE(edit.array("name").resize(2));
    EXPECT_FALSE(edit.structure("name").setInteger("x", 1));
    EXPECT_TRUE(layout == before);
}

TEST(RecordEditor, KeepsNumbersAsReadingGivesThem)
{
    db::Record record = make("ELLIPSE");
    db::RecordEditor edit(record);
    edit.structure("color").setInteger("rgb", 0xC2FF8000);
    EXPECT_EQ(record.structure("color").integer("rgb"), static_cast<std::int32_t>(0xC2FF8000));
    db::Record header = make("HEADER_VARIABLES");
    db::RecordEditor(header).setInteger("REQUIREDVERSIONS", std::int64_t(1) << 40);
    EXPECT_EQ(header.integer("REQUIREDVERSIONS"), std::int64_t(1) << 40);
    db::RecordEditor(header).setDate("TDCREATE", 2460000, 1234);
    EXPECT_EQ(header.date("TDCREATE"), (std::array<std::int64_t, 2>{2460000, 1234}));
}

TEST(RecordEditor, LeavesAConditionThatHoldsAlreadyAsItIs)
{
    db::Record record(*db::classNamed("MTEXT"));
    db::RecordEditor edit(record);
    edit.setInteger("columns", 2); // dynamic
    edit.setReal("col_width", 5);
    EXPECT_EQ(record.integer("columns"), 2);
    edit.setInteger("columns", 0);
    edit.setReal("gutter", 1);
    EXPECT_EQ(record.integer("columns"), 1);
}

TEST(RecordEditor, BringsAboutTheConditionOfAField)
{
    db::Record text = make("TEXT");
    db::RecordEditor edit(text);
    ASSERT_EQ(text.integer("dataflags"), 0xFF);
    edit.setReal("rotation", 0.5);
    EXPECT_EQ(text.integer("dataflags"), 0xFF & ~8);
    edit.setHandle("ltype", 0x14);
    EXPECT_EQ(text.integer("ltype_flags"), 3);
    edit.setHandle("xdict", 0x99);
    EXPECT_EQ(text.integer("xdict_missing"), 0);
    edit.setHandle("color_ref", 0x98);
    EXPECT_EQ(text.structure("color").integer("flags"), 256 | 0x4000);

    db::Record line = make("LINE");
    db::RecordEditor(line).setInteger("z_zero", 1);
    db::RecordEditor(line).setPoint("start", {1, 2, 3});
    EXPECT_EQ(line.integer("z_zero"), 0);

    db::Record polyline = make("LWPOLYLINE");
    db::RecordEditor(polyline).setPoint("normal", {0, 0, -1});
    EXPECT_EQ(polyline.integer("flags"), 1);
}

TEST(RecordEditor, ADefaultLeavesTheConditionAlone)
{
    db::Record text = make("TEXT");
    db::RecordEditor(text).setReal("rotation", 0.0);
    EXPECT_EQ(text.integer("dataflags"), 0xFF);
    db::RecordEditor(text).setReal("rotation", 1.0);
    db::RecordEditor(text).setReal("rotation", 0.0);
    EXPECT_EQ(text.integer("dataflags"), 0xFF & ~8);
}

TEST(ArrayEditor, ResizesArraysThatShareACountTogether)
{
    db::Record dictionary = make("DICTIONARY");
    db::ArrayEditor keys = db::RecordEditor(dictionary).array("keys");
    for (const char16_t* key : {u"A", u"C"})
        keys.setText(keys.add(), key);
    keys.insert(1);
    keys.setText(1, u"B");
    db::RecordEditor(dictionary).array("values").setHandle(1, 0x42);
    EXPECT_EQ(dictionary.integer("n"), 3);
    ASSERT_EQ(dictionary.array("values").size(), 3u);
    EXPECT_EQ(dictionary.array("values").handle(1), 0x42u);
    EXPECT_EQ(dictionary.array("values").handle(2), 0u);

    db::RecordEditor(dictionary).array("values").erase(0);
    EXPECT_EQ(dictionary.integer("n"), 2);
    EXPECT_EQ(dictionary.array("keys").text(0), u"B");
    EXPECT_EQ(dictionary.array("keys").text(1), u"C");
    EXPECT_EQ(dictionary.array("values").handle(0), 0x42u);
}

TEST(ArrayEditor, NewElementsHoldDefaults)
{
    db::Record hatch = make("HATCH");
    db::ArrayEditor paths = db::RecordEditor(hatch).array("paths");
    const std::uint32_t first = paths.add();
    paths[first].setInteger("flags", 7);
    EXPECT_EQ(hatch.array("paths")[0].integer("flags"), 7);
    EXPECT_EQ(hatch.integer("n_paths"), 1);
    db::ArrayEditor points = paths[first].array("pts");
    points.resize(2);
    points[1].setPoint("pt", {3, 4});
    EXPECT_EQ(hatch.array("paths")[0].array("pts")[1].point("pt"), (db::Point{3, 4, 0}));
    EXPECT_EQ(hatch.array("paths")[0].integer("n_pts"), 2);
}

TEST(ArrayEditor, RefusesWhatIsOutOfRange)
{
    db::Record dictionary = make("DICTIONARY");
    db::ArrayEditor keys = db::RecordEditor(dictionary).array("keys");
    EXPECT_FALSE(keys.erase(0));
    EXPECT_FALSE(keys.insert(1));
    EXPECT_FALSE(keys.setText(0, u"x"));
    EXPECT_FALSE(keys.setHandle(0, 1));
    EXPECT_FALSE(keys.resize(0xFFFFFFFF));
    EXPECT_FALSE(keys[0].setInteger("x", 1));
    db::Record material = make("MATERIAL");
    db::ArrayEditor matrix = db::RecordEditor(material).structure("diffuse_map").array("matrix");
    EXPECT_FALSE(matrix.resize(3));
    EXPECT_TRUE(matrix.setReal(15, 1.0));
    EXPECT_FALSE(db::ArrayEditor().resize(1));
}

TEST(ArrayEditor, ManyInsertionsTakeLittleMemory)
{
    db::Record dictionary = make("DICTIONARY");
    db::ArrayEditor keys = db::RecordEditor(dictionary).array("keys");
    constexpr std::uint32_t kMany = 20000;
    for (std::uint32_t i = 0; i < kMany; ++i)
        keys.insert(0);
    EXPECT_EQ(dictionary.array("values").size(), kMany);
    EXPECT_LT(dictionary.words().size(), 20 * kMany); // words; without room to grow it were kMany²
}

TEST(Record, ACopyIsIndependent)
{
    db::Record first = make("DICTIONARY");
    db::RecordEditor edit(first);
    edit.array("keys").setText(edit.array("keys").add(), u"Layout1");
    db::Record second = first;
    EXPECT_TRUE(first == second);
    db::RecordEditor(second).array("keys").setText(0, u"Layout2");
    EXPECT_EQ(first.array("keys").text(0), u"Layout1");
    EXPECT_FALSE(first == second);
}

TEST(Record, ComparesByValueNotByPlace)
{
    db::Record one = make("LAYOUT");
    db::RecordEditor(one).setText("name", u"first");
    db::RecordEditor(one).setText("name", u"second");
    db::Record other = make("LAYOUT");
    db::RecordEditor(other).setText("name", u"second");
    EXPECT_TRUE(one == other);
    other.setHandle(5);
    EXPECT_FALSE(one == other);
}

TEST(Record, TellsSignedZerosAndNumbersThatAreNoneApart)
{
    db::Record one = make("CIRCLE");
    db::Record other = one;
    db::RecordEditor(one).setReal("radius", -0.0);
    EXPECT_FALSE(one == other);
    db::RecordEditor(one).setReal("radius", std::numeric_limits<double>::quiet_NaN());
    other = one;
    EXPECT_TRUE(one == other);
}

TEST(Record, CompactingDropsWhatEditsLeftBehind)
{
    db::Record record = make("DICTIONARY");
    db::RecordEditor edit(record);
    for (int i = 0; i < 50; ++i)
        edit.array("keys").setText(edit.array("keys").add(), std::u16string(100, u'k'));
    for (int i = 0; i < 40; ++i)
        edit.array("keys").erase(0);
    const db::Record before = record;
    db::compact(record);
    EXPECT_LT(record.words().size(), before.words().size() / 4);
    EXPECT_TRUE(record == before);
    EXPECT_EQ(record.array("keys").text(9), std::u16string(100, u'k'));
    db::compact(record);
    db::RecordEditor(record).array("keys").add();
    EXPECT_EQ(record.array("values").size(), 11u);
}
