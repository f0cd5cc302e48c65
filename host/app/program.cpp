#include "app/program.h"

#include <algorithm>

#include <base/path_rules.h>
#include <db/file_open_info_tip_manager.h>
#include <db/tv_db_layout.h>
#include <dwg/dwg_codec.h>
#include <dxf/dxf_codec.h>
#include <ed/drawing_view.h>
#include <ed/host_commands.h>
#include <ed/recent_files.h>
#include <ed/user_prompts.h>
#include <gs/display_list.h>
#include <gs/exact_text_measure.h>
#include <rx/tv_product.h>
#include <rx/tv_rx_dictionary.h>
#include <rx/tv_user_messages.h>

#include "app/words.h"

namespace app {

namespace {

constexpr const TvChar* kLinkerKey = u"DynamicLinker";

void sayStatus(const base::Status& status)
{
    if (ed::UserPrompts* prompts = ed::userPrompts())
        prompts->say(static_cast<int>(status.reason()), status.arguments());
}

void sayWord(Word word, const std::vector<TvString>& arguments)
{
    if (ed::UserPrompts* prompts = ed::userPrompts())
        prompts->say(static_cast<int>(word), arguments);
}

/// Why a drawing cannot be opened; a reason that does not name it comes after its name.
void sayFailure(const TvString& path, const base::Status& status)
{
    if (std::ranges::find(status.arguments(), path) == status.arguments().end())
        sayWord(Word::CannotOpen, {path});
    sayStatus(status);
}

/// Who has the drawing in use, as far as he says.
void sayWhoUses(const TvString& path)
{
    TvString user, host;
    if (CFileOpenInfoTipManager::GetInfoFromHideFile(path, user, host))
        sayWord(Word::InUseBy, {base::PathRules::native().fileNameOf(path), user, host});
}

/// The box around what is drawn there, in world coordinates.
TvDbExtents measured(TvDbObjectId where, db::AttachedDrawings& attached)
{
    if (!where.isValid())
        return {};
    const TvDbObjectPointer<TvDbLayout> layout(where, TvDb::kForNotify);
    const bool isLayout = static_cast<bool>(layout);
    const gs::DisplayList list = isLayout
                                     ? gs::DisplayList::ofLayout(where, {}, &attached)
                                     : gs::DisplayList::ofModel(*where.database(), {}, &attached);
    const std::optional<TvGeMatrix3d> toWorld = list.fromWorld().inverse();
    gs::Box all = list.extents();
    if (isLayout && list.sheet())
        all.addBox(*list.sheet());
    TvDbExtents extents;
    if (toWorld && !all.isEmpty())
        extents =
            TvDbExtents({all.lowX, all.lowY, 0}, {all.highX, all.highY, 0}).transformed(*toWorld);
    return extents;
}

} // namespace

Program::Program(const Setup& setup)
    : m_folders(setup.folders), m_config(setup.folders.config), m_loader(setup.folders.modules)
{
    dwg::install();
    dxf::install();
    tarvSetConfig(&m_config);
    tvdbSetHostApplicationServices(&m_services);
    ed::setUserPrompts(setup.prompts);
    tvrxSetUserMessages(setup.messages);
    rx::setModuleLoader(&m_loader);
    m_textMeasure = std::make_unique<gs::ExactTextMeasure>();
    db::setTextMeasure(m_textMeasure.get());
    m_linker = std::make_unique<TvRxDynamicLinkerImp>(m_loader, sayStatus);
    TvRxDictionary& registry = *tvrxSysRegistry();
    registry.atPut(kLinkerKey, m_linker.get());
    registry.atPut(kTvEditor, &m_editor);
    registry.atPut(kTvRegisteredCommands, &m_commands);
    m_documents = std::make_unique<TvApDocManager>(m_linker.get());
    ed::setRecentFilesFolder(m_folders.state);
    m_mainAppService =
        std::make_unique<MainAppService>(m_folders.config, m_folders.data, m_folders.program);
    ed::setExtentsSource([this](TvDbObjectId where) { return measured(where, m_attached); });
    ed::addHostCommands(m_commands);
}

Program::~Program()
{
    stop();
}

bool Program::loadModules()
{
    // Its commands need no sheet sets; a program without it plots nothing, and says no more of it.
    m_linker->loadModule(rx::moduleFileName(u"PlotCmds.dll", u"KvPlotCmds.dll"), 0, 0);
    return m_linker->loadModule(kSheetSetModule, 1, 0);
}

void Program::stop()
{
    if (!m_isRunning)
        return;
    m_isRunning = false;
    const std::unique_ptr<TvApDocumentIterator> each(m_documents->newTvApDocumentIterator());
    for (; !each->done(); each->step()) {
        while (m_documents->unlockDocument(each->document()) == TvStatus::Ok) {
        }
        m_documents->closeDocument(each->document());
    }
    m_linker->unloadAll();
    m_mainAppService.reset();
    m_commands.removeGroup(ed::kHostCommandGroup);
    ed::setExtentsSource({});
    ed::setRecentFilesFolder({});
    m_documents.reset();
    TvRxDictionary& registry = *tvrxSysRegistry();
    registry.remove(kTvRegisteredCommands);
    registry.remove(kTvEditor);
    registry.remove(kLinkerKey);
    m_linker.reset();
    db::setTextMeasure(nullptr);
    rx::setModuleLoader(nullptr);
    tvrxSetUserMessages(nullptr);
    ed::setUserPrompts(nullptr);
    tvdbSetHostApplicationServices(nullptr);
    tarvSetConfig(nullptr);
}

TvStatusCode Program::open(const TvString& path, bool orReadOnly, TvApDocument*& out)
{
    const TvStatusCode status = m_documents->openDocument(path, false, out);
    const bool isRefusal = status == TvStatus::FileInUse || status == TvStatus::FileReadOnly;
    if (status == TvStatus::Ok) {
        ed::addRecentFile(path);
        return status;
    }
    sayFailure(path, m_documents->lastFailure());
    if (status == TvStatus::FileInUse)
        sayWhoUses(path);
    if (!isRefusal || !orReadOnly)
        return status;
    return openReadOnly(path, out);
}

TvStatusCode Program::openReadOnly(const TvString& path, TvApDocument*& out)
{
    const TvStatusCode status = openCopy(path, out);
    if (status == TvStatus::Ok)
        sayWord(Word::OpenedReadOnly, {path});
    return status;
}

TvStatusCode Program::openCopy(const TvString& path, TvApDocument*& out)
{
    const TvStatusCode status = m_documents->openDocument(path, true, out);
    if (status != TvStatus::Ok)
        sayFailure(path, m_documents->lastFailure());
    return status;
}

} // namespace app
