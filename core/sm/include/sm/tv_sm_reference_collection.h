#pragma once

#include <vector>

#include <sm/tv_sm_file_reference.h>

/// An ordered list of references.
///
/// References are shared, not copied. The sheet set's lists own theirs; a view category's list
/// points at references of the sheet set's callout blocks, at the same objects, before and after a
/// save. Removing a reference from its owning list removes it from the lists that point at it.
class TvSmReferenceCollection : public TvSmPersist
{
    TVRX_DECLARE_MEMBERS(TvSmReferenceCollection)

    TvSmReferenceCollection() = default;
    ~TvSmReferenceCollection() override;

    /// Puts @p reference at the end. A reference that another list owns is pointed at; any other
    /// becomes this list's; one that stands here already stays where it is. False for null.
    virtual bool add(TvSmFileReference* reference);
    /// False when it does not stand in this list.
    virtual bool remove(TvSmFileReference* reference);
    virtual TvSmEnumerator<TvSmFileReference>* getEnumerator() const;

private:
    friend struct sm::Internals;
    void drop(TvSmFileReference* reference);
    std::vector<TvSmFileReference*> m_references; // owned by the database
};
