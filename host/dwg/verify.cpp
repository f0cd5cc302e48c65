#include "verify.h"

#include <algorithm>

#include "byte_stream.h"
#include "preview_block.h"

namespace dwg {

namespace {

constexpr std::size_t kPreviewFieldAt = 0x0D;

std::vector<std::uint8_t> copyOf(Bytes bytes)
{
    return {bytes.begin(), bytes.end()};
}

std::uint64_t previewAddress(const RawDrawing& drawing)
{
    return readU32(drawing.fileBytes().data() + kPreviewFieldAt);
}

// A section's bytes without the places that tell where something lies in its file.
std::vector<std::uint8_t> placeless(std::string_view name, Bytes bytes, std::uint64_t address,
                                    Version version)
{
    auto copy = copyOf(bytes);
    if (name == section::kPreview)
        movePreview(copy, address, 0);
    if (name == section::kObjFreeSpace && version == Version::Ac1015 && copy.size() >= 20)
        putU32(copy.data() + 16, 0);
    return copy;
}

class Verifier
{
public:
    Verifier(const SavePlan& plan, const RawDrawing& saved) : m_plan(plan), m_saved(saved) {}

    bool allRight() { return shellRight() && seedRight() && sectionsRight() && objectsRight(); }

private:
    bool shellRight() const
    {
        const auto found = m_saved.findings();
        return found.empty() && m_saved.version() == m_plan.source.version() &&
               m_saved.codePage() == m_plan.source.codePage();
    }

    bool seedRight() const
    {
        const auto& objects = m_saved.objects();
        return m_saved.header().handSeed() == m_plan.header.handSeed() &&
               (objects.empty() || objects.back().handle < m_saved.header().handSeed());
    }

    bool sectionsRight() const
    {
        for (const std::string& name : m_plan.source.sectionNames())
            if (!m_plan.changed(name) && !keptSectionRight(name))
                return false;
        return std::all_of(m_plan.sections.begin(), m_plan.sections.end(),
                           [&](const auto& s) { return sectionIs(s.first, s.second, 0); });
    }

    bool keptSectionRight(const std::string& name) const
    {
        if (name == section::kHandles || name == section::kObjects || name == section::kSignature)
            return true;
        if (m_plan.source.container().sameSection(name, m_saved.container()))
            return true;
        const auto old = m_plan.source.section(name);
        return !old || sectionIs(name, *old, previewAddress(m_plan.source));
    }

    bool sectionIs(const std::string& name, Bytes expected, std::uint64_t address) const
    {
        const auto bytes = m_saved.section(name);
        if (!bytes)
            return false;
        const Version version = m_saved.version();
        return placeless(name, *bytes, previewAddress(m_saved), version) ==
               placeless(name, expected, address, version);
    }

    bool objectsRight()
    {
        const auto planned = objectsInFileOrder(m_plan);
        if (planned.size() != m_saved.objects().size())
            return false;
        for (std::size_t i = 0; i < planned.size(); ++i) {
            const bool hasNext = i + 1 < planned.size() && !isNew(planned[i + 1]);
            const std::uint64_t next = hasNext ? planned[i + 1].oldOffset : ~std::uint64_t(0);
            if (!objectRight(planned[i], next))
                return false;
        }
        return true;
    }

    bool isNew(const PlannedObject& object) const { return !m_plan.source.find(object.handle); }

    // @param next  where the next object of the source begins, or beyond everything
    bool objectRight(const PlannedObject& object, std::uint64_t next)
    {
        if (!object.record && staysInPlace(object, next))
            return true;
        const auto now = m_saved.objectBytes(object.handle);
        if (!now)
            return false;
        if (object.record)
            return std::equal(now->begin(), now->end(), object.record->begin(),
                              object.record->end());
        const auto before = m_plan.source.objectBytes(object.handle);
        return before && std::equal(now->begin(), now->end(), before->begin(), before->end());
    }

    // Whether nothing changed from the object up to the one behind it. Pages that were taken over
    // as they are need not be unpacked for this, and an object that nobody can read is kept this
    // way too.
    bool staysInPlace(const PlannedObject& object, std::uint64_t next)
    {
        Container& before = m_plan.source.container();
        Container& now = m_saved.container();
        const ObjectLocation* location = m_saved.find(object.handle);
        if (!location || location->offset != object.oldOffset)
            return false;
        const std::uint64_t begin = object.oldOffset;
        const std::uint64_t oldEnd = std::min(next, before.objectAreaSize());
        const std::uint64_t end = std::min(oldEnd, now.objectAreaSize());
        if (begin >= end)
            return begin >= oldEnd; // outside of the old area it cannot change either
        if (begin < m_sameFrom || m_sameUntil <= begin) {
            m_sameFrom = begin;
            m_sameUntil = before.sameObjectsUntil(begin, now);
        }
        if (end <= m_sameUntil && oldEnd == end)
            return true;
        const auto oldBytes = before.objectArea(begin, end - begin);
        const auto newBytes = now.objectArea(begin, end - begin);
        return oldEnd == end && oldBytes && newBytes &&
               std::equal(oldBytes->begin(), oldBytes->end(), newBytes->begin(), newBytes->end());
    }

    const SavePlan& m_plan;
    const RawDrawing& m_saved;
    // Where both areas of objects were found to be the same: asked for one piece after the other.
    std::uint64_t m_sameFrom = 0, m_sameUntil = 0;
};

} // namespace

base::Status verifyPlan(const SavePlan& plan, const std::vector<std::uint8_t>& saved)
{
    const auto drawing = RawDrawing::openBorrowed(saved);
    if (drawing && Verifier(plan, *drawing).allRight())
        return {};
    return {base::Failure::Damaged, base::Reason::DwgVerifyFailed};
}

} // namespace dwg
