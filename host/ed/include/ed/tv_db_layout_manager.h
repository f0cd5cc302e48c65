#pragma once

#include <vector>

#include <db/tv_db_layout.h>

/// Is told what happens to layouts through the manager. Not owned by it.
class TvDbLayoutManagerReactor : public TvRxObject
{
    TVRX_DECLARE_MEMBERS(TvDbLayoutManagerReactor)

    virtual void layoutCreated(const TvChar* name, TvDbObjectId layout);
    virtual void layoutToBeRemoved(const TvChar* name, TvDbObjectId layout);
    virtual void layoutRemoved(const TvChar* name, TvDbObjectId layout);
    virtual void layoutToBeRenamed(const TvChar* before, const TvChar* after, TvDbObjectId layout);
    virtual void layoutRenamed(const TvChar* before, const TvChar* after, TvDbObjectId layout);
    /// A new layout that is like another one; layoutCreated() is not told then.
    virtual void layoutCopied(const TvChar* source, TvDbObjectId sourceLayout, const TvChar* copy,
                              TvDbObjectId copiedLayout);
    /// The tabs stand in another order.
    virtual void layoutsReordered(TvDbDatabase* database);
    /// Another layout is shown, however that came about (CTAB, TILEMODE, a deleted layout).
    virtual void layoutSwitched(const TvChar* name, TvDbObjectId layout);
};

/// The layouts of drawings: found, made, changed and shown by name.
///
/// One for the program, made by it (the document manager has one); stands behind
/// tvdbHostApplicationServices()->layoutManager(). Where a database may be null, the working one is
/// meant; without one the answer is NoDatabase, or nothing. Names are equal without regard to case.
/// What fails changes nothing and is told to nobody but those of "to be".
class TvDbLayoutManager : public TvRxObject
{
    TVRX_DECLARE_MEMBERS(TvDbLayoutManager)

    TvDbLayoutManager();
    ~TvDbLayoutManager() override;
    TvDbLayoutManager(const TvDbLayoutManager&) = delete;
    TvDbLayoutManager& operator=(const TvDbLayoutManager&) = delete;

    /// Shows a layout. KeyNotFound when there is none of that name.
    TvStatusCode setCurrentLayout(const TvString& name, TvDbDatabase* database = nullptr);
    /// NotThatObject for what is no layout of a drawing.
    TvStatusCode setCurrentLayoutId(TvDbObjectId layout);
    /// The name of the layout that is shown. @param allowModel  false: while model space is shown,
    /// the paper layout that was active last.
    TvString findActiveLayout(bool allowModel, TvDbDatabase* database = nullptr) const;
    TvDbObjectId activeLayoutId(TvDbDatabase* database = nullptr) const;
    /// The block of the layout that is shown.
    TvDbObjectId getActiveLayoutBTRId(TvDbDatabase* database = nullptr) const;

    /// Null when there is none.
    TvDbObjectId findLayoutNamed(const TvString& name, TvDbDatabase* database = nullptr) const;
    /// Opens it. KeyNotFound when there is none.
    TvStatusCode findLayoutNamed(const TvString& name, TvDbLayout*& out,
                                 TvDb::OpenMode mode = TvDb::kForRead,
                                 TvDbDatabase* database = nullptr) const;
    bool layoutExists(const TvString& name, TvDbDatabase* database = nullptr) const;
    /// The model layout counts.
    int countLayouts(TvDbDatabase* database = nullptr) const;

    /// A new, empty paper layout behind the others. @return as db::addLayout().
    TvStatusCode createLayout(const TvString& name, TvDbObjectId& layout, TvDbObjectId& block,
                              TvDbDatabase* database = nullptr);
    /// @return as TvDbLayout::setLayoutName(), KeyNotFound.
    TvStatusCode renameLayout(const TvString& name, const TvString& newName,
                              TvDbDatabase* database = nullptr);
    /// Erases it with all that is on it. If it is shown, the one that takes its place in the order
    /// of the tabs is shown then.
    /// @return KeyNotFound; NameReserved for the model layout; StillInUse for the last one of
    /// paper.
    TvStatusCode deleteLayout(const TvString& name, TvDbDatabase* database = nullptr);
    /// A paper layout with a copy of all that is on @p source. @return as db::copyLayout(),
    /// KeyNotFound.
    TvStatusCode copyLayout(const TvString& source, const TvString& newName,
                            TvDbDatabase* database = nullptr);
    /// The same with a place among the tabs. @param place  from 1; 0: behind the others.
    TvStatusCode cloneLayout(TvDbObjectId source, const TvString& newName, int place,
                             TvDbObjectId& out);
    /// Gives a layout another place among the tabs. @return as db::placeLayout().
    TvStatusCode moveLayout(TvDbObjectId layout, int place);

    /// Null and a reactor that is there already are nothing.
    void addReactor(TvDbLayoutManagerReactor* reactor);
    void removeReactor(TvDbLayoutManagerReactor* reactor);

    /// For who shows another layout: tells it.
    void fireLayoutSwitched(TvDbObjectId layout);

private:
    template <class Tell>
    void forEach(Tell tell);
    std::vector<TvDbLayoutManagerReactor*> m_reactors;
};
