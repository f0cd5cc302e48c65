#pragma once

#include <vector>

#include <sm/tv_sm_component.h>
#include <sm/tv_sm_file_reference.h>

/// A named view that stands on a sheet.
class TvSmSheetView : public TvSmComponent
{
    TVRX_DECLARE_MEMBERS(TvSmSheetView)

    TvSmSheetView() = default;
    ~TvSmSheetView() override;

    /// Null when none was set; setting null drops it.
    virtual TvSmTvDbViewReference* getViewReference() const;
    virtual bool setViewReference(TvSmTvDbViewReference* reference);
    /// The category the view stands in; null when none was set, or it was removed from the set.
    virtual TvSmViewCategory* getCategory() const;
    /// Null takes the view out of its category. False for a category of another database.
    virtual bool setCategory(TvSmViewCategory* category);
    virtual TvString getNumber(TvString& out) const;
    TvString getNumber() const;
    virtual bool setNumber(const TvString& number);
    virtual TvString getTitle(TvString& out) const;
    TvString getTitle() const;
    virtual bool setTitle(const TvString& title);

private:
    friend struct sm::Internals;
    sm::StoredText m_number;
    sm::StoredText m_title;
    TvSmTvDbViewReference* m_reference = nullptr; // the database's
    std::uint64_t m_category = 0; // by handle: a category that comes back is found again
};

/// The views of one sheet, in the order in which they were added.
class TvSmSheetViews : public TvSmComponent
{
    TVRX_DECLARE_MEMBERS(TvSmSheetViews)

    TvSmSheetViews() = default;
    ~TvSmSheetViews() override;

    virtual TvSmEnumerator<TvSmSheetView>* getEnumerator() const;
    /// Puts @p view at the end, out of the sheet that it stood on. False for null.
    virtual bool add(TvSmSheetView* view);
    /// False when it does not stand here.
    virtual bool remove(TvSmSheetView* view);

private:
    friend struct sm::Internals;
    std::vector<TvSmSheetView*> m_views; // the database's
};
