// Records that were made or edited here: written, read again, equal.

#include <cstring>
#include <limits>
#include <set>

#include <rapidcheck/gtest.h>

#include <db/group_items.h>
#include <db/record_editor.h>
#include <dwg/header_record.h>
#include <dwg/object_codec.h>

namespace {

constexpr dwg::Version kAll[] = {dwg::Version::Ac1015, dwg::Version::Ac1018, dwg::Version::Ac1021,
                                 dwg::Version::Ac1024, dwg::Version::Ac1027, dwg::Version::Ac1032};

/// Every class without a number of its own has one here.
const dwg::ObjectClasses& allClasses()
{
    static const dwg::ObjectClasses classes = [] {
        dwg::ObjectClasses made;
        int number = 500;
        for (const db::ClassDef* each : db::allClasses())
            made.add(number++, each->name(), each->isEntity());
        return made;
    }();
    return classes;
}

int numberOf(const db::ClassDef& classDef)
{
    if (classDef.typeNumber() > 0)
        return classDef.typeNumber();
    int number = 500;
    while (allClasses().find(number) != &classDef)
        ++number;
    return number;
}

dwg::ObjectContext contextOf(dwg::Version version)
{
    return {version, allClasses(), dwg::CodePage::numbered(30)};
}

db::Record make(const db::ClassDef& classDef, dwg::Version version)
{
    db::Record record(classDef);
    record.setVersion(dwg::databaseVersion(version));
    record.setTypeNumber(numberOf(classDef));
    record.setHandle(0x2F0);
    return record;
}

db::Record make(const char* name, dwg::Version version)
{
    return make(*db::classNamed(name), version);
}

std::vector<std::uint8_t> encoded(const db::Record& record, dwg::Version version)
{
    auto bytes = dwg::encodeObject(record, contextOf(version));
    EXPECT_TRUE(bytes) << (record.classDef() ? record.classDef()->name() : "nothing");
    return bytes ? *bytes : std::vector<std::uint8_t>();
}

db::Record decoded(const std::vector<std::uint8_t>& bytes, dwg::Version version)
{
    const auto object = dwg::parseRecord(version, bytes);
    EXPECT_TRUE(object);
    if (!object)
        return db::Record();
    EXPECT_TRUE(object->checksumRight());
    auto record = dwg::decodeObject(*object, contextOf(version));
    EXPECT_TRUE(record);
    return record ? *record : db::Record();
}

db::Record thereAndBack(const db::Record& record, dwg::Version version)
{
    return decoded(encoded(record, version), version);
}

bool isRaw(const db::ClassDef& classDef)
{
    return classDef.kind() == db::ClassKind::Header || classDef.name().starts_with("RAW_");
}

} // namespace

TEST(ObjectEdit, ANewRecordOfEveryClassIsWrittenAndReadInEveryVersion)
{
    for (const db::ClassDef* each : db::allClasses())
        for (const dwg::Version version : kAll) {
            if (isRaw(*each))
                continue;
            SCOPED_TRACE(std::string(each->name()) + " " + std::string(dwg::nameOf(version)));
            const db::Record fresh = make(*each, version);
            const auto bytes = encoded(fresh, version);
            EXPECT_EQ(encoded(decoded(bytes, version), version), bytes);
        }
}

TEST(ObjectEdit, EditsSurviveInEveryVersion)
{
    for (const dwg::Version version : kAll) {
        SCOPED_TRACE(dwg::nameOf(version));
        db::Record layout = make("LAYOUT", version);
        db::RecordEditor edit(layout);
        edit.setText("name", u"Grundriß");
        edit.setText("plotter_config", u"none_device");
        edit.setReal("paper_width", 420.0);
        edit.setHandle("block_record", 0x1F);
        db::ArrayEditor reactors = edit.array("reactors");
        reactors.setHandle(reactors.add(), 0x1A);
        EXPECT_TRUE(thereAndBack(layout, version) == layout);
    }
}

TEST(ObjectEdit, OfAReadRecordChangesOnlyWhatWasEdited)
{
    const dwg::Version version = dwg::Version::Ac1032;
    db::Record dictionary = make("DICTIONARY", version);
    db::ArrayEditor keys = db::RecordEditor(dictionary).array("keys");
    for (const char16_t* key : {u"ACAD_GROUP", u"ACAD_LAYOUT", u"ACAD_MATERIAL"})
        keys.setText(keys.add(), key);
    db::Record read = thereAndBack(dictionary, version);
    db::RecordEditor(read).array("values").erase(1);
    const db::Record again = thereAndBack(read, version);
    ASSERT_EQ(again.array("keys").size(), 2u);
    EXPECT_EQ(again.array("keys").text(0), u"ACAD_GROUP");
    EXPECT_EQ(again.array("keys").text(1), u"ACAD_MATERIAL");
    EXPECT_TRUE(again == read);
}

TEST(ObjectEdit, WhatCannotBeStoredOrReadIsNotCalledDamaged)
{
    const dwg::ObjectContext context = contextOf(dwg::Version::Ac1018);
    db::Record text = make("TEXT", dwg::Version::Ac1018);
    // Each letter becomes an escape of seven bytes, more than a text has.
    ASSERT_TRUE(db::RecordEditor(text).setText("text", std::u16string(20'000, u'\u4E2D')));
    const base::Status tooLarge = dwg::encodeObject(text, context).status();
    EXPECT_EQ(tooLarge.failure(), base::Failure::TooLarge);
    EXPECT_EQ(tooLarge.reason(), base::Reason::DwgRecordInvalid);

    db::Record noType = make("TEXT", dwg::Version::Ac1018);
    noType.setTypeNumber(0);
    EXPECT_EQ(dwg::encodeObject(noType, context).status().reason(), base::Reason::DwgRecordInvalid);

    const auto bytes = dwg::encodeObject(make("MLEADERSTYLE", dwg::Version::Ac1018), context);
    ASSERT_TRUE(bytes);
    const dwg::ObjectClasses none;
    const auto unknown =
        dwg::decodeObject(*dwg::parseRecord(dwg::Version::Ac1018, *bytes),
                          {dwg::Version::Ac1018, none, dwg::CodePage::numbered(30)});
    EXPECT_EQ(unknown.status().reason(), base::Reason::DwgCheckObjectUnreadable);
}

TEST(ObjectEdit, CharactersThatTheCodePageLacksBecomeEscapes)
{
    db::Record text = make("TEXT", dwg::Version::Ac1018);
    db::RecordEditor(text).setText("text", u"\u4E2D \u00E4 \U0001F600");
    const db::Record read = thereAndBack(text, dwg::Version::Ac1018);
    EXPECT_EQ(read.text("text"), u"\u4E2D \u00E4 \U0001F600");
    EXPECT_EQ(encoded(read, dwg::Version::Ac1018), encoded(text, dwg::Version::Ac1018));
    const std::string_view stored = "\\U+4E2D \xE4 \\U+D83D\\U+DE00";
    EXPECT_EQ(dwg::CodePage::numbered(30).encode(read.text("text")), stored);
    const db::Record wide = thereAndBack(make("TEXT", dwg::Version::Ac1021), dwg::Version::Ac1021);
    EXPECT_EQ(wide.text("text"), u"");
}

TEST(ObjectEdit, NumbersThatAreNoneStayWhatTheyAre)
{
    for (const double value : {std::numeric_limits<double>::quiet_NaN(), -0.0,
                               std::numeric_limits<double>::infinity(), 5e-324}) {
        db::Record circle = make("CIRCLE", dwg::Version::Ac1027);
        db::RecordEditor(circle).setReal("radius", value);
        db::RecordEditor(circle).setPoint("center", {value, 1.0, 0.0});
        EXPECT_TRUE(thereAndBack(circle, dwg::Version::Ac1027) == circle) << value;
    }
}

TEST(ObjectEdit, ScalesTakeTheirShortestForm)
{
    for (const db::Point scale : {db::Point{1, 1, 1}, db::Point{2, 2, 2}, db::Point{1, 2, 3},
                                  db::Point{4, 5, 4}, db::Point{-1, 1, 1}, db::Point{0, 0, 0}}) {
        db::Record insert = make("INSERT", dwg::Version::Ac1015);
        db::RecordEditor(insert).setPoint("scale", scale);
        EXPECT_EQ(thereAndBack(insert, dwg::Version::Ac1015).point("scale"), scale);
    }
    const auto sizeOf = [](const db::Point& scale) {
        db::Record insert = make("INSERT", dwg::Version::Ac1015);
        db::RecordEditor(insert).setPoint("scale", scale);
        return encoded(insert, dwg::Version::Ac1015).size();
    };
    EXPECT_LT(sizeOf({1, 1, 1}), sizeOf({2, 2, 2}));
    EXPECT_LT(sizeOf({2, 2, 2}), sizeOf({2, 3, 2}));
}

TEST(ObjectEdit, ARecordThatContradictsItselfIsNotWritten)
{
    db::Record line = make("LINE", dwg::Version::Ac1032);
    db::RecordEditor(line).setInteger("n_reactors", 2);
    const auto bytes = dwg::encodeObject(line, contextOf(dwg::Version::Ac1032));
    EXPECT_EQ(bytes.status().failure(), base::Failure::Usage);
    db::Record layout = make("LAYOUT", dwg::Version::Ac1032);
    db::RecordEditor(layout).setInteger("tab_order", 70000);
    EXPECT_FALSE(dwg::encodeObject(layout, contextOf(dwg::Version::Ac1032)));
    EXPECT_FALSE(dwg::encodeObject(db::Record(), contextOf(dwg::Version::Ac1032)));
    db::Record unnumbered(*db::classNamed("SCALE"));
    EXPECT_FALSE(dwg::encodeObject(unnumbered, contextOf(dwg::Version::Ac1032)));
}

TEST(ObjectEdit, ExtendedDataAndXrecordsAreWrittenAndRead)
{
    for (const dwg::Version version : kAll) {
        SCOPED_TRACE(dwg::nameOf(version));
        db::Record xrecord = make("XRECORD", version);
        db::RecordEditor content = db::RecordEditor(xrecord).structure("content");
        db::ArrayEditor items = content.array("items");
        for (const int code : {1, 10, 40, 70, 90, 160, 290, 310, 330, 1000}) {
            db::RecordEditor item = items[items.add()];
            item.setInteger("code", code);
            switch (*db::xrecordItemKind(code)) {
            case db::ItemKind::Text: item.setText("text", u"sheet set"); break;
            case db::ItemKind::Point: item.setPoint("point", {1, 2, 3}); break;
            case db::ItemKind::Real: item.setReal("point", 0.5); break;
            case db::ItemKind::Handle: item.setHandle("handle", 0x1234); break;
            case db::ItemKind::Binary:
                item.setBytes("bytes", std::vector<std::uint8_t>(200, 7));
                break;
            case db::ItemKind::Wide: item.setInteger("integer", std::int64_t(-5) << 33); break;
            default: item.setInteger("integer", 17); break;
            }
        }
        db::RecordEditor group =
            db::RecordEditor(xrecord).array("eed")[db::RecordEditor(xrecord).array("eed").add()];
        group.setHandle("app", 0x12);
        group.array("items").add();
        group.array("items")[0].setInteger("code", 1071);
        group.array("items")[0].setInteger("integer", -3);
        const db::Record read = thereAndBack(xrecord, version);
        EXPECT_EQ(read.structure("content").array("items")[0].text("text"), u"sheet set");
        EXPECT_EQ(read.structure("content").array("items")[8].handle("handle"), 0x1234u);
        EXPECT_EQ(read.array("eed")[0].array("items")[0].integer("integer"), -3);
        EXPECT_EQ(encoded(read, version), encoded(xrecord, version));
    }
}

TEST(ObjectEdit, AnItemThatDoesNotFitItsFormIsNotWritten)
{
    const auto statusOf = [](int code, std::int64_t integer, std::size_t length) {
        db::Record line = make("LINE", dwg::Version::Ac1018);
        db::ArrayEditor groups = db::RecordEditor(line).array("eed");
        db::ArrayEditor items = groups[groups.add()].array("items");
        db::RecordEditor item = items[items.add()];
        item.setInteger("code", code);
        item.setInteger("integer", integer);
        item.setText("text", std::u16string(length, u'x'));
        return dwg::encodeObject(line, contextOf(dwg::Version::Ac1018)).status().failure();
    };
    EXPECT_EQ(statusOf(1070, 5, 0), base::Failure::None);
    EXPECT_EQ(statusOf(1070, 70000, 0), base::Failure::Usage);
    EXPECT_EQ(statusOf(1000, 0, 255), base::Failure::None);
    EXPECT_EQ(statusOf(1000, 0, 256), base::Failure::Usage);
    EXPECT_EQ(statusOf(70, 5, 0), base::Failure::Usage) << "a code of xrecords";
}

TEST(ObjectEdit, AnotherVersionTakesItsOwnForm)
{
    db::Record viewport = make("VIEWPORT", dwg::Version::Ac1015);
    db::RecordEditor edit(viewport);
    edit.setReal("view_height", 12.5);
    edit.setInteger("grid_major", 9);
    db::ArrayEditor frozen = edit.array("frozen");
    frozen.setHandle(frozen.add(), 0x55);
    const db::Record old = thereAndBack(viewport, dwg::Version::Ac1015);
    EXPECT_EQ(old.integer("grid_major"), 5) << "not stored in 2000";
    const db::Record converted = thereAndBack(old, dwg::Version::Ac1032);
    EXPECT_EQ(converted.real("view_height"), 12.5);
    EXPECT_EQ(converted.array("frozen").handle(0), 0x55u);
    EXPECT_EQ(converted.integer("grid_major"), 5);
}

TEST(ObjectEdit, RelativeReferencesFollowTheirTarget)
{
    // An owner just below the object's own handle, in the form that tells the distance.
    db::Record line = make("LINE", dwg::Version::Ac1032);
    const std::uint32_t slot = line.classDef()->layout().find(db::fieldId("owner"))->slot;
    line.words().data()[slot] = std::uint64_t(0xC) << 60 | 0x2E0;
    const auto relative = encoded(line, dwg::Version::Ac1032);
    EXPECT_EQ(decoded(relative, dwg::Version::Ac1032).handle("owner"), 0x2E0u);
    EXPECT_EQ(encoded(decoded(relative, dwg::Version::Ac1032), dwg::Version::Ac1032), relative);
    line.setHandle(0x10); // now the target lies above: no distance downwards leads there
    EXPECT_EQ(thereAndBack(line, dwg::Version::Ac1032).handle("owner"), 0x2E0u);
}

TEST(ObjectEdit, ANewHeaderIsWrittenAndReadInEveryVersion)
{
    const dwg::CodePage& page = dwg::CodePage::numbered(30);
    for (const dwg::Version version : kAll) {
        SCOPED_TRACE(dwg::nameOf(version));
        db::Record header(*db::classNamed("HEADER_VARIABLES"));
        header.setVersion(dwg::databaseVersion(version));
        db::RecordEditor(header).setHandle("HANDSEED", 0xABC);
        db::RecordEditor(header).setText("MENUNAME", u".");
        const auto bytes = dwg::encodeHeader(header, version, page);
        ASSERT_TRUE(bytes);
        const auto read = dwg::decodeHeader(version, *bytes, page);
        ASSERT_TRUE(read);
        EXPECT_EQ(read->handle("HANDSEED"), 0xABCu);
        EXPECT_EQ(read->text("MENUNAME"), u".");
        EXPECT_EQ(*dwg::encodeHeader(*read, version, page), *bytes);
    }
}

TEST(CodePage, LeadsThereAndBackOrKeepsTheBytes)
{
    const dwg::CodePage& western = dwg::CodePage::numbered(30);
    std::u16string text;
    const std::uint8_t simple[] = {'A', 0xE4, 0x80};
    EXPECT_TRUE(western.decode(simple, text));
    EXPECT_EQ(text, u"A\u00E4\u20AC");
    EXPECT_EQ(western.encode(text), "A\xE4\x80");

    const dwg::CodePage& japanese = dwg::CodePage::numbered(38);
    const std::uint8_t kanji[] = {0x93, 0xFA, 0x96, 0x7B, 'x'};
    EXPECT_TRUE(japanese.decode(kanji, text));
    EXPECT_EQ(text, u"\u65E5\u672Cx");
    const std::uint8_t broken[] = {'a', 0x93};
    EXPECT_FALSE(japanese.decode(broken, text));

    EXPECT_EQ(dwg::CodePage::numbered(9999).number(), 30);
}

TEST(CodePage, WhatIsReadIsReadAgainFromWhatIsWritten)
{
    for (int number = 0; number <= 44; ++number) {
        SCOPED_TRACE(number);
        const dwg::CodePage& page = dwg::CodePage::numbered(number);
        for (unsigned byte = 0; byte < 256; ++byte) {
            const auto stored = static_cast<std::uint8_t>(byte);
            std::u16string text, again;
            const bool leadsBack = page.decode({&stored, 1}, text);
            const std::string written = page.encode(text);
            const auto* bytes = reinterpret_cast<const std::uint8_t*>(written.data());
            EXPECT_EQ(leadsBack, written == std::string(1, static_cast<char>(byte))) << byte;
            if (page.unitOf(stored) != 0) {
                EXPECT_TRUE(leadsBack) << byte;
                EXPECT_EQ(text, std::u16string(1, page.unitOf(stored))) << byte;
            }
            page.decode({bytes, written.size()}, again);
            EXPECT_EQ(again, text) << byte;
        }
    }
}

// Some tables exchange control characters, or have another sign than the percent sign.
TEST(CodePage, AsciiIsAsciiInEveryPage)
{
    for (const int number : {11, 19, 30})
        for (const std::uint8_t byte : {0x1A, 0x1C, 0x25, 0x5C, 0x7F})
            EXPECT_EQ(dwg::CodePage::numbered(number).unitOf(byte), byte) << number;
}

TEST(CodePage, EscapesAreReadAsWhatTheyAreWrittenFrom)
{
    const auto isExact = [](int page, std::string_view stored, std::u16string_view read) {
        const auto* const bytes = reinterpret_cast<const std::uint8_t*>(stored.data());
        std::u16string text;
        const bool leadsBack = dwg::CodePage::numbered(page).decode({bytes, stored.size()}, text);
        EXPECT_EQ(text, read) << stored;
        return leadsBack;
    };
    constexpr int kAscii = 1, kWestern = 30, kGreek = 32, kJapanese = 38;
    EXPECT_TRUE(isExact(kWestern, "\\U+03A9mega", u"\u03A9mega"));
    EXPECT_TRUE(isExact(kWestern, "\\P\\U+2205\\U+220545", u"\\P\u2205\u220545"));
    EXPECT_TRUE(isExact(kWestern, "\\U+D83D\\U+DE00", u"\U0001F600"));
    EXPECT_TRUE(isExact(kJapanese, "\x93\xFA\\U+00E4", u"\u65E5\u00E4"));
    // Writing would not give these again.
    EXPECT_TRUE(isExact(kGreek, "\\U+03A9", u"\\U+03A9"));
    EXPECT_TRUE(isExact(kJapanese, "\\U+65E5", u"\\U+65E5"));
    for (const char* stored : {"\\U+03a9", "\\u+03A9", "\\U+00B0", "\\U+0041", "\\U+0000", "\\U+",
                               "\\U+03A", "\\M+18140"})
        EXPECT_TRUE(
            isExact(kWestern, stored, std::u16string(stored, stored + std::strlen(stored))));
    EXPECT_FALSE(isExact(kAscii, "\x81\\U+03A9", u"\uFFFD\u03A9")) << "0x81 means nothing";
}

TEST(CodePage, EscapesAreResolvedInEveryKindOfText)
{
    const std::u16string name = u"\u03A9mega";
    for (const dwg::Version version : {dwg::Version::Ac1015, dwg::Version::Ac1018}) {
        db::Record layout = make("LAYOUT", version);
        db::RecordEditor(layout).setText("name", name);
        EXPECT_EQ(thereAndBack(layout, version).text("name"), name);
        db::Record dictionary = make("DICTIONARY", version);
        db::ArrayEditor keys = db::RecordEditor(dictionary).array("keys");
        keys.setText(keys.add(), name);
        db::ArrayEditor values = db::RecordEditor(dictionary).array("values");
        values.setHandle(values.add(), 0x55);
        EXPECT_EQ(thereAndBack(dictionary, version).array("keys").text(0), name);
        db::Record xrecord = make("XRECORD", version);
        db::ArrayEditor items = db::RecordEditor(xrecord).structure("content").array("items");
        db::RecordEditor item = items[items.add()];
        item.setInteger("code", 1);
        item.setText("text", name);
        const db::Record back = thereAndBack(xrecord, version);
        EXPECT_EQ(back.structure("content").array("items")[0].text("text"), name);
        EXPECT_EQ(encoded(back, version), encoded(xrecord, version));

        const dwg::CodePage& page = dwg::CodePage::numbered(30);
        db::Record header(*db::classNamed("HEADER_VARIABLES"));
        header.setVersion(dwg::databaseVersion(version));
        db::RecordEditor(header).setText("MENUNAME", name);
        const auto bytes = dwg::encodeHeader(header, version, page);
        ASSERT_TRUE(bytes);
        EXPECT_EQ(dwg::decodeHeader(version, *bytes, page)->text("MENUNAME"), name);
    }
}

TEST(CodePage, TextThatDoesNotLeadBackKeepsItsBytes)
{
    const dwg::CodePage& japanese = dwg::CodePage::numbered(38);
    const dwg::ObjectContext context{dwg::Version::Ac1018, allClasses(), japanese};
    // Written as Western bytes, read as broken Japanese.
    db::Record text = make("TEXT", dwg::Version::Ac1018);
    db::RecordEditor(text).setText("text", u"\u00E4");
    const auto bytes = encoded(text, dwg::Version::Ac1018);
    const auto object = dwg::parseRecord(dwg::Version::Ac1018, bytes);
    ASSERT_TRUE(object);
    EXPECT_TRUE(dwg::reencodesExactly(*object, context));
    auto record = dwg::decodeObject(*object, context);
    ASSERT_TRUE(record);
    db::compact(*record);
    EXPECT_EQ(*dwg::encodeObject(*record, context), bytes);
    db::RecordEditor(*record).setText("text", u"\u65E5");
    const auto edited = dwg::encodeObject(*record, context);
    ASSERT_TRUE(edited);
    EXPECT_EQ(
        dwg::decodeObject(*dwg::parseRecord(dwg::Version::Ac1018, *edited), context)->text("text"),
        u"\u65E5");
}

namespace {

/// Which numbers of a class decide about other fields: a random one there makes another record.
std::set<std::uint32_t> decidingSlots(const db::StructDef& layout)
{
    std::set<std::uint32_t> slots;
    for (const db::FieldDef& field : layout.fields) {
        for (const db::Guard& guard : field.guards)
            slots.insert(guard.slot);
        if (const db::FieldDef* count = layout.find(field.count))
            slots.insert(count->slot);
    }
    return slots;
}

std::int64_t randomInteger(db::OpCode code)
{
    switch (code) {
    case db::OpCode::Bit: return *rc::gen::inRange<std::int64_t>(0, 2);
    case db::OpCode::Bit2: return *rc::gen::inRange<std::int64_t>(0, 4);
    case db::OpCode::RawChar: return *rc::gen::inRange<std::int64_t>(0, 256);
    case db::OpCode::RawShort:
    case db::OpCode::BitShort: return *rc::gen::arbitrary<std::int16_t>();
    default: return *rc::gen::arbitrary<std::int32_t>();
    }
}

void editField(db::RecordEditor& edit, const db::FieldDef& field)
{
    switch (field.storage) {
    case db::Storage::Real:
        edit.setPoint(field.id, {*rc::gen::arbitrary<double>(), *rc::gen::arbitrary<double>(), 1});
        return;
    case db::Storage::Handle:
        edit.setHandle(field.id, *rc::gen::inRange<std::uint64_t>(0, 1 << 30));
        return;
    case db::Storage::Text: {
        const auto text = *rc::gen::container<std::string>(rc::gen::inRange<char>(' ', '~'));
        edit.setText(field.id, std::u16string(text.begin(), text.end()));
        return;
    }
    default: return;
    }
}

// A few fields that this version stores without conditions, or whose condition can be brought
// about.
void editAtRandom(db::Record& record, dwg::Version version)
{
    const db::Program& program = record.classDef()->program(dwg::databaseVersion(version));
    const auto deciding = decidingSlots(record.classDef()->layout());
    db::RecordEditor edit(record);
    for (int i = 0; i < 6; ++i) {
        const auto at = *rc::gen::inRange<std::size_t>(0, program.ops.size());
        const db::FieldDef* field = program.info[at].field;
        if (!field || record.classDef()->layout().find(field->id) != field)
            continue;
        if (field->storage == db::Storage::Integer) {
            const bool named = db::fieldName(field->id).starts_with("n_") || field->wide ||
                               program.ops[at].code == db::OpCode::ZeroRun;
            if (!named && field->dxf > 0 && !deciding.contains(field->slot))
                edit.setInteger(field->id, randomInteger(program.ops[at].code));
        } else {
            editField(edit, *field);
        }
    }
}

} // namespace

RC_GTEST_PROP(ObjectEdit, RandomEditsAreWrittenAndRead, ())
{
    const auto version = *rc::gen::elementOf(std::vector(std::begin(kAll), std::end(kAll)));
    const db::ClassDef& classDef =
        **rc::gen::elementOf(std::vector(db::allClasses().begin(), db::allClasses().end()));
    RC_PRE(!isRaw(classDef));
    db::Record record = make(classDef, version);
    editAtRandom(record, version);
    const auto bytes = dwg::encodeObject(record, contextOf(version));
    RC_PRE(bool(bytes)); // a number that decides about others by more than a bit
    const auto object = dwg::parseRecord(version, *bytes);
    RC_ASSERT(bool(object));
    const auto read = dwg::decodeObject(*object, contextOf(version));
    RC_ASSERT(bool(read));
    const auto again = dwg::encodeObject(*read, contextOf(version));
    RC_ASSERT(bool(again));
    RC_ASSERT(*again == *bytes);
    RC_ASSERT(db::Record(*read) == *read);
}

RC_GTEST_PROP(ObjectEdit, ElementsAddedAndRemovedAreWrittenAndRead, ())
{
    const auto version = *rc::gen::elementOf(std::vector(std::begin(kAll), std::end(kAll)));
    db::Record dictionary = make("DICTIONARY", version);
    std::vector<std::pair<std::u16string, std::uint64_t>> model;
    for (const int step : *rc::gen::container<std::vector<int>>(rc::gen::inRange(0, 100))) {
        db::ArrayEditor keys = db::RecordEditor(dictionary).array("keys");
        const auto at = static_cast<std::uint32_t>(model.empty() ? 0 : step % model.size());
        if (step % 3 == 0 && !model.empty()) {
            keys.erase(at);
            model.erase(model.begin() + at);
            continue;
        }
        const std::u16string key(static_cast<std::size_t>(step % 7), u'k');
        keys.insert(at);
        keys.setText(at, key);
        db::RecordEditor(dictionary)
            .array("values")
            .setHandle(at, static_cast<std::uint64_t>(step));
        model.insert(model.begin() + at, {key, static_cast<std::uint64_t>(step)});
    }
    const db::Record read = thereAndBack(dictionary, version);
    RC_ASSERT(read == dictionary);
    RC_ASSERT(read.array("keys").size() == model.size());
    for (std::uint32_t i = 0; i < model.size(); ++i) {
        RC_ASSERT(read.array("keys").text(i) == model[i].first);
        RC_ASSERT(read.array("values").handle(i) == model[i].second);
    }
}
