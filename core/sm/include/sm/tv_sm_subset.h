#pragma once

#include <sm/tv_sm_component.h>
#include <sm/tv_sm_file_reference.h>

/// A group of sheets and further subsets, in an order that the user sets.
///
/// A move between subsets is: removeSheet or removeSubset on the old owner, insertComponent or
/// insertComponentAfter on the new one, then setOwner. A child taken out stays a valid object; a
/// deletion is the same removal without insertion. Inserting a child that still stands somewhere
/// takes it out there first.
class TvSmSubset : public TvSmComponent
{
    TVRX_DECLARE_MEMBERS(TvSmSubset)

    TvSmSubset() = default;
    ~TvSmSubset() override;

    /// The folder for new drawings of this subset; null means inherit. Setting null drops it.
    virtual TvSmFileReference* getNewSheetLocation() const;
    virtual bool setNewSheetLocation(TvSmFileReference* reference);
    /// The template and layout that new sheets copy; null means inherit.
    virtual TvSmTvDbLayoutReference* getDefaultTemplateLayout() const;
    virtual bool setDefaultTemplateLayout(TvSmTvDbLayoutReference* reference);
    virtual bool getPromptForTemplate() const;
    virtual bool setPromptForTemplate(bool prompt);
    /// Keeps all below this subset out of publishing. The sheet set's own flag means nothing.
    virtual bool getExcludeFromPublish() const;
    virtual bool setExcludeFromPublish(bool exclude);
    /// The direct children, in order: each is a TvSmSheet or a TvSmSubset.
    virtual TvSmEnumerator<TvSmComponent>* getSheetEnumerator() const;
    /// A new sheet that this subset owns and that is not in its order yet; null when the database
    /// refuses changes.
    virtual TvSmSheet* createSheet(const TvString& name, const TvString& description);
    /// Puts @p child just before @p before; with null, at the end.
    ///
    /// False, and nothing changed, for a null child, one that is neither sheet nor subset, one of
    /// another database or the sheet set itself, a @p before that is no child of this subset, a
    /// subset into itself or below itself, and for a tree of more than kMaxDepth levels. A child
    /// that is given as its own neighbour goes to the front, so that a drop "before the first" of
    /// the first itself loses nothing. @note O(depth).
    virtual bool insertComponent(TvSmComponent* child, TvSmComponent* before);
    /// Puts @p child just after @p after; with null, or the child itself, at the end. Refuses as
    /// insertComponent does.
    virtual bool insertComponentAfter(TvSmComponent* child, TvSmComponent* after);
    /// False when it is no direct child.
    virtual bool removeSheet(TvSmSheet* sheet);
    /// A new subset under this one, not in its order yet; null when the database refuses changes.
    virtual TvSmSubset* createSubset(const TvString& name, const TvString& description);
    /// Takes out the subset with all below it; false when it is no direct child.
    virtual bool removeSubset(TvSmSubset* subset);

    /// How deep subsets may be nested.
    static constexpr int kMaxDepth = 200;

private:
    friend struct sm::Internals;
    TvSmFileReference* m_location = nullptr;       // the database's
    TvSmTvDbLayoutReference* m_template = nullptr; // the same
    TvSmComponent* m_firstChild = nullptr;         // the same
    TvSmComponent* m_lastChild = nullptr;          // the same
    bool m_prompt = false;
    bool m_exclude = false;
};
