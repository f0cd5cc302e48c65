#pragma once

#include <vector>

#include <db/tv_db_database.h>

/// A link from cells of tables to data that a data adapter fetches.
class TvDbDataLink : public TvDbObject
{
    TVRX_DECLARE_MEMBERS(TvDbDataLink)

    TvDbDataLink() : TvDbObject("DATALINK") {}

    /// The key that its drawing lists it under; empty while it is not listed.
    TvString name() const;
    TvString description() const;
    TvStatusCode setDescription(const TvString& text);
    TvString getToolTip() const;
    TvStatusCode setToolTip(const TvString& text);
    /// Which adapter can fetch the data.
    TvString dataAdapterId() const;
    TvStatusCode setDataAdapterId(const TvString& id);
    /// What the adapter needs to know; its own language.
    TvString connectionString() const;
    TvStatusCode setConnectionString(const TvString& text);
    int option() const;
    TvStatusCode setOption(int option);
    int updateOption() const;
    TvStatusCode setUpdateOption(int option);

private:
    TvString text(const char* field) const;
    TvStatusCode setText(const char* field, const TvString& value);
    TvStatusCode setInteger(const char* field, int value);
};

/// The data links of a drawing, which it lists by name in a dictionary of its own; that is made
/// with the first one.
class TvDbDataLinkManager
{
public:
    explicit TvDbDataLinkManager(TvDbDatabase& database) : m_database(database) {}

    /// Null while the drawing has no links.
    TvDbObjectId dictionaryId() const;
    int dataLinkCount() const;
    /// In the order of the list.
    std::vector<TvDbObjectId> getDataLinks() const;
    /// KeyNotFound when there is none of that name, in any case.
    TvStatusCode getDataLink(const TvString& name, TvDbObjectId& out) const;
    TvStatusCode getDataLink(const TvString& name, TvDbDataLink*& out,
                             TvDb::OpenMode mode = TvDb::kForRead) const;
    /// Puts a new link into the drawing; it is open for writing.
    /// @param link  stays the caller's when this fails.
    /// @return InvalidInput for null; InvalidName; DuplicateName; NotUnderstood when the list
    ///         cannot be changed.
    TvStatusCode addDataLink(const TvString& name, TvDbDataLink* link, TvDbObjectId& out);
    /// A new link of that name with that adapter, closed.
    TvStatusCode createDataLink(const TvString& name, const TvString& adapterId,
                                const TvString& connection, TvDbObjectId& out);
    TvStatusCode removeDataLink(const TvString& name);

private:
    TvDbDatabase& m_database;
};
