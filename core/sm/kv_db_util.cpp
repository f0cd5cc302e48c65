#include "sm/kv_db_util.h"

#include <base/kv_file_system.h>
#include <base/path_rules.h>

#include "internals.h"
#include "sm/environment.h"

using sm::Internals;

TvSmSheetSetMgr* KvDbUtil::tarvGetSheetSetMgr()
{
    static TvSmSheetSetMgr manager;
    return sm::environment().manager ? sm::environment().manager : &manager;
}

bool KvDbUtil::GetCurrentLayout(TvDbDatabase*& db, const TvChar*& drawingName,
                                TvDbHandle& layoutHandle)
{
    static TvString name; // the text that the caller looks at
    sm::CurrentLayoutProvider* provider = sm::environment().layout;
    TvString now;
    if (!provider || !provider->currentLayout(db, now, layoutHandle))
        return false;
    name = std::move(now);
    drawingName = name.kwszPtr();
    return true;
}

namespace {

/// Visits every sheet below @p subset in tree order until @p visit answers false.
template <class Visit>
bool forEachSheet(const TvSmSubset& subset, Visit&& visit)
{
    for (TvSmComponent* child = Internals::firstChild(subset); child;
         child = Internals::nextSibling(*child)) {
        if (child->isA() == TvSmSheet::desc()) {
            if (!visit(static_cast<TvSmSheet&>(*child)))
                return false;
        } else if (const auto* below = tvrxCast<TvSmSubset>(child);
                   below && !forEachSheet(*below, visit)) {
            return false;
        }
    }
    return true;
}

/// A drawing that sheets are compared with: by file name first, and only then on the disk.
class DrawingMatch
{
public:
    explicit DrawingMatch(const TvString& drawing)
        : m_drawing(drawing), m_fileName(base::PathRules::native().fileNameOf(drawing))
    {
    }

    bool leadsTo(const TvSmFileReference& reference) const
    {
        const TvString stored = reference.getFileName();
        if (!base::equalNoCase(lastPart(stored), m_fileName))
            return false;
        if (isSame(stored))
            return true;
        const TvString resolved = reference.resolveFileName();
        return !resolved.isEmpty() &&
               (isSame(resolved) || KvFileSystem::isSameFile(resolved, m_drawing));
    }

private:
    static std::u16string_view lastPart(const TvString& path)
    {
        const int slash = path.findLastOneOf(u"/\\");
        return path.view().substr(static_cast<std::size_t>(slash + 1));
    }
    bool isSame(const TvString& path) const
    {
        if (path == m_drawing)
            return true;
        if (!base::PathRules::native().isSame(path, m_drawing))
            return false;
        // Spellings that differ in case may be two files.
        return !(KvFileSystem::isFileExisting(path) && KvFileSystem::isFileExisting(m_drawing)) ||
               KvFileSystem::isSameFile(path, m_drawing);
    }

    TvString m_drawing;
    TvString m_fileName;
};

} // namespace

TvSmSheet* KvDbUtil::FindSheetFromSubset(const TvSmSubset* subset, const TvChar* drawingName,
                                         TvDbHandle layoutHandle)
{
    if (!subset || !drawingName)
        return nullptr;
    const DrawingMatch drawing{TvString(drawingName)};
    TvSmSheet* found = nullptr;
    forEachSheet(*subset, [&](TvSmSheet& sheet) {
        const TvSmTvDbLayoutReference* layout = sheet.getLayoutReference();
        if (layout && TvDbHandle(layout->getHandle().view()) == layoutHandle &&
            drawing.leadsTo(*layout))
            found = &sheet;
        return found == nullptr;
    });
    return found;
}

void KvDbUtil::GetAllSheetsInTheSubSet(const TvSmSubset* subset, std::vector<TvSmSheet*>& out)
{
    if (subset)
        forEachSheet(*subset, [&](TvSmSheet& sheet) {
            out.push_back(&sheet);
            return true;
        });
}

int KvDbUtil::GetSheetNumsInSubSet(const TvSmSubset* subset)
{
    int count = 0;
    if (subset)
        forEachSheet(*subset, [&](TvSmSheet&) {
            ++count;
            return true;
        });
    return count;
}

bool KvDbUtil::GetAllSheetOfOneDwgInSheetSet(const TvSmSheetSet* sheetSet,
                                             const TvChar* drawingName,
                                             std::vector<TvSmSheet*>& out)
{
    if (!sheetSet || !drawingName)
        return false;
    const DrawingMatch drawing{TvString(drawingName)};
    const std::size_t before = out.size();
    forEachSheet(*sheetSet, [&](TvSmSheet& sheet) {
        if (sheet.getLayoutReference() && drawing.leadsTo(*sheet.getLayoutReference()))
            out.push_back(&sheet);
        return true;
    });
    return out.size() > before;
}

bool KvDbUtil::IsCurrentSheetInSheetSet(const TvSmDatabase* db)
{
    TvDbDatabase* drawing = nullptr;
    const TvChar* name = nullptr;
    TvDbHandle layout;
    return db && GetCurrentLayout(drawing, name, layout) &&
           FindSheetFromSubset(db->getSheetSet(), name, layout);
}
