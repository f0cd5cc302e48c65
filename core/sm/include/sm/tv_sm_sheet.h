#pragma once

#include <sm/tv_sm_component.h>
#include <sm/tv_sm_file_reference.h>
#include <sm/tv_sm_sheet_view.h>

/// One sheet: one paper-space layout of one drawing. Nothing derives from it.
class TvSmSheet final : public TvSmComponent
{
    TVRX_DECLARE_MEMBERS(TvSmSheet)

    TvSmSheet() = default;
    ~TvSmSheet() override;

    virtual TvString getNumber(TvString& out) const;
    TvString getNumber() const;
    virtual bool setNumber(const TvString& number);
    /// The title; until one was set, the name. An empty title that was set stays empty.
    virtual TvString getTitle(TvString& out) const;
    TvString getTitle() const;
    virtual bool setTitle(const TvString& title);
    /// Null when none was set; setting null drops it.
    virtual TvSmTvDbLayoutReference* getLayoutReference() const;
    virtual bool setLayoutReference(TvSmTvDbLayoutReference* reference);
    /// Keeps this sheet out of publishing.
    virtual bool getExcludeFromPublish() const;
    virtual bool setExcludeFromPublish(bool exclude);
    /// Never null.
    virtual TvSmSheetViews* getSheetViews() const;
    virtual TvString getSheetText1(TvString& out) const;
    virtual bool setSheetText1(const TvString& text);
    virtual TvString getSheetText2(TvString& out) const;
    virtual bool setSheetText2(const TvString& text);
    virtual TvString getSheetText3(TvString& out) const;
    virtual bool setSheetText3(const TvString& text);
    virtual TvString getSheetText4(TvString& out) const;
    virtual bool setSheetText4(const TvString& text);

private:
    friend struct sm::Internals;
    sm::StoredText m_number;
    sm::StoredText m_title;
    sm::StoredText m_texts[4];
    TvSmTvDbLayoutReference* m_layout = nullptr; // the database's
    mutable sm::Part<TvSmSheetViews> m_views;
    bool m_exclude = false;
};
