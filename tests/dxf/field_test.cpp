#include "object_text.h"

namespace {

const std::string kField = groups({{0, "FIELD"},
                                   {5, "2A"},
                                   {330, "C"},
                                   {100, "AcDbField"},
                                   {1, "AcVar"},
                                   {2, "the first "},
                                   {3, "and the rest"},
                                   {90, "1"},
                                   {360, "2B"},
                                   {97, "2"},
                                   {331, "2C"},
                                   {331, "2D"},
                                   {91, "63"},
                                   {92, "1"},
                                   {94, "59"},
                                   {95, "2"},
                                   {96, "7"},
                                   {300, "an error"},
                                   {93, "2"}});
const std::string kChild = groups({{0, "FIELDLIST"},
                                   {5, "2B"},
                                   {330, "C"},
                                   {100, "AcDbIdSet"},
                                   {90, "2"},
                                   {330, "2A"},
                                   {330, "2C"},
                                   {100, "AcDbFieldList"}});

std::string value(bool isLater, std::initializer_list<std::pair<int, const char*>> payload,
                  const char* text)
{
    return (isLater ? groups({{93, "0"}}) : "") + groups(payload) +
           (isLater ? groups({{94, "3"}, {300, "%lu2"}, {302, text}, {304, "ACVALUE_END"}}) : "");
}

std::vector<std::uint8_t> bytesOfText(const std::u16string& text, bool isWide)
{
    std::vector<std::uint8_t> bytes;
    for (const char16_t unit : text + u'\0') {
        bytes.push_back(static_cast<std::uint8_t>(unit));
        if (isWide)
            bytes.push_back(static_cast<std::uint8_t>(unit >> 8));
    }
    return bytes;
}

std::vector<std::uint8_t> copied(std::span<const std::uint8_t> bytes)
{
    return {bytes.begin(), bytes.end()};
}

TEST(Field, IsReadWithItsValuesAndWrittenAsItWas)
{
    for (const NamedVersion& version : kVersions) {
        const bool isLater = version.version >= db::Version::Ac1021;
        const std::string text =
            kField + groups({{6, "FIRST"}}) + value(isLater, {{90, "1"}, {91, "-17"}}, "-17") +
            groups({{6, "SECOND"}}) +
            value(isLater, {{90, "8"}, {92, "4"}, {310, "0102"}, {310, "0304"}}, "a date") +
            groups({{6, "THIRD"}}) +
            value(isLater, {{90, "32"}, {11, "1.5"}, {21, "2.5"}, {31, "3.5"}}, "a point") +
            groups({{7, "ACFD_FIELD_VALUE"}}) +
            value(isLater, {{90, "4"}, {2, "in two "}, {1, "pieces"}}, "in two pieces") +
            groups({{301, "the last "}, {9, "result"}, {98, "15"}});

        const db::Record field = readTwice(version, "OBJECTS", text);

        EXPECT_EQ(field.text("code"), u"the first and the rest");
        EXPECT_EQ(field.array("children").handle(0), 0x2Bu);
        EXPECT_EQ(field.array("objects").handle(1), 0x2Du);
        EXPECT_EQ(field.integer("error_code"), 7);
        EXPECT_EQ(field.text("error_text"), u"an error");
        EXPECT_EQ(field.text("value_string"), u"the last result");
        EXPECT_EQ(field.integer("value_string_len"), 15);
        const db::ArrayView values = field.array("child_values");
        ASSERT_EQ(values.size(), 3u);
        EXPECT_EQ(values[0].text("key"), u"FIRST");
        EXPECT_EQ(values[0].structure("v").integer("long"), -17);
        EXPECT_EQ(copied(values[1].structure("v").bytes("bytes")),
                  (std::vector<std::uint8_t>{1, 2, 3, 4}));
        EXPECT_EQ(values[2].structure("v").bytes("bytes").size(), 24u);
        EXPECT_EQ(copied(field.structure("value").bytes("bytes")),
                  bytesOfText(u"in two pieces", isLater));
        EXPECT_EQ(field.structure("value").text("text"), isLater ? u"in two pieces" : u"");
    }
}

TEST(Field, KeepsBytesThatAreNoTextAsBytes)
{
    // What means another character in files, two texts, half a unit: text leads back to none.
    for (const char* bytes : {"5C0055002B00300030003400310000", "610000006200000", "61"}) {
        const std::string even = std::string(bytes).size() % 2 ? std::string(bytes) + "0" : bytes;
        const std::string text = kField + groups({{7, "ACFD_FIELD_VALUE"}}) +
                                 value(true, {{90, "4"}, {92, "1"}, {310, even.c_str()}}, "x");

        const db::Record field = readTwice(kVersions[5], "OBJECTS", text);

        EXPECT_EQ(field.structure("value").bytes("bytes").size(), even.size() / 2);
    }
}

TEST(FieldList, IsReadAndWrittenAsItWas)
{
    std::string text = kChild;
    text.replace(text.find("2B"), 2, "2A");
    for (const NamedVersion& version : kVersions) {
        const db::Record list = readTwice(version, "OBJECTS", text);

        ASSERT_EQ(list.array("fields").size(), 2u);
        EXPECT_EQ(list.array("fields").handle(1), 0x2Cu);
    }
}

TEST(DataLink, IsReadAndWrittenAsItWas)
{
    const std::string head = groups({{0, "DATALINK"},
                                     {5, "2A"},
                                     {330, "C"},
                                     {100, "AcDbDataLink"},
                                     {1, "AcExcel"},
                                     {300, "a sheet"},
                                     {301, "a tip"},
                                     {302, "book.xls!Sheet1"},
                                     {90, "2"},
                                     {91, "3"},
                                     {92, "1"},
                                     {170, "2026"},
                                     {176, "9"},
                                     {177, "1"},
                                     {93, "0"},
                                     {304, "fine"},
                                     {94, "2"},
                                     {360, "0"}});
    for (const NamedVersion& version : kVersions) {
        const bool isLater = version.version >= db::Version::Ac1021;
        std::string text = head;
        for (const char* key : {"FIRST", "SECOND"})
            text += groups({{300, key}, {301, "DATAMAP_VALUE"}}) +
                    value(isLater, {{90, "2"}, {140, "1.25"}}, key);

        const db::Record link = readTwice(version, "OBJECTS", text);

        EXPECT_EQ(link.text("description"), u"a sheet");
        EXPECT_EQ(link.text("tooltip"), u"a tip");
        EXPECT_EQ(link.text("status"), u"fine");
        EXPECT_EQ(link.integer("bl93"), 0);
        const db::ArrayView custom = link.array("custom");
        ASSERT_EQ(custom.size(), 2u);
        EXPECT_EQ(custom[1].text("key"), u"SECOND");
        EXPECT_EQ(custom[1].structure("v").real("real"), 1.25);
    }
}

const std::string kTable = groups({{0, "DATATABLE"},
                                   {5, "2A"},
                                   {330, "C"},
                                   {100, "AcDbDataTable"},
                                   {70, "2"},
                                   {90, "4"},
                                   {91, "2"},
                                   {1, "a table"}});

TEST(DataTable, IsReadWithColumnsOfAllKindsAndWrittenAsItWas)
{
    const std::string text =
        kTable + groups({{92, "1"},    {2, "numbers"}, {93, "5"},      {93, "6"},   {92, "3"},
                         {2, "texts"}, {3, "a"},       {3, ""},        {92, "4"},   {2, "points"},
                         {10, "1.0"},  {20, "2.0"},    {30, "3.0"},    {10, "4.0"}, {20, "5.0"},
                         {30, "6.0"},  {92, "9"},      {2, "handles"}, {340, "1F"}, {330, "0"}});
    for (const NamedVersion& version : kVersions) {
        const db::Record table = readTwice(version, "OBJECTS", text);

        const db::ArrayView columns = table.array("cols");
        ASSERT_EQ(columns.size(), 4u);
        EXPECT_EQ(columns[0].array("longs").integer(1), 6);
        EXPECT_EQ(columns[1].array("texts").text(0), u"a");
        EXPECT_EQ(columns[2].array("points").point(1), (db::Point{4, 5, 6}));
        EXPECT_EQ(columns[3].array("refs").handle(0), 0x1Fu);
    }
}

TEST(DataTable, IsDamagedWhenAColumnHasNotACellInEachRow)
{
    const OpenFile file =
        openDxf(groups({{0, "SECTION"},
                        {2, "OBJECTS"},
                        {0, "DICTIONARY"},
                        {5, "C"},
                        {100, "AcDbDictionary"},
                        {3, "X"},
                        {350, "2A"}}) +
                kTable + groups({{92, "1"}, {2, "numbers"}, {93, "5"}, {0, "ENDSEC"}, {0, "EOF"}}));
    ASSERT_TRUE(file);
    db::Record table;
    EXPECT_EQ(file->read(0x2A, table).failure(), base::Failure::Damaged);
}

} // namespace
