#pragma once

#include <memory>
#include <utility>
#include <vector>

namespace sm {

/// One change, kept so that it can be undone and done again. toggle() exchanges the state before
/// with the state after; it is only ever called in exact order.
class JournalStep
{
public:
    virtual ~JournalStep() = default;
    virtual void toggle() = 0;
};

/// The changes since the lock was taken.
///
/// Objects keep their addresses through a rollback, and nothing is copied when the lock is taken:
/// each step holds only what it replaced.
class Journal
{
public:
    bool isEmpty() const { return m_steps.empty(); }
    void clear() { m_steps.clear(); }
    void add(std::unique_ptr<JournalStep> step) { m_steps.push_back(std::move(step)); }

    /// Notes that @p field is about to change; call before changing it.
    template <class T>
    void keep(T& field);

    /// Back to the state of the lock, and forgets the steps.
    void rollBack()
    {
        toggleBackwards();
        m_steps.clear();
    }
    /// Shows the state of the lock for as long as it lives, then the changed one again.
    class CommittedView
    {
    public:
        explicit CommittedView(Journal& journal) : m_journal(journal)
        {
            m_journal.toggleBackwards();
        }
        ~CommittedView() { m_journal.toggleForwards(); }
        CommittedView(const CommittedView&) = delete;
        CommittedView& operator=(const CommittedView&) = delete;

    private:
        Journal& m_journal;
    };

private:
    void toggleBackwards()
    {
        for (auto step = m_steps.rbegin(); step != m_steps.rend(); ++step)
            (*step)->toggle();
    }
    void toggleForwards()
    {
        for (auto& step : m_steps)
            step->toggle();
    }
    std::vector<std::unique_ptr<JournalStep>> m_steps;
};

/// A field that was changed: holds the other value.
template <class T>
class FieldStep : public JournalStep
{
public:
    FieldStep(T& field, T other) : m_field(field), m_other(std::move(other)) {}
    void toggle() override
    {
        using std::swap;
        swap(m_field, m_other);
    }

private:
    T& m_field; // of an object that the database keeps
    T m_other;
};

/// An entry that was put into, or taken out of, a vector.
template <class T>
class EntryStep : public JournalStep
{
public:
    /// @param present  whether the entry stands in the vector now.
    EntryStep(std::vector<T>& entries, std::size_t index, T entry, bool present)
        : m_entries(entries), m_index(index), m_entry(std::move(entry)), m_present(present)
    {
    }
    void toggle() override
    {
        const auto at = m_entries.begin() + static_cast<std::ptrdiff_t>(m_index);
        if (m_present) {
            m_entry = std::move(*at);
            m_entries.erase(at);
        } else {
            m_entries.insert(at, std::move(m_entry));
        }
        m_present = !m_present;
    }

private:
    std::vector<T>& m_entries;
    std::size_t m_index;
    T m_entry; // meaningful while not present
    bool m_present;
};

template <class T>
void Journal::keep(T& field)
{
    add(std::make_unique<FieldStep<T>>(field, field));
}

} // namespace sm
