#pragma once

#include <vector>

#include <sm/tv_sm_component.h>

/// A named choice of sheets and subsets.
///
/// Remembers components by handle: one that was taken out of the set is left out of the walk, and
/// is in it again when it is inserted again.
class TvSmSheetSelection : public TvSmComponent
{
    TVRX_DECLARE_MEMBERS(TvSmSheetSelection)

    TvSmSheetSelection() = default;
    ~TvSmSheetSelection() override;

    /// Puts @p component at the end; one that is in already stays where it is, and counts as added.
    /// False for null and for a component of another database.
    virtual bool add(TvSmComponent* component);
    /// The components that are in the set now, in the order in which they were added.
    virtual TvSmEnumerator<TvSmComponent>* getEnumerator() const;
    /// False when it is not in the selection.
    virtual bool remove(TvSmComponent* component);

private:
    friend struct sm::Internals;
    std::vector<std::uint64_t> m_members; // handles
};

/// The named selections of a sheet set, in the order in which they were added.
class TvSmSheetSelections : public TvSmComponent
{
    TVRX_DECLARE_MEMBERS(TvSmSheetSelections)

    TvSmSheetSelections() = default;
    ~TvSmSheetSelections() override;

    /// A new, empty selection at the end; null when the database refuses changes. Names are not
    /// compared: that two selections have different names is a matter of the dialog that asks for
    /// one.
    virtual TvSmSheetSelection* add(const TvString& name, const TvString& description);
    virtual TvSmEnumerator<TvSmSheetSelection>* getEnumerator() const;
    /// False when it does not stand here.
    virtual bool remove(TvSmSheetSelection* selection);

private:
    friend struct sm::Internals;
    std::vector<TvSmSheetSelection*> m_selections; // the database's
};
