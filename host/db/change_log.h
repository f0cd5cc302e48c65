#pragma once

#include <cstdint>
#include <unordered_map>
#include <vector>

#include <db/record.h>

namespace db {

class DatabaseImpl;
struct ObjectSlot;

/// What a drawing's objects were before they changed: the history for undo and redo, and the
/// transactions that are open.
///
/// Invariants:
///  1. A part of the history holds each object once, as it was when that part began.
///  2. Going back exchanges the images with the objects: a part that was undone holds what redo
///     needs.
///  3. A change that is not recorded is put into the images as well, so that going back does not
///     take it away.
class ChangeLog
{
public:
    explicit ChangeLog(DatabaseImpl& database) : m_database(database)
    {
        beginPart(m_current);
        beginPart(m_unrecorded);
    }

    /// To be called before the first change of the object in the part that currentPart() tells.
    /// @param slot  null: the header variables.
    void note(ObjectSlot* slot, const Record& before, bool wasErased);
    std::uint64_t currentPart() const;

    bool isRecording() const { return m_isRecording; }
    void setRecording(bool on);

    void startUndoRecord();
    bool hasUndo() const { return !m_current.images.empty() || !m_undo.empty(); }
    bool hasRedo() const { return !m_redo.empty(); }
    bool undo();
    bool redo();
    /// How many undo() there are to the beginning.
    int depth() const
    {
        return static_cast<int>(m_undo.size()) + (m_current.images.empty() ? 0 : 1);
    }
    /// What came after the first @p depth steps is one step from now on.
    void join(int depth);

    void startTransaction();
    void endTransaction();
    void abortTransaction();
    int transactions() const { return static_cast<int>(m_transactions.size()); }

private:
    struct Image {
        ObjectSlot* slot; // null: the header variables
        Record record;
        bool isErased;
        bool isRecorded;
    };
    struct Part {
        std::uint64_t serial = 0;
        std::vector<Image> images;
        std::unordered_map<ObjectSlot*, std::size_t> places;
    };

    void beginPart(Part& part);
    /// What was noted so far has to be noted again, by objects that are still open.
    void renew();
    /// Puts what was not recorded into the images (3).
    void settleUnrecorded();
    static void add(Part& part, Image image);
    /// Images and objects change places, the last one first.
    void exchange(Part& part);
    void mergeDown(Part part);
    void patchImages(ObjectSlot* slot, const Record& before, const Record& now);

    DatabaseImpl& m_database;
    std::uint64_t m_lastSerial = 0;
    bool m_isRecording = true;
    Part m_current;
    Part m_unrecorded;
    std::vector<Part> m_undo, m_redo, m_transactions;
};

/// Makes in @p image the change that leads from @p before to @p now: entries of dictionaries and
/// lists of references one by one, other fields as a whole.
void applyDifference(const Record& before, const Record& now, Record& image);

} // namespace db
