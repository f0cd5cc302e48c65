#include <core/templates.h>

#include <optional>

#include <base/kv_file_system.h>
#include <base/path_rules.h>
#include <core/session_host.h>
#include <db/tv_db_database.h>
#include <db/tv_db_dictionary.h>
#include <db/tv_db_layout.h>
#include <db/tv_db_symbol_table.h>

namespace {

constexpr int kTries = 6, kDelayMs = 500;
constexpr TvChar kTemplateExtension[] = u".dwt";

/// The folder of the user's templates for sheets; empty without one.
TvString userTemplateFolder()
{
    core::SessionHost* host = core::sessionHost();
    const TvString folder = host ? host->GetUserLocalApplicationDataTemplatePath() : TvString();
    return folder.isEmpty() ? folder : base::PathRules::native().join(folder, u"SheetSets");
}

std::optional<TvString> firstTemplate(const TvString& folder)
{
    for (const KvFileSystem::Entry& entry : KvFileSystem::listFolder(folder))
        if (!entry.isDirectory && entry.name.endsWithNoCase(kTemplateExtension))
            return base::PathRules::native().join(folder, entry.name);
    return std::nullopt;
}

std::optional<TvString> firstPopulatedLayout(const TvDbDatabase& drawing)
{
    const TvDbObjectPointer<TvDbDictionary> layouts(drawing.layoutDictionaryId());
    if (!layouts)
        return std::nullopt;
    const std::unique_ptr<TvDbDictionaryIterator> each(layouts->newIterator());
    for (; !each->done(); each->next()) {
        const TvDbObjectPointer<TvDbLayout> layout(each->objectId());
        if (layout && IsLayoutPopulated(layout.object()))
            return layout->getLayoutName();
    }
    return std::nullopt;
}

} // namespace

bool IsLayoutPopulated(const TvDbLayout* layout)
{
    if (!layout || layout->getLayoutName().compareNoCase(u"model") == 0)
        return false;
    const TvDbObjectPointer<TvDbBlockTableRecord> block(layout->getBlockTableRecordId());
    return block && !block->entityIds().empty();
}

bool IsInstalledTemplatePath(const TvString& path)
{
    return path.find(u"\\Kevrin\\TARVIK\\") != TvString::npos &&
           path.find(u"\\Template\\SheetSets\\") != TvString::npos;
}

bool FindUserTemplateCopy(const TvString& fileName, TvString& out)
{
    const TvString folder = userTemplateFolder();
    if (folder.isEmpty() || fileName.isEmpty())
        return false;
    const TvString path = base::PathRules::native().join(folder, fileName);
    if (!KvFileSystem::isFileExisting(path, kTries, kDelayMs))
        return false;
    out = path;
    return true;
}

bool FindDefaultSheetTemplate(TvString& path, TvString& layout)
{
    const TvString folder = userTemplateFolder();
    const std::optional<TvString> found = folder.isEmpty() ? std::nullopt : firstTemplate(folder);
    if (!found)
        return false;
    TvDbDatabase drawing(false, true);
    if (drawing.readDwgFile(*found) != TvStatus::Ok)
        return false;
    const std::optional<TvString> name = firstPopulatedLayout(drawing);
    if (!name)
        return false;
    path = *found;
    layout = *name;
    return true;
}

TvString core::resolvedTemplate(const TvString& path)
{
    if (KvFileSystem::pathFileExists(path, kTries, kDelayMs))
        return path;
    TvString copy;
    if (IsInstalledTemplatePath(path))
        FindUserTemplateCopy(base::PathRules::native().fileNameOf(path), copy);
    return copy;
}
