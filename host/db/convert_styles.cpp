// Styles that have one form up to 2007 and another from 2010 on.

#include "convert_data.h"

namespace db {

namespace {

// A cell style of the later form. The rows of the earlier one are data, title and header.
struct RowKind {
    std::uint32_t row; ///< in the earlier form
    std::int64_t id, styleClass, merge;
    std::u16string_view name;
};
constexpr RowKind kRowKinds[] = {
    {1, 1, 1, 0x8000, u"_TITLE"}, {2, 2, 1, 0, u"_HEADER"}, {0, 3, 2, 0, u"_DATA"}};
constexpr std::uint32_t kBorders = 6;
constexpr double kBorderSpacing = 0.045, kCellSpacing = 3; // the latter times the margin
constexpr std::int64_t kCellType = 5, kTableId = 4, kTableClass = 2, kLaterForm = 101;
constexpr std::int32_t kNoColor = static_cast<std::int32_t>(0xC8000000);

void copyColor(RecordEditor to, const RecordView& from)
{
    for (const char* field : {"index", "value", "flags"})
        to.setInteger(field, from.integer(field));
    to.setText("name", std::u16string(from.text("name")));
    to.setText("book", std::u16string(from.text("book")));
}

void setMargins(RecordEditor style, double horizontal, double vertical)
{
    style.setInteger("margin_flags", 1);
    style.setReal("margin_vert", vertical);
    style.setReal("margin_horiz", horizontal);
    style.setReal("margin_bottom", vertical);
    style.setReal("margin_right", horizontal);
    style.setReal("spacing_h", horizontal * kCellSpacing);
    style.setReal("spacing_v", vertical * kCellSpacing);
}

void fillStyle(RecordEditor style, double horizontal, double vertical)
{
    style.setInteger("type", kCellType);
    style.setInteger("has_data", 1);
    style.structure("bg_color").setInteger("value", kNoColor);
    style.setInteger("layout", 1);
    setMargins(style, horizontal, vertical);
}

// @p record is both the earlier and, by and by, the later form: its fields for all versions stand
// side by side. Editors end whenever an array grows, so each is fetched anew.
class TableStyleUp
{
public:
    explicit TableStyleUp(Record& record) : m_record(record) {}

    void run()
    {
        RecordEditor edit(m_record);
        edit.setInteger("bl2", kLaterForm);
        fillStyle(edit.structure("table_style").structure("style"), horizontal(), vertical());
        RecordEditor format = edit.structure("table_style").structure("style").structure("fmt");
        format.setInteger("data_type", 0x200);
        format.setReal("block_scale", 1);
        format.setInteger("alignment", 1);
        format.structure("color").setInteger("value", static_cast<std::int32_t>(0xC1000000));
        format.setReal("text_height", 0.18);
        edit.structure("table_style").setInteger("id", kTableId);
        edit.structure("table_style").setInteger("cls", kTableClass);
        edit.structure("table_style").setText("name", u"Table");
        edit.array("styles").resize(std::size(kRowKinds));
        for (std::uint32_t i = 0; i < std::size(kRowKinds); ++i)
            fill(i, kRowKinds[i]);
    }

private:
    double horizontal() const { return m_record.real("margin_h"); }
    double vertical() const { return m_record.real("margin_v"); }
    RecordView row(const RowKind& kind) const { return m_record.array("rows")[kind.row]; }
    RecordEditor named(std::uint32_t i)
    {
        return RecordEditor(m_record).array("styles")[i].structure("style");
    }
    RecordEditor style(std::uint32_t i) { return named(i).structure("style"); }

    void fill(std::uint32_t i, const RowKind& kind)
    {
        RecordEditor(m_record).array("styles")[i].setInteger("key", kind.id);
        named(i).setInteger("id", kind.id);
        named(i).setInteger("cls", kind.styleClass);
        named(i).setText("name", kind.name);
        fillStyle(style(i), horizontal(), vertical());
        style(i).setInteger("merge_flags", kind.merge);
        if (row(kind).flag("fill_on"))
            copyColor(style(i).structure("bg_color"), row(kind).structure("fill_color"));
        RecordEditor format = style(i).structure("fmt");
        const std::int64_t dataType = row(kind).integer("data_type");
        format.setInteger("data_type", dataType != 0 ? dataType : 0x200);
        format.setInteger("unit_type", row(kind).integer("unit_type"));
        format.setText("format", std::u16string(row(kind).text("format")));
        format = style(i).structure("fmt");
        format.setReal("block_scale", 1);
        format.setInteger("alignment", row(kind).integer("alignment"));
        format.setHandle("text_style", row(kind).handle("text_style"));
        format.setReal("text_height", row(kind).real("text_height"));
        copyColor(style(i).structure("fmt").structure("color"), row(kind).structure("text_color"));
        style(i).array("borders").resize(kBorders);
        for (std::uint32_t edge = 0; edge < kBorders; ++edge)
            fillBorder(style(i).array("borders")[edge], row(kind).array("borders")[edge], edge);
    }

    static void fillBorder(RecordEditor border, const RecordView& from, std::uint32_t edge)
    {
        border.setInteger("b_type", 1);
        border.setInteger("b_lineweight", from.integer("b_lineweight"));
        border.setInteger("b_invisible", from.flag("b_visible") ? 0 : 1);
        border.setReal("b_spacing", kBorderSpacing);
        copyColor(border.structure("b_color"), from.structure("b_color"));
        // Last, since the others see to it that there is an edge at all.
        border.setInteger("edge", std::int64_t(1) << edge);
    }

    Record& m_record;
};

class TableStyleDown
{
public:
    explicit TableStyleDown(Record& record) : m_record(record) {}

    void run()
    {
        RecordEditor edit(m_record);
        const RecordView table = m_record.structure("table_style").structure("style");
        edit.setReal("margin_h", table.real("margin_horiz"));
        edit.setReal("margin_v", table.real("margin_vert"));
        edit.setHandle("cellstyle_map", 0);
        if (m_record.array("rows").size() == 0)
            fillFixedArrays(m_record, m_record.classDef()->layout(), 0);
        const std::uint32_t count = m_record.array("styles").size();
        for (std::uint32_t i = 0; i < count; ++i)
            for (const RowKind& kind : kRowKinds)
                if (m_record.array("styles")[i].integer("key") == kind.id)
                    fill(kind.row, i);
    }

private:
    RecordView style(std::uint32_t i) const
    {
        return m_record.array("styles")[i].structure("style").structure("style");
    }
    RecordEditor row(std::uint32_t at) { return RecordEditor(m_record).array("rows")[at]; }

    void fill(std::uint32_t at, std::uint32_t i)
    {
        const auto format = [&] { return style(i).structure("fmt"); };
        row(at).setHandle("text_style", format().handle("text_style"));
        row(at).setReal("text_height", format().real("text_height"));
        row(at).setInteger("alignment", format().integer("alignment"));
        copyColor(row(at).structure("text_color"), format().structure("color"));
        const bool isFilled = style(i).structure("bg_color").integer("value") != kNoColor;
        row(at).setFlag("fill_on", isFilled);
        if (isFilled)
            copyColor(row(at).structure("fill_color"), style(i).structure("bg_color"));
        row(at).setInteger("data_type", format().integer("data_type"));
        row(at).setInteger("unit_type", format().integer("unit_type"));
        row(at).setText("format", std::u16string(format().text("format")));
        const std::uint32_t borders = style(i).array("borders").size();
        for (std::uint32_t k = 0; k < borders; ++k)
            for (std::uint32_t edge = 0; edge < kBorders; ++edge)
                if (style(i).array("borders")[k].integer("edge") == std::int64_t(1) << edge)
                    fillBorder(row(at).array("borders")[edge], style(i).array("borders")[k]);
    }

    static void fillBorder(RecordEditor border, const RecordView& from)
    {
        border.setInteger("b_lineweight", from.integer("b_lineweight"));
        border.setFlag("b_visible", from.integer("b_invisible") == 0);
        copyColor(border.structure("b_color"), from.structure("b_color"));
    }

    Record& m_record;
};

// From 2010 on each property of a visual style tells how it is overridden.
constexpr std::int64_t kPlain = 1;
constexpr int kPropertyCount = 28; // i1 to i28

void reachProperties(Record& record)
{
    RecordEditor edit(record);
    edit.setInteger("ext_model", 2);
    for (int i = 1; i <= kPropertyCount; ++i)
        edit.setInteger(FieldKey("i" + std::to_string(i)), kPlain);
    edit.setReal("brightness", static_cast<double>(record.integer("brightness_level")));
}

// The properties that 2013 added, as every style of it has them.
struct AddedProperty {
    std::string_view name, mark;
    std::int64_t value, markValue;
};
constexpr AddedProperty kIntegers[] = {
    {"p25", "j25", 50, 1}, {"p28", "j28", 0, 1},  {"p2a", "j2a", 50, 1}, {"p2b", "j2b", 3, 1},
    {"p2d", "j2d", 0, 1},  {"p2e", "j2e", 50, 1}, {"p2f", "j2f", 50, 1}, {"p30", "j30", 50, 1},
    {"p31", "j31", 0, 1},  {"p32", "j32", 50, 1}, {"p35", "j35", 2, 1},  {"p37", "j37", 0, 1},
};
constexpr AddedProperty kReals[] = {{"p26", "j26", 0, 1},
                                    {"p27", "j27", 1, 1},
                                    {"p34", "j34", 1, 0},
                                    {"p38", "j38", 1, 1},
                                    {"p39", "j39", 1, 1}};
struct AddedColor {
    std::string_view name, mark;
    std::uint32_t value;
    std::int64_t markValue;
};
constexpr AddedColor kColors[] = {
    {"p29", "j29", 0xC2000000, 1}, {"p2c", "j2c", 0xC20000FF, 1}, {"p33", "j33", 0xC8000000, 0}};
constexpr std::uint32_t kSwitches = 9;

void reachAdded(Record& record)
{
    RecordEditor edit(record);
    if (record.array("extra").size() == 0)
        fillFixedArrays(record, record.classDef()->layout(), 0);
    ArrayEditor switches = edit.array("extra");
    for (std::uint32_t i = 0; i < kSwitches && i < switches.size(); ++i) {
        switches[i].setFlag("p_b", i == 1 || i == 2);
        switches[i].setInteger("p_i", kPlain);
    }
    for (const AddedProperty& added : kIntegers) {
        edit.setInteger(FieldKey(added.name), added.value);
        edit.setInteger(FieldKey(added.mark), added.markValue);
    }
    for (const AddedProperty& added : kReals) {
        edit.setReal(FieldKey(added.name), static_cast<double>(added.value));
        edit.setInteger(FieldKey(added.mark), added.markValue);
    }
    for (const AddedColor& added : kColors) {
        edit.structure(FieldKey(added.name))
            .setInteger("value", static_cast<std::int32_t>(added.value));
        edit.setInteger(FieldKey(added.mark), added.markValue);
    }
    edit.setText("strokes", u"strokes_ogs.tif");
    edit.setInteger("j36", kPlain);
}

} // namespace

void convertTableStyle(Record& record, const Step& step)
{
    if (step.reaches(Version::Ac1024))
        TableStyleUp(record).run();
    else if (step.leaves(Version::Ac1024))
        TableStyleDown(record).run();
}

void convertVisualStyle(Record& record, const Step& step)
{
    if (step.reaches(Version::Ac1024))
        reachProperties(record);
    if (step.reaches(Version::Ac1027))
        reachAdded(record);
    if (step.leaves(Version::Ac1024))
        RecordEditor(record).setInteger("brightness_level",
                                        static_cast<std::int64_t>(record.real("brightness")));
}

} // namespace db
