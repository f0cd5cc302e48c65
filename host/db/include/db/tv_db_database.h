#pragma once

#include <functional>
#include <memory>
#include <vector>

#include <base/status.h>
#include <db/drawing_file.h>
#include <db/tv_db_date.h>
#include <db/tv_db_object.h>
#include <ge/tv_ge_point.h>

class TvDbBlockTable;
class TvDbDatabaseReactor;
class TvDbDatabaseSummaryInfo;
class TvDbDictionary;
class TvDbIdMapping;
class TvDbTransactionManager;
class TvDbObjectContextManager;
class TvDbDataLinkManager;
class TvDbImpDatabase;

namespace base {
class Clock;
class FileOps;
} // namespace base

namespace db {
class DatabaseImpl;
}

/// The format version in which a drawing is written; the numbers are part of the interface.
namespace TvDb {
enum TvDbDwgVersion {
    kUnknownVersion = 0,
    kAc1015 = 23, ///< 2000
    kAc1018 = 25, ///< 2004
    kAc1021 = 27, ///< 2007
    kAc1024 = 29, ///< 2010
    kAc1027 = 31, ///< 2013
    kAc1032 = 33, ///< 2018, the current one
    kCurrentVersion = kAc1032,
};

/// How a drawing file is opened.
enum ReadMode {
    kReadAndWrite = 1,    ///< fails with FileInUse while somebody else has it open for writing
    kReadAllShare = 3,    ///< whoever else has it open
    kShareNoWrite = 0x20, ///< as 1, for looking only
    kShareAll = 0x40,     ///< as 3
};

enum class SymbolTable { Block, Layer, TextStyle, Linetype, View, Ucs, Viewport, RegApp, DimStyle };
} // namespace TvDb

/// A drawing: its objects by handle, its header variables, its named objects, its history.
///
/// Opening a drawing reads its file header, its classes and the map of its objects; an object is
/// decoded when somebody opens it. A save in the version that the drawing came in copies every
/// object that was not changed bit for bit; what nobody understands stays as it is. A save that
/// could not keep everything fails, with a reason (lastFailure), and the file stays as it was.
///
/// Its objects belong to it and go with it. One thread.
class TvDbDatabase
{
public:
    /// @param buildDefault  a new drawing of the current version, with layers, styles and layouts
    ///                      that every drawing has; otherwise empty, to be read into.
    /// @param noDocument    belongs to no document of the editor.
    explicit TvDbDatabase(bool buildDefault = true, bool noDocument = false);
    ~TvDbDatabase();
    TvDbDatabase(const TvDbDatabase&) = delete;
    TvDbDatabase& operator=(const TvDbDatabase&) = delete;

    // Files

    /// Reads a drawing, DWG or DXF by its content.
    /// @pre the database is empty (made with false).
    /// @param mode      TvDb::ReadMode.
    /// @param password  protected drawings cannot be read: not looked at.
    /// @return Ok; FileNotFound; FileInUse; FileNotReadable. lastFailure() says more.
    TvStatusCode readDwgFile(const TvString& path, int mode = TvDb::kReadAllShare,
                             bool allowCodePageConversion = false,
                             const TvChar* password = nullptr);
    /// The same from bytes in memory.
    TvStatusCode readDwgBytes(std::vector<std::uint8_t> bytes);
    /// Reads the database of an open document of that name, if there is one, as it is now;
    /// otherwise the file.
    TvStatusCode readDbByDocName(const TvString& path);
    /// Ends the use of the file that was read (it may be replaced and opened by others now).
    /// Everything is in memory already, so the drawing stays whole.
    TvStatusCode closeInput(bool closeFile = true);

    /// Writes the drawing to a file of format DWG, atomically: the old or the new file, whole.
    /// @param backup   keep the file that is replaced beside it, with the extension ".bak".
    /// @param version  TvDb::TvDbDwgVersion; 0: the version it was read in.
    /// @return Ok; FileInUse; FileReadOnly; FileChanged when it is the file it was read from and
    ///         somebody changed that since; VersionNotWritable; FileNotWritable. lastFailure() says
    ///         more.
    TvStatusCode saveAs(const TvString& path, bool backup = false, int version = 0,
                        const void* securityParameters = nullptr);
    /// The same as DXF text.
    TvStatusCode dxfOut(const TvString& path, int version = 0);
    /// The bytes of such a file.
    base::Result<std::vector<std::uint8_t>> toBytes(db::FileFormat format, int version = 0);
    /// Why the last reading or writing failed.
    const base::Status& lastFailure() const;

    /// The path it was read from or last saved to; empty for a new one.
    TvString getFilename() const;
    TvStatusCode getFilename(TvString& out) const;
    TvString getFileName() const { return getFilename(); }
    /// The path it was read from.
    const TvChar* originalFileName() const;
    /// TvDb::TvDbDwgVersion of the file it was read from; of a new one the current version.
    int originalFileVersion() const;
    bool isDocumentDatabase() const;
    /// Something differs from the file it was read from or last saved to.
    bool isModified() const;

    // Objects

    /// The object of that handle. @param createIfNotFound  must be false.
    /// @return UnknownHandle when there is none; an erased one is given.
    TvStatusCode getTvDbObjectId(TvDbObjectId& out, bool createIfNotFound, TvDbHandle handle,
                                 std::uint32_t = 0) const;
    /// The object of that handle; null when there is none. O(log n).
    TvDbObjectId find(std::uint64_t handle) const;
    /// Puts an object that its maker owns into the database, which owns it from then on, with a new
    /// handle; it is open for writing then. @param owner  null: none.
    TvStatusCode addTvDbObject(TvDbObjectId& out, TvDbObject* object, TvDbObjectId owner = {});
    /// All objects that are not erased, by ascending handle.
    std::vector<TvDbObjectId> objectIds() const;
    std::size_t approxNumObjects() const;
    /// The next handle to be given out.
    TvDbHandle handseed() const;

    TvDbObjectId namedObjectsDictionaryId() const;
    TvStatusCode getNamedObjectsDictionary(TvDbDictionary*& out,
                                           TvDb::OpenMode mode = TvDb::kForRead);
    TvDbObjectId layoutDictionaryId() const;
    TvStatusCode getLayoutDictionary(TvDbDictionary*& out, TvDb::OpenMode mode = TvDb::kForRead);
    TvDbObjectId tableStyleDictionaryId() const;
    TvStatusCode getTableStyleDictionary(TvDbDictionary*& out,
                                         TvDb::OpenMode mode = TvDb::kForRead);
    TvDbObjectId plotSettingsDictionaryId() const;
    TvDbObjectId groupDictionaryId() const;
    TvDbObjectId scaleListDictionaryId() const;

    TvDbObjectId symbolTableId(TvDb::SymbolTable table) const;
    /// Opens the symbol table that has the class @p T.
    template <class T>
    TvStatusCode getSymbolTable(T*& out, TvDb::OpenMode mode = TvDb::kForRead)
    {
        return tvdbOpenObject(out, symbolTableId(T::kTable), mode);
    }
    TvDbObjectId modelSpaceId() const;
    /// The paper space of the paper layout that was active last.
    TvDbObjectId paperSpaceId() const;
    /// modelSpaceId() or paperSpaceId(), by tilemode.
    TvDbObjectId currentSpaceId() const;

    // Header variables

    /// On: model space is shown.
    bool tilemode() const;
    TvStatusCode setTilemode(bool on);
    /// Universal time.
    TvDbDate tdcreate() const;
    TvDbDate tdupdate() const;
    /// A span: days and milliseconds of editing.
    TvDbDate tdindwg() const;
    TvDbObjectId clayer() const;
    TvDbObjectId textstyle() const;
    std::int64_t insunits() const;
    db::Point extmin() const;
    db::Point extmax() const;
    /// All header variables, for looking.
    const db::Record& headerRecord() const;
    /// For changing; undone like changes of objects.
    db::RecordEditor editHeader();

    // History

    bool undoRecording() const;
    /// While on, changes are no part of the history: undoing what was before them leaves them.
    void disableUndoRecording(bool disable);
    /// What comes from here on is undone together.
    void startUndoRecord();
    bool hasUndo() const;
    bool hasRedo() const;
    /// NothingToUndo when there is nothing; WasOpenForWrite while an object is being changed.
    TvStatusCode undo();
    TvStatusCode redo();
    /// How many undo() lead to the beginning of the history.
    int undoDepth() const;
    /// What came after the first @p depth steps of the history is one step from now on. Nothing
    /// while a transaction is open.
    void joinUndo(int depth);
    TvDbTransactionManager* transactionManager() const;

    void addReactor(TvDbDatabaseReactor* reactor) const;
    void removeReactor(TvDbDatabaseReactor* reactor) const;

    // Blocks

    /// Copies the whole drawing, as it is now, into a new one: every object, those that nobody
    /// understands too.
    /// @param out  the caller's. Null when it fails.
    TvStatusCode wblock(TvDbDatabase*& out);
    /// Copies the content of @p block and all that it needs into a new drawing of the same version,
    /// as its model space; the block's base point becomes the drawing's.
    ///
    /// What an object owns and what it points to as indispensable comes along; any other reference
    /// is kept if its target came along, too.
    /// @param out  the caller's. Null when it fails.
    /// @return InvalidInput for what is no block of this drawing; NotApplicable for an external
    ///         reference, or when there are viewports among what would be copied; NotUnderstood
    ///         when something is kept as bytes, and so cannot be copied: nothing is left out
    ///         silently. lastFailure() names it.
    TvStatusCode wblock(TvDbDatabase*& out, TvDbObjectId block);
    /// The same for single entities; @p basePoint becomes the base point of the drawing.
    TvStatusCode wblock(TvDbDatabase*& out, const std::vector<TvDbObjectId>& entities,
                        const TvGePoint3d& basePoint);
    /// Copies the model space of @p source into this drawing, as a block of that name (replacing
    /// the content of one that is there), with all that it needs. Layers, styles, linetypes, blocks
    /// and other things with names that are there already stay, and are used.
    ///
    /// @param preserveSource  either way @p source stays what it is.
    /// @return as wblock(); InvalidName; InvalidInput when the block would hold itself;
    ///         VersionNotWritable when something has no form in this drawing's version. Then
    ///         nothing was changed.
    TvStatusCode insert(TvDbObjectId& blockId, const TvChar* blockName, TvDbDatabase* source,
                        bool preserveSource = true);
    /// Copies entities of another drawing, or of this one, to the end of @p block, which is one of
    /// this drawing. Within one drawing only what they own is copied.
    /// @param mapping  what became of what.
    TvStatusCode wblockCloneObjects(const std::vector<TvDbObjectId>& entities, TvDbObjectId block,
                                    TvDbIdMapping& mapping);

    TvDbObjectContextManager* objectContextManager() const;
    TvDbDataLinkManager* getDataLinkManager() const;
    TvDbImpDatabase* impDatabase() const;

    db::DatabaseImpl& impl() const { return *m_impl; } ///< for this room

private:
    std::unique_ptr<db::DatabaseImpl> m_impl;
};

/// Is told what happens to a drawing and its objects. Not owned by the database.
class TvDbDatabaseReactor : public TvRxObject
{
    TVRX_DECLARE_MEMBERS(TvDbDatabaseReactor)

    ~TvDbDatabaseReactor() override;
    virtual void objectAppended(const TvDbDatabase*, const TvDbObject*) {}
    virtual void objectOpenedForModify(const TvDbDatabase*, const TvDbObject*) {}
    /// At the object's close, once for all changes since it was opened.
    virtual void objectModified(const TvDbDatabase*, const TvDbObject*) {}
    virtual void objectErased(const TvDbDatabase*, const TvDbObject*, bool /*erasing*/) {}
    virtual void headerSysVarChanged(const TvDbDatabase*, const TvString& /*name*/) {}
    virtual void databaseToBeDestroyed(const TvDbDatabase*) {}
};

/// The header variables of a drawing, as far as parts of the host set them one by one.
class TvDbHeaderVar
{
public:
    explicit TvDbHeaderVar(TvDbDatabase& database) : m_database(database) {}
    TvDbObjectId paperSpace() const;
    TvStatusCode setpaperSpace(TvDbObjectId block);

private:
    TvDbDatabase& m_database;
};

/// The database as the host's own parts use it.
class TvDbImpDatabase
{
public:
    explicit TvDbImpDatabase(TvDbDatabase& database) : m_database(database), m_header(database) {}
    /// @param flags  0x20: fails with FileInUse while somebody has it open for writing; 0x40: opens
    /// anyway.
    TvStatusCode readDwgFile(const TvString& path, int flags);
    TvDbHeaderVar* headerVar() { return &m_header; }

private:
    TvDbDatabase& m_database;
    TvDbHeaderVar m_header;
};

/// Where the host's own parts reach behind the interface.
class TvDbSystemInternals
{
public:
    static TvDbImpDatabase* getImpDatabase(TvDbDatabase* database);
    /// The object that keeps the values; here the object itself.
    static TvDbObject* getImpObject(TvDbObject* object) { return object; }
};

namespace db {

/// The drawings that are open in the program: supplied by whoever keeps documents.
class OpenDocuments
{
public:
    virtual ~OpenDocuments() = default;
    /// Null when there is none of that path.
    virtual TvDbDatabase* databaseOf(const TvString& path) = 0;
};
/// Null: nobody keeps any. Not owned.
void setOpenDocuments(OpenDocuments* documents);

/// Writes the drawing as saveAs() and dxfOut() do, but never over a file that is there, be it one
/// that appears in the last moment (FileNotWritable, with the failure Exists).
/// @param version  as saveAs().
TvStatusCode saveNew(TvDbDatabase& database, const TvString& path, FileFormat format,
                     int version = 0);

/// Disk and clock of all databases; tests put their own there. Null: the system's. Not owned.
void setDatabaseEnvironment(base::FileOps* ops, base::Clock* clock);

} // namespace db
