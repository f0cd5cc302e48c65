#pragma once

#include <memory>
#include <string>
#include <unordered_map>

#include <db/tv_db_object.h>

/// Walks over the entries of a dictionary, in its order, over those that are not erased. Looks at
/// the dictionary as it was when the walk began.
class TvDbDictionaryIterator
{
public:
    bool done() const { return m_at >= m_entries.size(); }
    bool next()
    {
        ++m_at;
        return !done();
    }
    /// Empty and null when done.
    TvString name() const { return done() ? TvString() : m_entries[m_at].first; }
    TvDbObjectId objectId() const { return done() ? TvDbObjectId() : m_entries[m_at].second; }
    /// Opens the entry.
    template <class T>
    TvStatusCode getObject(T*& out, TvDb::OpenMode mode = TvDb::kForRead)
    {
        return tvdbOpenObject(out, objectId(), mode);
    }

private:
    friend class TvDbDictionary;
    std::vector<std::pair<TvString, TvDbObjectId>> m_entries;
    std::size_t m_at = 0;
};

/// Objects by name. Names are equal without regard to case, and keep the letters they were given.
///
/// Entries stand in the order of the file; a new one is put where it belongs by name if the others
/// stand in that order, else at the end.
class TvDbDictionary : public TvDbObject
{
    TVRX_DECLARE_MEMBERS(TvDbDictionary)

    TvDbDictionary();
    ~TvDbDictionary() override;

    /// KeyNotFound when there is no such entry, or its object is erased. O(1).
    TvStatusCode getAt(const TvString& name, TvDbObjectId& out) const;
    template <class T>
    TvStatusCode getAt(const TvString& name, T*& out, TvDb::OpenMode mode = TvDb::kForRead) const
    {
        out = nullptr;
        TvDbObjectId id;
        const TvStatusCode status = getAt(name, id);
        return status == TvStatus::Ok ? tvdbOpenObject(out, id, mode) : status;
    }
    bool has(const TvString& name) const;
    bool has(TvDbObjectId id) const;
    /// KeyNotFound when none of its entries leads there.
    TvStatusCode nameAt(TvDbObjectId id, TvString& out) const;
    std::uint32_t numEntries() const;

    /// Puts the object in under that name, in the place of what stood there, which is erased if
    /// this dictionary owns it. A new object comes into the database, owned by this, and is open
    /// for writing.
    /// @param object  stays the caller's when this fails.
    /// @pre open for writing, in a database.
    TvStatusCode setAt(const TvString& name, TvDbObject* object, TvDbObjectId& out);
    /// Takes the entry out; its object is erased if this dictionary owns it. KeyNotFound when there
    /// is none.
    TvStatusCode remove(const TvString& name);
    TvStatusCode remove(TvDbObjectId id);
    /// Gives an entry another name. DuplicateName when that is taken by another one; a change of
    /// case only is none of a name.
    TvStatusCode setName(const TvString& oldName, const TvString& newName);

    /// The caller's.
    TvDbDictionaryIterator* newIterator() const;
    /// All entries that are not erased, in order.
    std::vector<std::pair<TvString, TvDbObjectId>> entries() const;

    bool isTreatElementsAsHard() const;
    TvStatusCode setTreatElementsAsHard(bool hard);

protected:
    explicit TvDbDictionary(const char* className);
    void subReload() override;

private:
    struct NoCaseHash {
        std::size_t operator()(const std::u16string& text) const;
    };
    struct NoCaseEqual {
        bool operator()(const std::u16string& a, const std::u16string& b) const;
    };
    /// Position of the entry of that name; -1: none.
    int find(std::u16string_view name) const;
    TvStatusCode removeEntry(std::uint32_t index);

    // Made at the first question, forgotten at each change of an entry.
    mutable std::unordered_map<std::u16string, std::uint32_t, NoCaseHash, NoCaseEqual> m_index;
    mutable bool m_isIndexed = false;
};

/// A dictionary that answers every name: with its default where it has no entry.
class TvDbDictionaryWithDefault : public TvDbDictionary
{
    TVRX_DECLARE_MEMBERS(TvDbDictionaryWithDefault)
    TvDbDictionaryWithDefault() : TvDbDictionary("ACDBDICTIONARYWDFLT") {}
    TvDbObjectId defaultId() const;
    TvStatusCode setDefaultId(TvDbObjectId id);
};
