#include <core/rename_drawing.h>

#include <base/kv_file_system.h>
#include <core/session.h>
#include <db/file_open_info_tip_manager.h>
#include <db/tv_db_database.h>
#include <ed/tv_ap_doc_manager.h>
#include <sm/change_scope.h>
#include <sm/kv_db_util.h>

namespace {

constexpr int kHeldByUs = 1;

bool isOpenHere(const TvString& path)
{
    return tvDocManagerPtr() && tvDocManagerPtr()->documentOf(path);
}

/// All of them, or none: those that follow already go back when one cannot.
bool repoint(const std::vector<TvSmSheet*>& sheets, const TvString& path)
{
    std::vector<std::pair<TvSmTvDbLayoutReference*, TvString>> former;
    for (const TvSmSheet* sheet : sheets) {
        TvSmTvDbLayoutReference* layout = sheet->getLayoutReference();
        const TvString before = layout ? layout->getFileName() : TvString();
        if (!layout || !layout->setFileName(path)) {
            for (const auto& [reference, name] : former)
                reference->setFileName(name);
            return false;
        }
        former.emplace_back(layout, before);
    }
    return true;
}

} // namespace

/// Nobody can begin to use the file meanwhile.
bool core::moveDrawing(const TvString& oldPath, const TvString& newPath)
{
    if (newPath.isEmpty() || !KvFileSystem::isFileExisting(oldPath) || isOpenHere(oldPath))
        return false;
    const TvDbDatabase use(false, true);
    if (!db::beginUse(use, oldPath, u"rename"))
        return false;
    const bool isMoved = KvFileSystem::moveFile(oldPath, newPath);
    db::endUse(use);
    return isMoved;
}

bool RenameDrawingOfSheets(const TvString& oldPath, const TvString& newPath)
{
    TvSmDatabase* database = GetCurrentDatabase();
    if (!database || oldPath.isEmpty() || newPath.isEmpty())
        return false;
    sm::ChangeScope ours(nullptr);
    if (database->getLockStatus() != kHeldByUs) {
        ours = sm::ChangeScope(database);
        if (!ours)
            return false;
    }
    std::vector<TvSmSheet*> sheets;
    KvDbUtil::GetAllSheetOfOneDwgInSheetSet(database->getSheetSet(), oldPath.kwszPtr(), sheets);
    if (!core::moveDrawing(oldPath, newPath))
        return false;
    if (repoint(sheets, newPath) && (!ours || ours.commit()))
        return true;
    KvFileSystem::moveFile(newPath, oldPath);
    return false;
}
