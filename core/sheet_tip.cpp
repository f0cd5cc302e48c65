#include <core/sheet_tip.h>

#include <cmath>

#include <base/kv_file_system.h>
#include <base/path_rules.h>
#include <db/file_open_info_tip_manager.h>
#include <db/local_time.h>
#include <resources/texts.h>
#include <sm/kv_db_util.h>

namespace core {

namespace {

constexpr int kTries = 6, kDelayMs = 500;

// clang-format off
constexpr int kMoved = 547, kExpectedIn = 548, kFoundIn = 549, kSheets = 550, kStatus = 551, kAvailable = 552,
    kMissing = 553, kInUseBy = 554, kSheet = 555, kDescription = 556, kFile = 557, kFolder = 558, kSize = 559,
    kUser = 560, kSaved = 561, kSavedBy = 562, kPaper = 563, kFirstSetText = 564;
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

/// Where a sheet's drawing is, and who has it.
struct DrawingPlace {
    TvString path;
    TvString expected; ///< where it should be; set when it is elsewhere
    bool exists = false;
    bool isInUse = false;
    bool isRelocated = false;
    TvString user, machine; ///< of whoever has it
    bool isUserKnown = false;
};

DrawingPlace placeOf(const TvSmTvDbLayoutReference& reference)
{
    DrawingPlace place;
    place.path = reference.getFileName();
    place.exists = KvFileSystem::isFileExisting(place.path, kTries, kDelayMs);
    place.isInUse = CFileOpenInfoTipManager::IsInfoFileExists(place.path);
    if (place.isInUse)
        place.isUserKnown =
            CFileOpenInfoTipManager::GetInfoFromHideFile(place.path, place.user, place.machine);
    if (place.exists)
        return place;
    const TvString resolved = reference.resolveFileName();
    if (!resolved.isEmpty() && KvFileSystem::isFileExisting(resolved, kTries, kDelayMs)) {
        place.expected = std::exchange(place.path, resolved);
        place.exists = place.isRelocated = true;
    }
    return place;
}

TvString statusOf(const DrawingPlace& place)
{
    if (!place.exists)
        return textOf(kMissing);
    if (!place.isInUse)
        return textOf(kAvailable);
    if (!place.isUserKnown)
        return textOf(kInUseBy);
    return TvString().format(textOf(kInUseBy), place.user + u" " + place.machine);
}

TvString placeLines(const DrawingPlace& place)
{
    const base::PathRules& rules = base::PathRules::native();
    const TvString gap = u"  ";
    TvString lines = textOf(kFile) + rules.fileNameOf(place.path) + gap;
    lines += textOf(place.isRelocated ? kFoundIn : kFolder) + rules.folderOf(place.path) + gap;
    if (place.isRelocated)
        lines += textOf(kExpectedIn) + rules.folderOf(place.expected) + gap;
    return lines;
}

/// What is known of a drawing that is there.
TvString fileLines(const DrawingPlace& place, const TvString& savedBy, const TvString& paper)
{
    const std::int64_t bytes = KvFileSystem::getFileSize(place.path);
    TvString lines =
        textOf(kSize) + roundedFileSize(bytes) + u" (" + withThousands(bytes) + u" bytes) ";
    if (place.isInUse)
        lines += textOf(kUser) + place.user;
    lines += textOf(kSaved) + fileTimeText(KvFileSystem::getModificationTime(place.path));
    return lines + textOf(kSavedBy) + savedBy + textOf(kPaper) + paper;
}

void fillSheetTip(const TvSmSheet& sheet, TipStyle style, DrawingInfoCache& drawings, Tip& tip)
{
    const TvString label = sheetLabel(sheet);
    tip.text = label;
    const TvSmTvDbLayoutReference* reference = sheet.getLayoutReference();
    if (!reference)
        return;
    tip.preview = nullptr;
    if (style.mode == TipStyle::Name)
        return; // nothing of the drawing is shown
    const DrawingPlace place = placeOf(*reference);
    TvString savedBy, paper;
    const DrawingInfo* info = nullptr;
    if (place.exists && drawings.Get(place.path, info)) {
        paper = info->GetPaperSize(reference->getHandle());
        savedBy = info->GetLastSavedBy();
        if (style.showsPreview())
            tip.preview = info->GetThumbnail(reference->getHandle());
    }
    if (tip.preview) {
        tip.text += previewRoom(style.size).padding;
        if (style.mode == TipStyle::NameAndPreview)
            tip.text += u"1"; // line feeds at the end would not count
    }
    if (!style.showsDetails())
        return;
    tip.text += textOf(kStatus) + (place.isRelocated ? textOf(kMoved) : TvString());
    tip.text += statusOf(place) + textOf(kSheet) + label + textOf(kDescription) + sheet.getDesc();
    tip.text += placeLines(place);
    if (place.exists)
        tip.text += fileLines(place, savedBy, paper);
    tip.text += u"\n" + propertyLines(sheet, TvSmCustomPropertyValue::kSheetProperty);
}

} // namespace

TvString sheetLabel(const TvSmSheet& sheet)
{
    const TvString number = sheet.getNumber();
    return number.isEmpty() ? sheet.getTitle() : number + u" - " + sheet.getTitle();
}

void fillTip(const TvSmDatabase* database, const TvString& handle, TipStyle style,
             DrawingInfoCache& drawings, Tip& tip)
{
    tip.text.setEmpty();
    const TvSmPersist* object = database ? database->findObject(handle) : nullptr;
    if (!object) {
        tip.preview = nullptr;
        return;
    }
    const TvRxClass* kind = object->isA();
    if (kind == TvSmSheet::desc())
        return fillSheetTip(*tvrxCast<TvSmSheet>(object), style, drawings, tip);
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
