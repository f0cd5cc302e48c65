#include "operations/import_layouts.h"

#include <base/kv_file_system.h>
#include <base/path_rules.h>
#include <core/auto_open_reactor.h>
#include <core/read_drawing_file.h>
#include <core/templates.h>
#include <db/tv_db_dictionary.h>
#include <db/tv_db_layout.h>
#include <sm/kv_db_util.h>
#include <sm/scoped_open.h>

namespace operations {

namespace {

TvString keyOf(std::u16string_view path)
{
    return base::PathRules::native().keyOf(path);
}

TvString nameKeyOf(const TvString& path)
{
    return base::PathRules::native().fileNameOf(path).toLower();
}

bool isSameFile(const TvString& left, const TvString& right)
{
    return left == right || KvFileSystem::isSameFile(left, right) ||
           !(KvFileSystem::isFileExisting(left) && KvFileSystem::isFileExisting(right));
}

std::vector<DrawingLayouts::Layout> populated(TvDbDatabase& drawing, LayoutOrder order)
{
    std::vector<DrawingLayouts::Layout> found;
    if (order == LayoutOrder::Dictionary) {
        for (const core::PaperLayout& layout : core::populatedLayouts(&drawing))
            found.push_back({layout.name, layout.handle});
        return found;
    }
    for (const TvDbObjectId id : db::layoutsInTabOrder(drawing)) {
        const TvDbObjectPointer<TvDbLayout> layout(id);
        if (layout && IsLayoutPopulated(layout.object()))
            found.push_back({layout->getLayoutName(), id.handle()});
    }
    return found;
}

/// The sets that drawings name, each opened at most once.
class NamedSets
{
public:
    NamedSets(TvSmSheetSetMgr& manager, std::span<const TvString> drawings)
        : m_manager(manager), m_drawings(drawings)
    {
    }

    const LayoutUses& usesOf(const TvString& set)
    {
        const auto [place, isNew] = m_uses.try_emplace(keyOf(set), m_drawings);
        if (isNew) {
            // One that is open already has been looked at with the other open ones.
            const sm::ScopedOpen opened(&m_manager, set);
            if (opened.openedHere())
                place->second.add(opened.database());
        }
        return place->second;
    }

private:
    TvSmSheetSetMgr& m_manager;
    std::span<const TvString> m_drawings;
    std::map<TvString, LayoutUses> m_uses;
};

} // namespace

base::Status readDrawingLayouts(const TvString& path, LayoutOrder order, DrawingLayouts& out)
{
    out = {};
    TvDbDatabase drawing(false, true);
    if (ReadDrawingFile(&drawing, path) != TvStatus::Ok)
        return drawing.lastFailure();
    if (!TvDbObjectPointer<TvDbDictionary>(drawing.layoutDictionaryId()))
        return {base::Failure::Damaged, base::Reason::DwgObjectMissing, {u"ACAD_LAYOUT"}};
    KvDbUtil::GetShSetFileName(&drawing, out.sheetSet);
    out.layouts = populated(drawing, order);
    return {};
}

LayoutUses::LayoutUses(std::span<const TvString> drawings)
{
    for (const TvString& path : drawings)
        m_names.insert(nameKeyOf(path));
}

/// Spellings that differ by case stand at one key, apart if they are different files.
LayoutUses::Drawing& LayoutUses::drawingAt(const TvString& path)
{
    std::vector<Drawing>& spellings = m_drawings[keyOf(path)];
    for (Drawing& drawing : spellings)
        if (drawing.path == path)
            return drawing;
    spellings.push_back({path, {}});
    return spellings.back();
}

void LayoutUses::add(const TvSmDatabase* set)
{
    if (!set)
        return;
    std::vector<TvSmSheet*> sheets;
    KvDbUtil::GetAllSheetsInTheSubSet(set->getSheetSet(), sheets);
    for (const TvSmSheet* sheet : sheets) {
        const TvSmTvDbLayoutReference* reference = sheet->getLayoutReference();
        if (!reference || !m_names.contains(nameKeyOf(reference->getFileName())))
            continue;
        const TvDbHandle handle(reference->getHandle().view());
        const TvString path = handle.isNull() ? TvString() : reference->resolveFileName();
        if (!path.isEmpty())
            drawingAt(path).layouts.insert(handle);
    }
}

bool LayoutUses::contains(const TvString& drawing, TvDbHandle layout) const
{
    const auto spellings = m_drawings.find(keyOf(drawing));
    if (spellings == m_drawings.end())
        return false;
    for (const Drawing& each : spellings->second)
        if (each.layouts.contains(layout) && isSameFile(each.path, drawing))
            return true;
    return false;
}

LoadedLayouts loadLayouts(std::span<const TvString> drawings, const KnownSets& sets,
                          LayoutOrder order, const std::function<void()>& beforeEach)
{
    LoadedLayouts loaded;
    if (!sets.manager)
        return loaded;
    LayoutUses open(drawings);
    open.add(sets.besides);
    for (const TvSmDatabase* set : sm::each(sets.manager->getDatabaseEnumerator()))
        open.add(set);
    NamedSets named(*sets.manager, drawings);
    for (const TvString& path : drawings) {
        if (beforeEach)
            beforeEach();
        DrawingLayouts drawing;
        if (base::Status status = readDrawingLayouts(path, order, drawing); !status) {
            loaded.unreadable.push_back({path, std::move(status)});
            continue;
        }
        const LayoutUses* inNamed =
            drawing.sheetSet.isEmpty() ? nullptr : &named.usesOf(drawing.sheetSet);
        for (const DrawingLayouts::Layout& layout : drawing.layouts) {
            const bool isUsed = open.contains(path, layout.handle) ||
                                (inNamed && inNamed->contains(path, layout.handle));
            const LayoutUse use = isUsed    ? LayoutUse::InUse
                                  : inNamed ? LayoutUse::NotListed
                                            : LayoutUse::Free;
            loaded.rows.push_back({path, layout.name, layout.handle, use});
        }
        if (drawing.layouts.empty())
            loaded.withoutLayouts.push_back(path);
    }
    return loaded;
}

} // namespace operations
