#pragma once

#include <memory>

#include <app/main_app_service.h>
#include <app/program_folders.h>
#include <app/reference_report.h>
#include <app/workspace_manager.h>
#include <base/tarvik_config.h>
#include <db/tv_db_host_application_services.h>
#include <ed/command_line.h>
#include <ed/tv_ap_doc_manager.h>
#include <ed/tv_editor.h>
#include <rx/module_loader.h>
#include <rx/tv_ed_command_stack.h>
#include <rx/tv_rx_dynamic_linker.h>

class TvUserMessages;

namespace ed {
class UserPrompts;
} // namespace ed

namespace gs {
class ExactTextMeasure;
} // namespace gs

namespace app {

/// The sheet-set module, which the program loads at its start.
constexpr const TvChar* kSheetSetModule = u"KvSheetSet.trx";

/// The program without a window: configuration, modules, documents, editor and commands, from their
/// start to their end. One at a time in a process.
///
/// Each step of the start has its step of the stop, in the reverse order. Documents are closed
/// while the modules are still there to be told, and modules go while all that they registered with
/// is there.
class Program
{
public:
    struct Setup {
        ProgramFolders folders;
        ed::UserPrompts* prompts = nullptr; ///< not owned; null: nobody can be asked
        TvUserMessages* messages = nullptr; ///< not owned; null: questions count as refused
    };

    /// Everything but the modules.
    explicit Program(const Setup& setup);
    ~Program(); ///< stop()
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    /// Loads the plot module, where there is one, and the sheet-set module. When the latter is
    /// missing the command line tells.
    /// @return whether the sheet-set module is loaded.
    bool loadModules();
    /// Closes all documents without saving, and ends what was started. Nothing the second time.
    void stop();

    const ProgramFolders& folders() const { return m_folders; }
    TvApDocManager& documents() { return *m_documents; }
    TvEditor& editor() { return m_editor; }
    ed::CommandLine& commandLine() { return m_commandLine; }
    TvEdCommandStack& commands() { return m_commands; }
    TvRxDynamicLinkerImp& linker() { return *m_linker; }
    /// The drawings that the open ones show as external references.
    db::AttachedDrawings& attached() { return m_attached; }
    /// Gone after stop().
    MainAppService& mainAppService() { return *m_mainAppService; }

    /// Opens a drawing and makes it active; says at the command line why it cannot be opened. A
    /// drawing that somebody else has in use, or that may not be written, is opened read only when
    /// @p orReadOnly says so, and that is said too.
    TvStatusCode open(const TvString& path, bool orReadOnly, TvApDocument*& out);
    /// Opens it for looking only, and says so.
    TvStatusCode openReadOnly(const TvString& path, TvApDocument*& out);
    /// Opens a private copy of a drawing, which cannot be saved under its own name.
    TvStatusCode openCopy(const TvString& path, TvApDocument*& out);

private:
    ProgramFolders m_folders;
    TarvikConfig m_config;
    rx::FolderModuleLoader m_loader;
    TvDbHostApplicationServices m_services;
    std::unique_ptr<gs::ExactTextMeasure> m_textMeasure;
    WorkspaceManager m_workspaces;
    TvEditor m_editor;
    db::AttachedDrawings m_attached;
    ReferenceReport m_referenceReport{m_editor, m_attached};
    TvEdCommandStackImp m_commands;
    ed::CommandLine m_commandLine;
    std::unique_ptr<TvRxDynamicLinkerImp> m_linker;
    std::unique_ptr<TvApDocManager> m_documents;
    std::unique_ptr<MainAppService> m_mainAppService;
    bool m_isRunning = true;
};

} // namespace app
