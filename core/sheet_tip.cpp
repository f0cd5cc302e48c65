#include <core/sheet_tip.h>

#include <cmath>

#include <base/path_rules.h>
#include <db/local_time.h>
#include <resources/texts.h>
#include <sm/kv_db_util.h>

namespace core {

namespace {

// clang-format off
constexpr int kMoved = 547, kExpectedIn = 548, kFoundIn = 549, kSheets = 550, kStatus = 551, kAvailable = 552,
    kMissing = 553, kInUseBy = 554, kSheet = 555, kDescription = 556, kFile = 557, kFolder = 558, kSize = 559,
    kUser = 560, kSaved = 561, kSavedBy = 562, kPaper = 563, kFirstSetText = 564, kLookedFor = 8930;
// clang-format on

TvString textOf(int number)
{
    return TvString(text::find(number));
}

/// Those of the properties that are texts and have one of @p flags, each on a line of its own.
TvString propertyLines(const TvSmComponent& component, int flags)
{
    TvString lines;
    for (const sm::Property& property : sm::propertiesOf(component.getCustomProperties())) {
        TvVariant value;
        TvString shown;
        property.value->getValue(value);
        if ((property.value->getFlags() & flags) && value.getString(shown))
            lines += TvString(u"\n") + property.name + u": " + shown;
    }
    return lines;
}

TvString setDetails(const TvSmSheetSet& set)
{
    using Value = TvSmCustomPropertyValue;
    TvString details = propertyLines(set, Value::kSheetSetProperty | Value::kSheetProperty);
    if (!details.isEmpty())
        details += u"\n";
    TvString texts[4];
    set.getSheetSetText1(texts[0]);
    set.getSheetSetText2(texts[1]);
    set.getSheetSetText3(texts[2]);
    set.getSheetSetText4(texts[3]);
    for (int i = 0; i < 4; ++i)
        if (!texts[i].isEmpty())
            details += textOf(kFirstSetText + i) + texts[i];
    return details;
}

bool isRelocated(const DrawingFacts& facts)
{
    return !facts.isThere && facts.isFile;
}

bool exists(const DrawingFacts& facts)
{
    return facts.isThere || facts.isFile;
}

TvString statusOf(const DrawingFacts& facts)
{
    if (!exists(facts))
        return textOf(kMissing);
    if (!facts.isInUse)
        return textOf(kAvailable);
    if (!facts.isUserKnown)
        return textOf(kInUseBy);
    return TvString().format(textOf(kInUseBy), facts.user + u" " + facts.machine);
}

TvString placeLines(const TvString& path, const TvString& expected)
{
    const base::PathRules& rules = base::PathRules::native();
    const TvString gap = u"  ";
    const bool isMoved = !expected.isEmpty();
    TvString lines = textOf(kFile) + rules.fileNameOf(path) + gap;
    lines += textOf(isMoved ? kFoundIn : kFolder) + rules.folderOf(path) + gap;
    if (isMoved)
        lines += textOf(kExpectedIn) + rules.folderOf(expected) + gap;
    return lines;
}

/// What is known of a drawing that is there.
TvString fileLines(const DrawingFacts& facts, const TvString& savedBy, const TvString& paper)
{
    TvString lines = textOf(kSize) + roundedFileSize(facts.size) + u" (" +
                     withThousands(facts.size) + u" bytes) ";
    if (facts.isInUse)
        lines += textOf(kUser) + facts.user;
    lines += textOf(kSaved) + fileTimeText(facts.modificationTime);
    return lines + textOf(kSavedBy) + savedBy + textOf(kPaper) + paper;
}

TvString sheetDetails(const TvSmSheet& sheet, const DrawingFacts* facts, const DrawingInfo* info)
{
    const TvSmTvDbLayoutReference& reference = *sheet.getLayoutReference();
    const bool isMoved = facts && isRelocated(*facts);
    TvString details = textOf(kStatus) + (isMoved ? textOf(kMoved) : TvString());
    details += facts ? statusOf(*facts) : textOf(kLookedFor);
    details += textOf(kSheet) + sheetLabel(sheet) + textOf(kDescription) + sheet.getDesc();
    const TvString stored = reference.getFileName();
    details += placeLines(isMoved ? facts->resolved : stored, isMoved ? stored : TvString());
    if (facts && exists(*facts))
        details += fileLines(*facts, info ? info->GetLastSavedBy() : TvString(),
                             info ? info->GetPaperSize(reference.getHandle()) : TvString());
    return details + u"\n" + propertyLines(sheet, TvSmCustomPropertyValue::kSheetProperty);
}

void fillSheetTip(const TvSmSheet& sheet, TipStyle style, DrawingFacts* facts,
                  DrawingInfoCache& drawings, Tip& tip)
{
    tip.text = sheetLabel(sheet);
    const TvSmTvDbLayoutReference* reference = sheet.getLayoutReference();
    if (!reference)
        return;
    tip.preview = nullptr;
    if (style.mode == TipStyle::Name)
        return; // nothing of the drawing is shown
    const DrawingInfo* info = facts && exists(*facts) ? drawings.Take(*facts) : nullptr;
    if (info && style.showsPreview())
        tip.preview = info->GetThumbnail(reference->getHandle());
    if (tip.preview) {
        tip.text += previewRoom(style.size).padding;
        if (style.mode == TipStyle::NameAndPreview)
            tip.text += u"1"; // line feeds at the end would not count
    }
    if (style.showsDetails())
        tip.text += sheetDetails(sheet, facts, info);
}

} // namespace

TvString sheetLabel(const TvSmSheet& sheet)
{
    const TvString number = sheet.getNumber();
    return number.isEmpty() ? sheet.getTitle() : number + u" - " + sheet.getTitle();
}

std::optional<DrawingLook::Question> tipQuestion(const TvSmDatabase* database,
                                                 const TvString& handle, TipStyle style,
                                                 const DrawingInfoCache& drawings)
{
    const auto* sheet = database ? tvrxCast<TvSmSheet>(database->findObject(handle)) : nullptr;
    const auto* reference = sheet ? sheet->getLayoutReference() : nullptr;
    if (!reference || style.mode == TipStyle::Name)
        return std::nullopt;
    return DrawingLook::questionAbout(*reference, DrawingLook::Depth::Content, &drawings);
}

void fillTip(const TvSmDatabase* database, const TvString& handle, TipStyle style,
             DrawingInfoCache& drawings, Tip& tip)
{
    const auto question = tipQuestion(database, handle, style, drawings);
    std::optional<DrawingFacts> facts;
    if (question)
        facts = DrawingLook::answer(*question);
    fillTip(database, handle, style, facts ? &*facts : nullptr, drawings, tip);
}

void fillTip(const TvSmDatabase* database, const TvString& handle, TipStyle style,
             DrawingFacts* facts, DrawingInfoCache& drawings, Tip& tip)
{
    tip.text.setEmpty();
    const TvSmPersist* object = database ? database->findObject(handle) : nullptr;
    if (!object) {
        tip.preview = nullptr;
        return;
    }
    const TvRxClass* kind = object->isA();
    if (kind == TvSmSheet::desc())
        return fillSheetTip(*tvrxCast<TvSmSheet>(object), style, facts, drawings, tip);
    tip.preview = nullptr;
    if (kind == TvSmSheetSet::desc()) {
        const auto* set = tvrxCast<TvSmSheetSet>(object);
        tip.text = set->getName() + (style.showsDetails() ? setDetails(*set) : TvString());
    } else if (kind == TvSmSubset::desc()) {
        const auto* subset = tvrxCast<TvSmSubset>(object);
        tip.text = subset->getName();
        if (style.showsDetails())
            tip.text +=
                textOf(kSheets) + TvString().format(u"%d", KvDbUtil::GetSheetNumsInSubSet(subset));
    }
}

TipParts tipParts(const Tip& tip, TipStyle style)
{
    const int end = tip.text.find(u'\n');
    if (style.mode == TipStyle::Name || (style.mode == TipStyle::NameAndPreview && !tip.preview))
        return {tip.text, {}, false};
    if (end == TvString::npos)
        return {tip.text, {}, true};
    TipParts parts{tip.text.left(end), tip.text.substr(end + 1), true};
    if (!style.showsDetails())
        parts.rest.setEmpty();
    else if (tip.preview)
        parts.rest = parts.rest.substr(previewRoom(style.size).digits);
    return parts;
}

TvString withThousands(std::int64_t number)
{
    const TvString plain = TvString().format(u"%lld", number);
    const int length = plain.length(), first = number < 0 ? 1 : 0;
    TvString grouped = plain.left(first);
    for (int i = first; i < length; ++i) {
        if (i > first && (length - i) % 3 == 0)
            grouped += u',';
        grouped += plain.at(i);
    }
    return grouped;
}

TvString roundedFileSize(std::int64_t bytes)
{
    constexpr double kPart = 0.0009765625; // 1 / 1024
    const double kilobytes = static_cast<double>(bytes) * kPart;
    if (kilobytes >= 1024.0)
        return TvString().format(u"%lldMB", std::llround(kilobytes * kPart));
    return TvString().format(u"%lldKB", std::llround(kilobytes));
}

TvString fileTimeText(std::uint64_t fileTime)
{
    return db::localFromUtc(TvDbDate::fromFileTime(fileTime)).text();
}

} // namespace core
