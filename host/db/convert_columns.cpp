// Columns of a text: from 2018 on they stand in it, before that in its extended data, as pairs of
// a number that tells what follows, and that.

#include "convert_data.h"
#include "db/group_items.h"
#include "db/mtext_columns.h"

namespace db {

namespace {

constexpr std::u16string_view kBegin = u"ACAD_MTEXT_COLUMN_INFO_BEGIN",
                              kEnd = u"ACAD_MTEXT_COLUMN_INFO_END";
constexpr int kTextCode = 1000, kRealCode = 1040, kShortCode = 1070;
constexpr int kType = 75, kAutoHeight = 79, kCount = 76, kReversed = 78, kWidth = 48, kGutter = 49,
              kHeights = 50;
constexpr std::int64_t kDataVersion = 4, kDynamic = 2;

using Columns = MTextColumns;

// The list of columns in the items of one application, from its begin to its end.
struct Found {
    Columns columns;
    std::uint32_t application = 0, begin = 0, end = 0;
    bool isFound = false;
};

void takePair(Columns& columns, std::int64_t what, const RecordView& value)
{
    const std::int64_t integer = value.integer("integer");
    const double real = value.point("point").x;
    switch (what) {
    case kType: columns.type = integer; break;
    case kAutoHeight: columns.hasAutoHeight = integer != 0; break;
    case kCount: columns.count = integer; break;
    case kReversed: columns.isReversed = integer != 0; break;
    case kWidth: columns.width = real; break;
    case kGutter: columns.gutter = real; break;
    default: break;
    }
}

bool isText(const RecordView& item, std::u16string_view text)
{
    return item.integer("code") == kTextCode && item.text("text") == text;
}

bool readList(const ArrayView& items, Found& found)
{
    std::uint32_t at = found.begin + 1;
    while (at < items.size() && !isText(items[at], kEnd)) {
        if (items[at].integer("code") != kShortCode || at + 1 >= items.size())
            return false;
        const std::int64_t what = items[at].integer("integer");
        takePair(found.columns, what, items[at + 1]);
        const std::int64_t heights = what == kHeights ? items[at + 1].integer("integer") : 0;
        at += 2;
        for (std::int64_t i = 0; i < heights; ++i, ++at) {
            if (at >= items.size() || items[at].integer("code") != kRealCode)
                return false;
            found.columns.heights.push_back(items[at].point("point").x);
        }
    }
    found.end = at;
    return at < items.size();
}

Found findColumns(const Record& mtext)
{
    const ArrayView applications = mtext.array("eed");
    for (std::uint32_t i = 0; i < applications.size(); ++i) {
        const ArrayView items = applications[i].array("items");
        for (std::uint32_t k = 0; k < items.size(); ++k) {
            if (!isText(items[k], kBegin))
                continue;
            Found found;
            found.application = i;
            found.begin = k;
            found.isFound = readList(items, found);
            return found;
        }
    }
    return {};
}

void removeList(Record& mtext, const Found& found)
{
    ArrayEditor applications = RecordEditor(mtext).array("eed");
    ArrayEditor items = applications[found.application].array("items");
    for (std::uint32_t i = found.begin; i <= found.end; ++i)
        items.erase(found.begin);
    if (items.size() == 0)
        applications.erase(found.application);
}

void putInside(Record& mtext, const Columns& columns)
{
    RecordEditor edit(mtext);
    edit.setFlag("not_annotative", true);
    edit.setInteger("version", kDataVersion);
    edit.setFlag("default_flag", true);
    edit.setInteger("attachment2", mtext.integer("attachment"));
    edit.setPoint("x_dir2", mtext.point("x_dir"));
    edit.setPoint("ins_pt2", mtext.point("ins_pt"));
    for (const char* size : {"rect_width", "rect_height", "ext_width", "ext_height"})
        edit.setReal(FieldKey(std::string(size) + "2"), mtext.real(size));
    edit.setInteger("columns", columns.type);
    edit.setReal("col_width", columns.width);
    edit.setReal("gutter", columns.gutter);
    edit.setFlag("auto_height", columns.hasAutoHeight);
    edit.setFlag("reversed", columns.isReversed);
    const bool hasHeights = columns.type == kDynamic && !columns.hasAutoHeight;
    ArrayEditor heights = edit.array("heights");
    heights.resize(hasHeights ? static_cast<std::uint32_t>(columns.heights.size()) : 0);
    for (std::uint32_t i = 0; i < heights.size(); ++i)
        heights.setReal(i, columns.heights[i]);
    edit.setInteger("n_heights",
                    hasHeights ? static_cast<std::int64_t>(columns.heights.size()) : columns.count);
}

class ListWriter
{
public:
    explicit ListWriter(ArrayEditor items) : m_items(items) {}
    void text(std::u16string_view value) { add(kTextCode).setText("text", value); }
    void real(double value) { add(kRealCode).setPoint("point", {value, 0, 0}); }
    void integer(std::int64_t value) { add(kShortCode).setInteger("integer", value); }

private:
    RecordEditor add(int code)
    {
        RecordEditor item = m_items[m_items.add()];
        item.setInteger("code", code);
        return item;
    }
    ArrayEditor m_items;
};

// Behind what the application has there already.
void putOutside(Record& mtext, std::uint64_t application)
{
    RecordEditor edit(mtext);
    ArrayEditor applications = edit.array("eed");
    std::uint32_t at = 0;
    while (at < applications.size() && applications[at].handle("app") != application)
        ++at;
    if (at == applications.size()) {
        applications.add();
        applications[at].setHandle("app", application);
    }
    ListWriter list(applications[at].array("items"));
    list.text(kBegin);
    for (const auto& [what, field] :
         {std::pair(kType, "columns"), std::pair(kAutoHeight, "auto_height"),
          std::pair(kCount, "n_heights"), std::pair(kReversed, "reversed")}) {
        list.integer(what);
        list.integer(mtext.integer(field));
    }
    for (const auto& [what, field] :
         {std::pair(kWidth, "col_width"), std::pair(kGutter, "gutter")}) {
        list.integer(what);
        list.real(mtext.real(field));
    }
    const std::uint32_t heights = mtext.array("heights").size();
    if (heights > 0) {
        list.integer(kHeights);
        list.integer(heights);
        for (std::uint32_t i = 0; i < heights; ++i)
            list.real(mtext.array("heights").real(i));
    }
    list.text(kEnd);
}

} // namespace

MTextColumns mtextColumns(const RecordView& fields)
{
    MTextColumns columns;
    columns.type = fields.integer("columns");
    columns.count = fields.integer("n_heights");
    columns.hasAutoHeight = fields.flag("auto_height");
    columns.isReversed = fields.flag("reversed");
    columns.width = fields.real("col_width");
    columns.gutter = fields.real("gutter");
    const ArrayView heights = fields.array("heights");
    for (std::uint32_t i = 0; i < heights.size(); ++i)
        columns.heights.push_back(heights.real(i));
    return columns;
}

MTextColumns mtextColumns(const Record& mtext)
{
    if (mtext.integer("columns") != 0)
        return mtextColumns(mtext.fields());
    const Found found = findColumns(mtext);
    return found.isFound ? found.columns : MTextColumns();
}

void convertColumns(Record& mtext, const Step& step, std::uint64_t acadApplication)
{
    if (step.reaches(Version::Ac1032)) {
        const Found found = findColumns(mtext);
        putInside(mtext, found.isFound ? found.columns : Columns());
        if (found.isFound)
            removeList(mtext, found);
    } else if (step.leaves(Version::Ac1032) && mtext.integer("columns") != 0 &&
               acadApplication != 0) {
        putOutside(mtext, acadApplication);
    }
}

} // namespace db
