#include "db/summary_record.h"

#include <algorithm>
#include <cmath>

#include "db/convert.h"
#include "db/record_editor.h"

namespace db {

namespace {

constexpr std::u16string_view kCookie = u"DWGPROPS COOKIE";
constexpr int kTextCode = 1, kFirstCustomCode = 300, kNumberCode = 90;
constexpr double kDayMs = 86'400'000;
constexpr std::size_t kLongestText = 0x1000; // so that escaped it is below the limit of an item

struct TextRow {
    int code;
    std::u16string SummaryInfo::*text;
};
constexpr TextRow kTexts[] = {
    {2, &SummaryInfo::title},          {3, &SummaryInfo::subject},  {4, &SummaryInfo::author},
    {6, &SummaryInfo::comments},       {7, &SummaryInfo::keywords}, {8, &SummaryInfo::lastSavedBy},
    {9, &SummaryInfo::revisionNumber},
};
struct TimeRow {
    int code;
    SummaryInfo::Time SummaryInfo::*time;
};
constexpr TimeRow kTimes[] = {
    {40, &SummaryInfo::editing}, {41, &SummaryInfo::created}, {42, &SummaryInfo::modified}};

SummaryInfo::Time timeOf(double days)
{
    constexpr double kMost = 4e9;
    if (!(days >= 0 && days < kMost))
        return {};
    double whole = std::floor(days);
    double milliseconds = std::round((days - whole) * kDayMs);
    if (milliseconds >= kDayMs) {
        milliseconds = 0;
        whole += 1;
    }
    return {static_cast<std::uint32_t>(whole), static_cast<std::uint32_t>(milliseconds)};
}

void takeItem(SummaryInfo& summary, int code, const RecordView& item, bool isFirst)
{
    for (const TextRow& row : kTexts)
        if (row.code == code)
            summary.*row.text = withoutEscapes(item.text("text"));
    for (const TimeRow& row : kTimes)
        if (row.code == code)
            summary.*row.time = timeOf(item.point("point").x);
    if (code == kTextCode && !isFirst)
        summary.hyperlinkBase = withoutEscapes(item.text("text"));
    const bool isCustom = code >= kFirstCustomCode &&
                          code < kFirstCustomCode + static_cast<int>(kMostCustomProperties);
    if (!isCustom)
        return;
    const std::u16string both = withoutEscapes(item.text("text"));
    const std::size_t equals = both.find(u'=');
    if (equals != std::u16string::npos && both.size() > 1)
        summary.custom.push_back({both.substr(0, equals), both.substr(equals + 1)});
}

bool fits(const SummaryInfo& summary)
{
    const auto isLong = [](const std::u16string& text) { return text.size() > kLongestText; };
    const auto isBad = [&](const SummaryInfo::Custom& custom) {
        return custom.name.find(u'=') != std::u16string::npos ||
               isLong(custom.name + u'=' + custom.value) ||
               (custom.name.empty() && custom.value.empty());
    };
    return summary.custom.size() <= kMostCustomProperties && !isLong(summary.hyperlinkBase) &&
           std::none_of(std::begin(kTexts), std::end(kTexts),
                        [&](const TextRow& row) { return isLong(summary.*row.text); }) &&
           std::none_of(summary.custom.begin(), summary.custom.end(), isBad);
}

class ItemAppender
{
public:
    explicit ItemAppender(Record& record)
        : m_items(RecordEditor(record).structure("content").array("items"))
    {
        m_items.resize(0);
    }
    void text(int code, std::u16string_view value) { add(code).setText("text", value); }
    void real(int code, double value) { add(code).setPoint("point", {value, 0, 0}); }
    void integer(int code, std::int64_t value) { add(code).setInteger("integer", value); }

private:
    RecordEditor add(int code)
    {
        RecordEditor item = m_items[m_items.add()];
        item.setInteger("code", code);
        return item;
    }

    ArrayEditor m_items;
};

double daysOf(const SummaryInfo::Time& time)
{
    return time.day + time.milliseconds / kDayMs;
}

bool sameLetters(std::u16string_view a, std::u16string_view b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char16_t x, char16_t y) {
        const auto upper = [](char16_t c) { return c >= u'a' && c <= u'z' ? c - 32 : c; };
        return upper(x) == upper(y);
    });
}

} // namespace

std::optional<SummaryInfo> summaryFromRecord(const Record& record)
{
    const ArrayView items = record.structure("content").array("items");
    if (items.isEmpty() || items[0].integer("code") != kTextCode ||
        items[0].text("text") != kCookie)
        return std::nullopt;
    SummaryInfo summary;
    for (std::uint32_t i = 0; i < items.size(); ++i)
        takeItem(summary, static_cast<int>(items[i].integer("code")), items[i], i == 0);
    return summary;
}

Record newSummaryRecord(std::uint64_t dictionary, std::uint64_t handle, Version version)
{
    const ClassDef& classDef = *classNamed("XRECORD");
    Record record(classDef);
    record.setHandle(handle);
    record.setTypeNumber(classDef.typeNumber());
    record.setVersion(version);
    RecordEditor edit(record);
    edit.setHandle("owner", dictionary);
    ArrayEditor reactors = edit.array("reactors");
    reactors.setHandle(reactors.add(), dictionary);
    return record;
}

bool putSummary(Record& record, const SummaryInfo& summary)
{
    if (!fits(summary))
        return false;
    RecordEditor(record).structure("content").setBytes("data", {});
    ItemAppender items(record);
    items.text(kTextCode, kCookie);
    for (const TextRow& row : kTexts)
        items.text(row.code, summary.*row.text);
    for (std::size_t i = 0; i < kMostCustomProperties; ++i) {
        const bool isUsed = i < summary.custom.size();
        items.text(kFirstCustomCode + static_cast<int>(i),
                   isUsed ? summary.custom[i].name + u'=' + summary.custom[i].value : u"=");
    }
    for (const TimeRow& row : kTimes)
        items.real(row.code, daysOf(summary.*row.time));
    items.text(kTextCode, summary.hyperlinkBase);
    items.integer(kNumberCode, 0);
    return true;
}

std::uint64_t entryOf(const Record& dictionary, std::u16string_view key)
{
    const ArrayView keys = dictionary.array("keys"), values = dictionary.array("values");
    for (std::uint32_t i = 0; i < keys.size(); ++i)
        if (sameLetters(keys.text(i), key))
            return values.handle(i);
    return 0;
}

void addEntry(Record& dictionary, std::u16string_view key, std::uint64_t object)
{
    RecordEditor edit(dictionary);
    ArrayEditor keys = edit.array("keys");
    std::uint32_t at = 0;
    while (at < keys.size() && keys.text(at) < key)
        ++at;
    keys.insert(at);
    keys.setText(at, key);
    edit.array("values").setHandle(at, object);
}

void removeEntry(Record& dictionary, std::uint64_t object)
{
    ArrayEditor values = RecordEditor(dictionary).array("values");
    for (std::uint32_t i = values.size(); i-- > 0;)
        if (values.handle(i) == object)
            values.erase(i);
}

} // namespace db
