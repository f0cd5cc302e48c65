#pragma once

#include <memory>
#include <vector>

#include <db/tv_db_database.h>
#include <ed/tv_ap_document.h>
#include <ed/tv_db_layout_manager.h>

class TvRxDynamicLinkerImp;

/// Walks the open documents, as they were when it was made, in the order of their opening.
class TvApDocumentIterator
{
public:
    explicit TvApDocumentIterator(std::vector<TvApDocument*> documents)
        : m_documents(std::move(documents))
    {
    }
    bool done() const { return m_at >= m_documents.size(); }
    void step() { ++m_at; }
    /// Null when done.
    TvApDocument* document() const { return done() ? nullptr : m_documents[m_at]; }

private:
    std::vector<TvApDocument*> m_documents;
    std::size_t m_at = 0;
};

/// The documents of the program: which drawings are open, and which is current.
///
/// The current document's drawing is the working database. A drawing that is opened for editing is
/// in use from then on: nobody else can open it so, or save over it. One thread.
class TvApDocManager : public TvRxObject, private db::OpenDocuments
{
    TVRX_DECLARE_MEMBERS(TvApDocManager)

    /// @param linker  modules of which are told of documents; may be null; outlives the manager.
    explicit TvApDocManager(TvRxDynamicLinkerImp* linker = nullptr);
    /// Closes all documents without saving.
    ~TvApDocManager() override;

    int documentCount() const { return static_cast<int>(m_documents.size()); }
    /// The caller's.
    TvApDocumentIterator* newTvApDocumentIterator() const;
    /// Null when none is open.
    TvApDocument* curDocument() const { return m_current; }
    /// The document that the user has before him; the current one, unless a command works on
    /// another one for a while.
    TvApDocument* mdiActiveDocument() const { return m_active; }
    /// The document of a drawing; null when it is none.
    TvApDocument* document(const TvDbDatabase* database) const;
    /// The document of a file; null when it is not open. Names are compared as files are.
    TvApDocument* documentOf(const TvString& path) const;

    /// Makes a document current for what is done next.
    /// @param lockMode  nonzero: it is locked too, as by lockDocument().
    /// @param activate  it becomes the active one as well.
    /// @return InvalidInput for what is no document; null is allowed when none is open.
    TvStatusCode setCurDocument(TvApDocument* document, int lockMode = 0, bool activate = false);
    TvStatusCode activateDocument(TvApDocument* document);
    /// No command of a document is running.
    bool isApplicationContext() const { return m_commandDepth == 0; }

    /// A new, empty drawing that has no file yet.
    TvApDocument* newDocument();
    /// The same, beginning as the drawing @p path is; that is read only.
    /// @param out  null when it fails; lastFailure() says why.
    TvStatusCode newDocument(const TvString& path, TvApDocument*& out);
    /// Opens a drawing; one that is open already is made active.
    /// @param out  null when it fails; lastFailure() says why.
    /// @return Ok; FileInUse when somebody else is editing it; FileReadOnly when it may not be
    ///         written: then opening it read only works.
    TvStatusCode openDocument(const TvString& path, bool readOnly, TvApDocument*& out);
    /// Saves a document, under its own name when @p path is empty: as DXF if that is what it was
    /// read from or last saved as. Under another name as DXF if that ends with ".dxf", otherwise as
    /// DWG. @param version  TvDb::TvDbDwgVersion; 0: the one it was read or last saved in.
    /// @return InvalidInput without a name; FileReadOnly for a document that is read only; what
    ///         the drawing's saveAs() answers.
    TvStatusCode saveDocument(TvApDocument* document, const TvString& path = {}, int version = 0);
    /// Closes without saving. @return InvalidInput for what is no document; StillInUse while it is
    /// locked.
    TvStatusCode closeDocument(TvApDocument* document);

    /// A document may be changed only under a lock; locks nest.
    TvStatusCode lockDocument(TvApDocument* document);
    /// NotApplicable without a lock.
    TvStatusCode unlockDocument(TvApDocument* document);

    const base::Status& lastFailure() const { return m_lastFailure; }

    /// While it lives, a command of a document runs.
    class CommandContext
    {
    public:
        explicit CommandContext(TvApDocManager& manager) : m_manager(manager)
        {
            ++m_manager.m_commandDepth;
        }
        ~CommandContext() { --m_manager.m_commandDepth; }
        CommandContext(const CommandContext&) = delete;
        CommandContext& operator=(const CommandContext&) = delete;

    private:
        TvApDocManager& m_manager;
    };

private:
    TvDbDatabase* databaseOf(const TvString& path) override;
    bool isOurs(const TvApDocument* document) const;
    TvApDocument* add(std::unique_ptr<TvDbDatabase> database, TvString title, bool isReadOnly);
    TvStatusCode fail(base::Status why, TvStatusCode code);
    void makeCurrent(TvApDocument* document);

    TvRxDynamicLinkerImp* m_linker;
    TvDbLayoutManager m_layoutManager;
    std::vector<std::unique_ptr<TvApDocument>> m_documents; // in the order of their opening
    std::vector<TvApDocument*> m_activated;                 // the latest last
    TvApDocument* m_current = nullptr;
    TvApDocument* m_active = nullptr;
    int m_commandDepth = 0;
    int m_newDrawings = 0;
    base::Status m_lastFailure;
};

/// The program's, or null before it made one.
TvApDocManager* tvDocManagerPtr();

/// Opens a drawing as a document and makes it active; null when that fails, or without a manager.
TvApDocument* OpenDocument(const TvString& path);
/// The same for looking only. @param readOnly  0: for editing.
TvApDocument* OpenDocumentReadOnly(const TvString& path, int readOnly);
