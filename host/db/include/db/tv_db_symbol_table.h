#pragma once

#include <memory>
#include <string>
#include <unordered_map>

#include <db/tv_db_database.h>

namespace TvDb {

/// How an external reference stands; the numbers are part of the interface.
enum XrefStatus {
    kXrfNotAnXref = 0,
    kXrfResolved = 1,     ///< its file is there and can be read
    kXrfUnloaded = 2,     ///< the user does not want to see it now
    kXrfFileNotFound = 4, ///< there is no such file
    /// The file cannot be read, or nobody looked for it: it lies on a network host that the user
    /// did not agree to, or the drawing that names it by a relative path has no place itself.
    kXrfUnresolved = 5,
};

} // namespace TvDb

class TvDbSymbolTable;

/// A record of a symbol table: something with a name that others refer to.
class TvDbSymbolTableRecord : public TvDbObject
{
    TVRX_DECLARE_MEMBERS(TvDbSymbolTableRecord)

    virtual TvString getName() const;
    TvStatusCode getName(TvString& out) const;
    /// InvalidName for an empty one or one of more than 255 units; DuplicateName when another
    /// record of the table has it.
    virtual TvStatusCode setName(const TvString& name);
    /// It came with an external reference.
    bool isDependent() const;
    /// StillInUse for blocks, layers, styles, linetypes and applications that the drawing or an
    /// object of it needs; to find that out, all objects are looked at.
    TvStatusCode erase(bool erasing = true) override;

protected:
    explicit TvDbSymbolTableRecord(const char* className) : TvDbObject(className) {}
    TvDbSymbolTableRecord() = default;
    void subErase(bool erasing) override;
    void subReload() override;
};

/// Walks over the records of a symbol table, in its order, over those that are not erased.
class TvDbSymbolTableIterator
{
public:
    void start() { m_at = 0; }
    bool done() const { return m_at >= m_ids.size(); }
    void step() { ++m_at; }
    TvDbObjectId getRecordId() const { return done() ? TvDbObjectId() : m_ids[m_at]; }
    template <class T>
    TvStatusCode getRecord(T*& out, TvDb::OpenMode mode = TvDb::kForRead) const
    {
        return tvdbOpenObject(out, getRecordId(), mode);
    }

private:
    friend class TvDbSymbolTable;
    std::vector<TvDbObjectId> m_ids;
    std::size_t m_at = 0;
};

/// The records of one kind, by name; names are equal without regard to case.
class TvDbSymbolTable : public TvDbObject
{
    TVRX_DECLARE_MEMBERS(TvDbSymbolTable)

    /// KeyNotFound when there is none. The first question reads the names of all records; after
    /// that O(1).
    TvStatusCode getIdAt(const TvString& name, TvDbObjectId& out) const;
    TvStatusCode getAt(const TvString& name, TvDbObjectId& out) const { return getIdAt(name, out); }
    template <class T>
    TvStatusCode getAt(const TvString& name, T*& out, TvDb::OpenMode mode = TvDb::kForRead) const
    {
        out = nullptr;
        TvDbObjectId id;
        const TvStatusCode status = getIdAt(name, id);
        return status == TvStatus::Ok ? tvdbOpenObject(out, id, mode) : status;
    }
    bool has(const TvString& name) const;
    /// Puts a new record into the table; it is open for writing.
    /// @param record  of the table's kind, with a name; stays the caller's when this fails.
    /// @return InvalidName; DuplicateName; NotApplicable for a record of another kind.
    TvStatusCode add(TvDbObjectId& out, TvDbSymbolTableRecord* record);
    TvStatusCode add(TvDbSymbolTableRecord* record);
    /// The caller's.
    TvStatusCode newIterator(TvDbSymbolTableIterator*& out) const;
    /// The records that are not erased, in order.
    std::vector<TvDbObjectId> recordIds() const;

    /// For records: a name changes.
    void noteRename(const TvString& before, const TvString& after, TvDbObjectId record) const;
    void forgetNames() const { m_isIndexed = false; }

protected:
    explicit TvDbSymbolTable(const char* className) : TvDbObject(className) {}
    TvDbSymbolTable() = default;
    void subReload() override { forgetNames(); }
    /// Fields of single records beside the list ("model_space").
    virtual std::vector<const char*> extraFields() const { return {}; }

private:
    TvStatusCode checkNew(const TvDbSymbolTableRecord& record) const;

    mutable std::unordered_map<std::u16string, TvDbObjectId> m_index; // by folded name
    mutable bool m_isIndexed = false;
};

/// Declares a symbol table: its class and its number.
#define TVDB_SYMBOL_TABLE(Class, dxfName, number)                                                  \
    class Class : public TvDbSymbolTable                                                           \
    {                                                                                              \
        TVRX_DECLARE_MEMBERS(Class)                                                                \
        static constexpr TvDb::SymbolTable kTable = TvDb::SymbolTable::number;                     \
        Class() : TvDbSymbolTable(dxfName) {}                                                      \
    };

TVDB_SYMBOL_TABLE(TvDbLayerTable, "LAYER_CONTROL", Layer)
TVDB_SYMBOL_TABLE(TvDbTextStyleTable, "STYLE_CONTROL", TextStyle)
TVDB_SYMBOL_TABLE(TvDbViewTable, "VIEW_CONTROL", View)
TVDB_SYMBOL_TABLE(TvDbUCSTable, "UCS_CONTROL", Ucs)
TVDB_SYMBOL_TABLE(TvDbViewportTable, "VPORT_CONTROL", Viewport)
TVDB_SYMBOL_TABLE(TvDbRegAppTable, "APPID_CONTROL", RegApp)
TVDB_SYMBOL_TABLE(TvDbDimStyleTable, "DIMSTYLE_CONTROL", DimStyle)

class TvDbLinetypeTable : public TvDbSymbolTable
{
    TVRX_DECLARE_MEMBERS(TvDbLinetypeTable)
    static constexpr TvDb::SymbolTable kTable = TvDb::SymbolTable::Linetype;
    TvDbLinetypeTable() : TvDbSymbolTable("LTYPE_CONTROL") {}

protected:
    std::vector<const char*> extraFields() const override { return {"byblock", "bylayer"}; }
};

class TvDbBlockTable : public TvDbSymbolTable
{
    TVRX_DECLARE_MEMBERS(TvDbBlockTable)
    static constexpr TvDb::SymbolTable kTable = TvDb::SymbolTable::Block;
    TvDbBlockTable() : TvDbSymbolTable("BLOCK_CONTROL") {}

    TvDbObjectId modelSpaceId() const;
    TvDbObjectId paperSpaceId() const;
    /// Makes @p block the paper space that the drawing shows; the one that was changes places with
    /// it in the list, and their names with them.
    /// @return InvalidInput for what is no layout's block; NotUnderstood, with nothing changed,
    /// when
    ///         one of the two holds an entity that cannot be changed.
    TvStatusCode setPaperSpaceId(TvDbObjectId block);

protected:
    std::vector<const char*> extraFields() const override { return {"model_space", "paper_space"}; }
};

class TvDbEntity;
class TvDbBlockTableRecord;

/// Walks over the entities of a block, in its order, over those that are not erased.
class TvDbBlockTableRecordIterator
{
public:
    void start() { m_at = 0; }
    bool done() const { return m_at >= m_ids.size(); }
    void step() { ++m_at; }
    TvDbObjectId getEntityId() const { return done() ? TvDbObjectId() : m_ids[m_at]; }
    TvStatusCode getEntity(TvDbEntity*& out, TvDb::OpenMode mode = TvDb::kForRead) const;

private:
    friend class TvDbBlockTableRecord;
    std::vector<TvDbObjectId> m_ids;
    std::size_t m_at = 0;
};

/// A block: entities under a name. Model space and the paper spaces are blocks too.
///
/// Drawings keep the names of the paper spaces that are not shown, and of blocks that programs
/// made, without their number ("*Paper_Space", "*D"); it stands in the name of the BLOCK entity
/// only. Here all names have it.
class TvDbBlockTableRecord : public TvDbSymbolTableRecord
{
    TVRX_DECLARE_MEMBERS(TvDbBlockTableRecord)

    TvDbBlockTableRecord() : TvDbSymbolTableRecord("BLOCK_HEADER") {}

    TvString getName() const override;
    using TvDbSymbolTableRecord::getName;
    /// Also of its BLOCK entity. A name that begins with an asterisk is that of no user's block:
    /// InvalidName, but for a record that is in no database yet; "*U" and the like then get the
    /// next free number when the record comes into its table.
    TvStatusCode setName(const TvString& name) override;
    /// Its entities in the order of the block, without erased ones.
    std::vector<TvDbObjectId> entityIds() const;
    /// The same in the order in which they are drawn.
    std::vector<TvDbObjectId> entityIdsInDrawOrder() const;
    /// The caller's.
    TvStatusCode newIterator(TvDbBlockTableRecordIterator*& out) const;
    /// Puts a new entity into the block, at the end; it is open for writing.
    /// @param entity  stays the caller's when this fails.
    TvStatusCode appendTvDbEntity(TvDbObjectId& out, TvDbEntity* entity);
    TvStatusCode appendTvDbEntity(TvDbEntity* entity);

    /// Null unless it is a layout's.
    TvDbObjectId getLayoutId() const;
    TvStatusCode setLayoutId(TvDbObjectId layout);
    bool isLayout() const { return !getLayoutId().isNull(); }
    bool isAnonymous() const;
    bool isFromExternalReference() const;
    bool isFromOverlayReference() const;
    /// The user does not want to see the reference now.
    bool isUnloaded() const;
    /// Looks whether the file is there, not into it: NotAnXref for any other block.
    TvDb::XrefStatus xrefStatus() const;
    bool hasAttributeDefinitions() const;
    /// Where the file of an external reference is, as it was written down; empty for other blocks.
    TvString pathName() const;
    /// InvalidInput for other blocks, and for an empty path.
    TvStatusCode setPathName(const TvString& path);
    TvString comments() const;
    db::Point origin() const;
    /// Block references of this block that are not erased.
    std::vector<TvDbObjectId> getBlockReferenceIds() const;
    TvDbObjectId blockBeginId() const;
    TvDbObjectId blockEndId() const;
    /// The picture of the block; none when it has none.
    db::Preview previewIcon() const;

protected:
    void subAppended() override;
};

class TvDbLayerTableRecord : public TvDbSymbolTableRecord
{
    TVRX_DECLARE_MEMBERS(TvDbLayerTableRecord)
    TvDbLayerTableRecord() : TvDbSymbolTableRecord("LAYER") {}
    bool isFrozen() const;
    bool isOff() const;
    bool isLocked() const;
    bool isPlottable() const;
    TvStatusCode setIsFrozen(bool on);
    TvStatusCode setIsOff(bool on);
    TvStatusCode setIsLocked(bool on);
    TvStatusCode setIsPlottable(bool on);
    TvDbObjectId linetypeObjectId() const;
    /// Its index in the table of 255 colours; 0 when it has a colour of another kind.
    int colorIndex() const;
    TvStatusCode setColorIndex(int index);
};

/// Declares a table record without operations of its own.
#define TVDB_SYMBOL_TABLE_RECORD(Class, dxfName)                                                   \
    class Class : public TvDbSymbolTableRecord                                                     \
    {                                                                                              \
        TVRX_DECLARE_MEMBERS(Class)                                                                \
        Class() : TvDbSymbolTableRecord(dxfName) {}                                                \
    };

TVDB_SYMBOL_TABLE_RECORD(TvDbTextStyleTableRecord, "STYLE")
TVDB_SYMBOL_TABLE_RECORD(TvDbLinetypeTableRecord, "LTYPE")
TVDB_SYMBOL_TABLE_RECORD(TvDbUCSTableRecord, "UCS")
TVDB_SYMBOL_TABLE_RECORD(TvDbViewportTableRecord, "VPORT")
TVDB_SYMBOL_TABLE_RECORD(TvDbRegAppTableRecord, "APPID")
TVDB_SYMBOL_TABLE_RECORD(TvDbDimStyleTableRecord, "DIMSTYLE")

/// A named view: of model space, or of one layout.
///
/// Category and layout have no field in drawings; they stand in an xrecord of the view's extension
/// dictionary (group codes 300 and 330).
class TvDbViewTableRecord : public TvDbSymbolTableRecord
{
    TVRX_DECLARE_MEMBERS(TvDbViewTableRecord)
    TvDbViewTableRecord() : TvDbSymbolTableRecord("VIEW") {}

    bool isPaperspaceView() const;
    TvStatusCode setIsPaperspaceView(bool paper);
    /// The layout that it belongs to; null when none is noted, or it is erased.
    TvDbObjectId getLayout() const;
    /// @param layout  null: none. @pre the view is in a database, as for setCategoryName().
    TvStatusCode setLayout(TvDbObjectId layout);
    /// The category that the view has in its sheet set; empty: none.
    TvStatusCode getCategoryName(TvString& out) const;
    TvString getCategoryName() const;
    TvStatusCode setCategoryName(const TvString& name);
    double height() const;
    double width() const;
    db::Point centerPoint() const;
    db::Point target() const;
    db::Point viewDirection() const;
    double viewTwist() const; ///< radians
    TvStatusCode setHeight(double height);
    TvStatusCode setWidth(double width);
    TvStatusCode setCenterPoint(const db::Point& center);
    /// The picture that was kept for it; none when there is none.
    db::Preview getThumbnail() const;
};
