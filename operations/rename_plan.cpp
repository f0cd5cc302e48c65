#include "operations/rename_plan.h"

#include <map>
#include <set>

#include <base/kv_file_system.h>
#include <base/path_rules.h>
#include <core/name_characters.h>
#include <core/read_drawing_file.h>
#include <db/file_open_info_tip_manager.h>
#include <db/tv_db_layout.h>
#include <sm/environment.h>
#include <sm/kv_db_util.h>
#include <sm/limits.h>
#include <sm/tv_sm_database.h>

#include "operations/rename_messages.h"
#include "operations/rename_names.h"

namespace operations {

namespace {

const base::PathRules& paths()
{
    return base::PathRules::native();
}

TvString folded(const TvString& name)
{
    return name.toLower();
}

constexpr TvChar kExtension[] = u".dwg";

/// Such a file would be hidden.
bool isExtensionAlone(const TvString& name)
{
    return name.trimmed().compareNoCase(kExtension) == 0;
}

bool hasOtherNames(const TvString& path)
{
    base::FileInfo info;
    return sm::files().describeName(base::nativePath(path), info) == 0 &&
           (info.kind == base::FileInfo::Kind::Link || info.links > 1);
}

/// Plans drawing by drawing: all sheets of one are seen together.
class Planner
{
public:
    explicit Planner(const std::vector<SheetTarget>& targets) : m_targets(targets) {}
    RenamePlan plan()
    {
        for (const SheetTarget& target : m_targets)
            if (target.sheet)
                addSheet(target);
        checkDuplicates();
        for (std::size_t i = 0; i < m_plan.drawings.size(); ++i)
            lookAtDrawing(i);
        checkFileNames();
        return std::move(m_plan);
    }

private:
    void addSheet(const SheetTarget& target)
    {
        SheetEffect effect;
        const TvSmSheet& sheet = *target.sheet;
        effect.handle = sheet.objectId().getHandle();
        effect.oldNumber = sheet.getNumber();
        effect.oldTitle = sheet.getTitle();
        effect.newNumber = target.number.value_or(effect.oldNumber);
        effect.newTitle = target.title.value_or(effect.oldTitle);
        effect.clash = checkTexts(target);
        const TvSmTvDbLayoutReference* layout = sheet.getLayoutReference();
        if (layout) {
            effect.layoutHandle = layout->getHandle();
            effect.oldLayout = effect.newLayout = layout->getName();
        }
        if (target.layout || target.file) {
            if (layout)
                effect.drawing = drawingOf(*layout, target);
            else
                note(effect, Clash::NoLayout);
            if (target.layout)
                effect.newLayout = *target.layout;
        }
        m_plan.sheets.push_back(std::move(effect));
    }
    static Clash checkTexts(const SheetTarget& target)
    {
        if (target.number && target.number->length() > sm::kMaxNumberLength)
            return Clash::NumberTooLong;
        if (target.number && HasUnsupportedNameChar(*target.number))
            return Clash::NumberCharacters;
        if (target.title && target.title->trimmed().isEmpty())
            return Clash::TitleMissing;
        if (target.title && target.title->length() > sm::kMaxNameLength)
            return Clash::TitleTooLong;
        if (target.title && HasUnsupportedNameChar(*target.title))
            return Clash::TitleCharacters;
        return Clash::None;
    }
    template <class Effect>
    static void note(Effect& effect, Clash clash, const TvString& about = {})
    {
        if (effect.clash != Clash::None)
            return;
        effect.clash = clash;
        effect.about = about;
    }

    int drawingOf(const TvSmTvDbLayoutReference& layout, const SheetTarget& target)
    {
        const TvString resolved = layout.resolveFileName();
        const TvString path = resolved.isEmpty() ? layout.getFileName() : resolved;
        const auto [at, isNew] = m_drawings.try_emplace(paths().keyOf(path.view()),
                                                        static_cast<int>(m_plan.drawings.size()));
        if (isNew) {
            DrawingEffect effect;
            effect.oldPath = effect.newPath = path;
            if (resolved.isEmpty())
                note(effect, Clash::DrawingMissing);
            m_plan.drawings.push_back(std::move(effect));
            m_layouts.emplace_back();
            m_isNamed.push_back(false);
        }
        const auto place = static_cast<std::size_t>(at->second);
        if (target.layout)
            m_layouts[place].push_back(m_plan.sheets.size());
        if (target.file && !m_isNamed[place]) {
            m_isNamed[place] = true;
            rename(m_plan.drawings[place], *target.file);
        }
        return at->second;
    }
    static void rename(DrawingEffect& drawing, const TvString& name)
    {
        const TvString folder = paths().folderOf(drawing.oldPath);
        if (drawing.clash != Clash::None || name == paths().fileNameOf(drawing.oldPath))
            return;
        if (HasUnsupportedNameChar(name) || !base::PathRules::isValidNewName(name.view()) ||
            isExtensionAlone(name))
            return note(drawing, Clash::FileName, name);
        drawing.newPath = paths().join(folder, name);
        if (drawing.newPath.length() >= base::PathRules::kMaxNewPath)
            note(drawing, Clash::FilePathTooLong, drawing.newPath);
    }

    /// Among all sheets of each subset, as they will be called.
    void checkDuplicates()
    {
        std::map<const TvSmSheet*, SheetEffect*> changed;
        std::set<const TvSmSubset*> subsets;
        std::size_t i = 0;
        for (const SheetTarget& target : m_targets) {
            if (!target.sheet)
                continue;
            changed.emplace(target.sheet, &m_plan.sheets[i++]);
            if (const auto* owner = tvrxCast<TvSmSubset>(target.sheet->getOwner()))
                subsets.insert(owner);
        }
        for (const TvSmSubset* subset : subsets) {
            std::map<std::pair<TvString, TvString>, int> count;
            const auto nameOf = [&](const TvSmSheet* sheet) {
                const auto at = changed.find(sheet);
                return at == changed.end() ? std::pair(sheet->getNumber(), sheet->getTitle())
                                           : std::pair(at->second->newNumber, at->second->newTitle);
            };
            for (const TvSmComponent* child : sm::each(subset->getSheetEnumerator()))
                if (const auto* sheet = tvrxCast<TvSmSheet>(child))
                    ++count[nameOf(sheet)];
            for (const TvSmComponent* child : sm::each(subset->getSheetEnumerator()))
                if (const auto* sheet = tvrxCast<TvSmSheet>(child))
                    if (const auto at = changed.find(sheet); at != changed.end() &&
                                                             count[nameOf(sheet)] > 1 &&
                                                             isNewlyNamed(*at->second))
                        note(*at->second, Clash::Duplicate);
        }
    }
    static bool isNewlyNamed(const SheetEffect& effect)
    {
        return effect.newNumber != effect.oldNumber || effect.newTitle != effect.oldTitle;
    }

    void lookAtDrawing(std::size_t place)
    {
        DrawingEffect& drawing = m_plan.drawings[place];
        if (m_layouts[place].empty() && !drawing.moves())
            return;
        if (!isDrawingThere(drawing.oldPath))
            return note(drawing, Clash::DrawingMissing);
        if (CFileOpenInfoTipManager::IsInfoFileExists(drawing.oldPath)) {
            TvString user, host;
            CFileOpenInfoTipManager::GetInfoFromHideFile(drawing.oldPath, user, host);
            return note(drawing, Clash::DrawingInUse, user.isEmpty() ? user : user + u"@" + host);
        }
        if (KvFileSystem::isReadOnly(drawing.oldPath))
            return note(drawing, Clash::DrawingReadOnly);
        if (!m_layouts[place].empty())
            lookAtLayouts(place);
    }
    void lookAtLayouts(std::size_t place)
    {
        DrawingEffect& drawing = m_plan.drawings[place];
        TvDbDatabase database(false, true);
        if (ReadDrawingFile(&database, drawing.oldPath) != TvStatus::Ok)
            return note(drawing, Clash::DrawingUnreadable);
        std::map<std::uint64_t, SheetEffect*> renamed;
        for (const std::size_t at : m_layouts[place]) {
            SheetEffect& sheet = m_plan.sheets[at];
            const TvDbHandle handle(sheet.layoutHandle.view());
            const TvDbObjectPointer<TvDbLayout> layout(database.find(handle.value()));
            if (!layout || layout->isModelLayout()) {
                note(sheet, Clash::LayoutMissing);
                continue;
            }
            sheet.oldLayout = layout->getLayoutName();
            if (!db::isLayoutName(sheet.newLayout) || HasUnsupportedSheetChar(sheet.newLayout))
                note(sheet, Clash::LayoutName, sheet.newLayout);
            drawing.changesLayouts = drawing.changesLayouts || sheet.changesLayout();
            if (!renamed.emplace(handle.value(), &sheet).second)
                note(sheet, Clash::LayoutTaken, sheet.newLayout); // two sheets on one layout
        }
        if (drawing.changesLayouts && hasOtherNames(drawing.oldPath))
            note(drawing, Clash::DrawingLinked);
        checkLayoutNames(database, renamed);
    }
    static void checkLayoutNames(TvDbDatabase& database,
                                 const std::map<std::uint64_t, SheetEffect*>& renamed)
    {
        std::map<TvString, int> count;
        for (const TvDbObjectId id : db::layoutsInTabOrder(database))
            if (const TvDbObjectPointer<TvDbLayout> layout(id); layout) {
                const auto at = renamed.find(id.handle().value());
                ++count[folded(at == renamed.end() ? layout->getLayoutName()
                                                   : at->second->newLayout)];
            }
        for (const auto& [handle, sheet] : renamed)
            if (count[folded(sheet->newLayout)] > 1)
                note(*sheet, Clash::LayoutTaken, sheet->newLayout);
    }

    /// A name that a drawing of ours leaves is free.
    void checkFileNames()
    {
        std::set<TvString> leaving;
        std::map<TvString, int> arriving;
        for (const DrawingEffect& drawing : m_plan.drawings) {
            if (!drawing.moves())
                continue;
            leaving.insert(drawing.oldPath);
            ++arriving[paths().keyOf(drawing.newPath.view())];
        }
        for (DrawingEffect& drawing : m_plan.drawings) {
            if (!drawing.moves())
                continue;
            if (arriving[paths().keyOf(drawing.newPath.view())] > 1)
                note(drawing, Clash::FileTwice, drawing.newPath);
            else if (!leaving.contains(drawing.newPath) &&
                     KvFileSystem::pathFileExists(drawing.newPath, 1, 0) &&
                     !KvFileSystem::isSameFile(drawing.newPath, drawing.oldPath))
                note(drawing, Clash::FileExists, drawing.newPath);
        }
    }

    const std::vector<SheetTarget>& m_targets;
    RenamePlan m_plan;
    std::map<TvString, int> m_drawings;              // by the key of their paths
    std::vector<std::vector<std::size_t>> m_layouts; // of each drawing: the sheets that rename one
    std::vector<bool> m_isNamed;                     // of each drawing
};

} // namespace

bool RenamePlan::hasClash() const
{
    const auto clashes = [](const auto& effect) { return effect.clash != Clash::None; };
    return std::ranges::any_of(sheets, clashes) || std::ranges::any_of(drawings, clashes);
}

bool RenamePlan::changesAnything() const
{
    return std::ranges::any_of(drawings,
                               [](const DrawingEffect& drawing) {
                                   return drawing.moves() || drawing.changesLayouts;
                               }) ||
           std::ranges::any_of(sheets, [](const SheetEffect& sheet) {
               return sheet.newNumber != sheet.oldNumber || sheet.newTitle != sheet.oldTitle;
           });
}

RenamePlan planRename(const std::vector<SheetTarget>& targets)
{
    return Planner(targets).plan();
}

std::vector<SheetTarget> renumberTargets(const TvSmSubset& scope, const SheetNumbers& numbers,
                                         const RenumberOptions& options)
{
    std::vector<TvSmSheet*> sheets;
    KvDbUtil::GetAllSheetsInTheSubSet(&scope, sheets);
    std::vector<SheetTarget> targets;
    for (TvSmSheet* sheet : sheets) {
        SheetTarget target;
        target.sheet = sheet;
        target.number = numbers.at(targets.size());
        const TvString name = nameOfSheet(*target.number, sheet->getTitle());
        // A sheet that was never drawn has nothing to rename.
        if (options.renamesLayouts && sheet->getLayoutReference())
            target.layout = name;
        if (options.renamesFiles && sheet->getLayoutReference())
            target.file = name + kExtension;
        targets.push_back(std::move(target));
    }
    return targets;
}

} // namespace operations
