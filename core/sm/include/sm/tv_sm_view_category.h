#pragma once

#include <vector>

#include <sm/tv_sm_component.h>
#include <sm/tv_sm_reference_collection.h>

/// A group of sheet views with a list of callout blocks of its own.
class TvSmViewCategory : public TvSmComponent
{
    TVRX_DECLARE_MEMBERS(TvSmViewCategory)

    TvSmViewCategory() = default;
    ~TvSmViewCategory() override;

    /// The views that stand in the category, in the order of the sheets in the set; the default
    /// category takes those that have none of their own.
    /// @note O(1) once the set's views were grouped; the first call after a change groups them,
    /// O(views of the set).
    virtual TvSmEnumerator<TvSmSheetView>* getSheetViewEnumerator() const;
    /// Never null. Points at references of the sheet set's callout blocks.
    virtual TvSmReferenceCollection* getCalloutBlocks() const;

private:
    friend struct sm::Internals;
    mutable sm::Part<TvSmReferenceCollection> m_callouts;
    bool m_isDefault = false;
};

/// The categories of a sheet set, in the order in which they were added.
class TvSmViewCategories : public TvSmComponent
{
    TVRX_DECLARE_MEMBERS(TvSmViewCategories)

    TvSmViewCategories() = default;
    ~TvSmViewCategories() override;

    virtual TvSmEnumerator<TvSmViewCategory>* getEnumerator() const;
    /// @param reserved  0.
    /// @return false for null; one that stands here already stays where it is.
    virtual bool add(TvSmViewCategory* category, int reserved);
    /// The category for views that have none of their own: the marked one; while none is marked,
    /// the first with an empty name, which the next commit marks, so that a later rename keeps it.
    /// Null when there is neither.
    virtual TvSmViewCategory* getDefaultCategory() const;
    /// False when it does not stand here. Its views have no category until it comes back.
    virtual bool remove(TvSmViewCategory* category);

private:
    friend struct sm::Internals;
    std::vector<TvSmViewCategory*> m_categories; // the database's
};
