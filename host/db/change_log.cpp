#include "change_log.h"

#include "database_impl.h"
#include "object_slot.h"

namespace db {

void ChangeLog::beginPart(Part& part)
{
    part = Part();
    part.serial = ++m_lastSerial;
}

void ChangeLog::add(Part& part, Image image)
{
    if (part.places.emplace(image.slot, part.images.size()).second)
        part.images.push_back(std::move(image));
}

std::uint64_t ChangeLog::currentPart() const
{
    if (!m_transactions.empty())
        return m_transactions.back().serial;
    return m_isRecording ? m_current.serial : m_unrecorded.serial;
}

void ChangeLog::note(ObjectSlot* slot, const Record& before, bool wasErased)
{
    Part& part = !m_transactions.empty() ? m_transactions.back()
                 : m_isRecording         ? m_current
                                         : m_unrecorded;
    if (m_isRecording)
        m_redo.clear(); // what was undone cannot follow what happens now
    add(part, {slot, before, wasErased, m_isRecording});
}

void ChangeLog::setRecording(bool on)
{
    if (on == m_isRecording)
        return;
    settleUnrecorded();
    m_isRecording = on;
    renew();
}

void ChangeLog::renew()
{
    m_current.serial = ++m_lastSerial;
    if (!m_transactions.empty())
        m_transactions.back().serial = ++m_lastSerial;
}

void ChangeLog::settleUnrecorded()
{
    for (const Image& image : m_unrecorded.images)
        if (const Record* now = m_database.currentRecord(image.slot))
            patchImages(image.slot, image.record, *now);
    beginPart(m_unrecorded);
}

void ChangeLog::patchImages(ObjectSlot* slot, const Record& before, const Record& now)
{
    const auto patch = [&](Part& part) {
        const auto at = part.places.find(slot);
        if (at != part.places.end())
            applyDifference(before, now, part.images[at->second].record);
    };
    patch(m_current);
    for (Part& part : m_undo)
        patch(part);
    for (Part& part : m_redo)
        patch(part);
}

void ChangeLog::startUndoRecord()
{
    if (!m_current.images.empty())
        m_undo.push_back(std::move(m_current));
    beginPart(m_current);
}

void ChangeLog::exchange(Part& part)
{
    for (std::size_t i = part.images.size(); i-- > 0;) {
        Image& image = part.images[i];
        m_database.exchange(image.slot, image.record, image.isErased);
    }
}

bool ChangeLog::undo()
{
    if (!m_transactions.empty())
        return false;
    settleUnrecorded();
    startUndoRecord();
    if (m_undo.empty())
        return false;
    Part part = std::move(m_undo.back());
    m_undo.pop_back();
    exchange(part);
    m_redo.push_back(std::move(part));
    beginPart(m_current);
    return true;
}

bool ChangeLog::redo()
{
    if (!m_transactions.empty() || m_redo.empty())
        return false;
    settleUnrecorded();
    Part part = std::move(m_redo.back());
    m_redo.pop_back();
    // The images lie in the order of the changes; forwards or backwards is the same, since each
    // object is there once (1).
    exchange(part);
    m_undo.push_back(std::move(part));
    beginPart(m_current);
    return true;
}

void ChangeLog::join(int depth)
{
    if (depth < 0 || !m_transactions.empty())
        return;
    startUndoRecord();
    const auto first = static_cast<std::size_t>(depth);
    if (m_undo.size() <= first + 1)
        return;
    // The oldest image of each object is the one to go back to (1).
    for (std::size_t i = first + 1; i < m_undo.size(); ++i)
        for (Image& image : m_undo[i].images)
            add(m_undo[first], std::move(image));
    m_undo.erase(m_undo.begin() + static_cast<std::ptrdiff_t>(first) + 1, m_undo.end());
}

void ChangeLog::startTransaction()
{
    m_transactions.emplace_back();
    beginPart(m_transactions.back());
}

void ChangeLog::mergeDown(Part part)
{
    for (Image& image : part.images) {
        if (!m_transactions.empty()) {
            add(m_transactions.back(), std::move(image));
        } else if (image.isRecorded) {
            add(m_current, std::move(image));
        } else {
            const Record* now = m_database.currentRecord(image.slot);
            if (now)
                patchImages(image.slot, image.record, *now);
        }
    }
}

void ChangeLog::endTransaction()
{
    Part part = std::move(m_transactions.back());
    m_transactions.pop_back();
    mergeDown(std::move(part));
    renew(); // what is still open was noted in a part that is no more
}

void ChangeLog::abortTransaction()
{
    Part part = std::move(m_transactions.back());
    m_transactions.pop_back();
    exchange(part);
}

} // namespace db
