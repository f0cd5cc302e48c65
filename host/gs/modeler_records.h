#pragma once

#include <vector>

#include "modeler_tokens.h"

namespace gs {

/// What records are about, as far as we know.
enum class ModelerKind : std::uint8_t {
    Other,
    Body,
    Face,
    Loop,
    Coedge,
    Edge,
    Vertex,
    Point,
    EllipseCurve,
    SplineCurve,
    ConeSurface,
    SphereSurface,
    TorusSurface,
    Transform,
};

/// The values behind a record's name.
class ModelerRecord
{
public:
    /// The name of a part that only tells the number of another one.
    static constexpr std::string_view kReference = "ref";

    std::vector<ModelerValue> values;

    /// Numbers behind the last pointer: those before tell what belongs to whom.
    std::vector<double> numbers() const;
    /// The first flag; false when there is none.
    bool isReversed() const;
};

/// A body as its modeler wrote it: records that point to each other by their numbers.
///
/// Only where each begins is kept; one is read when it is asked for. All readings together are
/// limited to a multiple of the data, so that records that all point to one that is huge cost
/// nothing much.
class ModelerRecords
{
public:
    /// @param body  must outlive this. What cannot be understood ends it.
    explicit ModelerRecords(std::span<const std::uint8_t> body);

    std::size_t size() const { return m_entries.size(); }
    /// Other for a number that none has.
    ModelerKind kindOf(std::size_t record) const
    {
        return record < m_entries.size() ? m_entries[record].kind : ModelerKind::Other;
    }
    /// False when there is none, or too much was read already; @p out is empty then.
    bool read(std::size_t record, ModelerRecord& out);
    /// The part of some record that is the @p number th of all that may be referred to.
    bool readPart(std::size_t number, ModelerRecord& out);

    /// The record that the @p which th pointer to one of @p kind leads to; size() for none.
    std::size_t pointedTo(const ModelerRecord& from, ModelerKind kind, std::size_t which = 0) const;

private:
    struct Entry {
        std::uint32_t begin; // of the values behind its name
        ModelerKind kind;
    };
    bool addRecord();
    bool addPart(ModelerValue& next);
    bool readAt(std::size_t begin, bool isPart, ModelerRecord& out);

    std::unique_ptr<ModelerTokens> m_tokens;
    std::vector<Entry> m_entries;
    std::vector<std::uint32_t> m_parts; // where they begin
    std::size_t m_budget;               // values that may still be read
};

} // namespace gs
