#pragma once

#include <sm/tv_sm_publish_options.h>
#include <sm/tv_sm_reference_collection.h>
#include <sm/tv_sm_sheet_selection.h>
#include <sm/tv_sm_subset.h>
#include <sm/tv_sm_view_category.h>

/// The root of a database's tree: a subset with what belongs to the set as a whole.
class TvSmSheetSet : public TvSmSubset
{
    TVRX_DECLARE_MEMBERS(TvSmSheetSet)

    TvSmSheetSet() = default;
    ~TvSmSheetSet() override;

    /// The template whose page setups can take the place of a sheet's own; null when none was set.
    virtual TvSmFileReference* getAltPageSetups() const;
    virtual bool setAltPageSetups(TvSmFileReference* reference);
    /// Containers are never null.
    virtual const TvSmSheetSelections* getSheetSelections() const;
    virtual TvSmSheetSelections* getSheetSelections();
    /// Folders with drawings to take model views from.
    virtual TvSmReferenceCollection* getResourceLocations() const;
    virtual const TvSmReferenceCollection* getCalloutBlocks() const;
    virtual TvSmReferenceCollection* getCalloutBlocks();
    virtual const TvSmViewCategories* getViewCategories() const;
    virtual TvSmViewCategories* getViewCategories();
    /// Null when none was set.
    virtual TvSmTvDbBlockRecordReference* getDefaultLabelBlock() const;
    virtual bool setDefaultLabelBlock(TvSmTvDbBlockRecordReference* reference);
    virtual TvSmPublishOptions* getPublishOptions() const;
    virtual TvString getSheetSetText1(TvString& out) const;
    virtual bool setSheetSetText1(const TvString& text);
    virtual TvString getSheetSetText2(TvString& out) const;
    virtual bool setSheetSetText2(const TvString& text);
    virtual TvString getSheetSetText3(TvString& out) const;
    virtual bool setSheetSetText3(const TvString& text);
    virtual TvString getSheetSetText4(TvString& out) const;
    virtual bool setSheetSetText4(const TvString& text);

private:
    friend struct sm::Internals;
    sm::StoredText m_texts[4];
    TvSmFileReference* m_altPageSetups = nullptr;         // the database's
    TvSmTvDbBlockRecordReference* m_labelBlock = nullptr; // the same
    mutable TvSmSheetSelections m_selections;
    mutable TvSmReferenceCollection m_resources;
    mutable TvSmReferenceCollection m_callouts;
    mutable TvSmViewCategories m_categories;
    mutable TvSmPublishOptions m_publishOptions;
};
