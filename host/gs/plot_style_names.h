#pragma once

#include <cstdint>
#include <unordered_map>

#include <db/record.h>

class TvDbDatabase;

namespace gs {

class ListWriter;

/// The plot styles of a drawing that plots by their names, not by colours: of others, none.
class PlotStyleNames
{
public:
    /// None.
    PlotStyleNames() = default;
    /// Gives the names to the list; those after the 255th are the usual style.
    PlotStyleNames(TvDbDatabase& database, ListWriter& writer);

    bool isEmpty() const { return m_numbers.empty(); }
    /// The number among the list's names of the style that @p placeholder stands for; 0, the usual
    /// one, when it is none.
    std::uint8_t number(std::uint64_t placeholder) const;
    /// Of an entity on a layer of style @p byLayer, in an insert of style @p byBlock.
    std::uint8_t ofEntity(const db::RecordView& entity, std::uint8_t byLayer,
                          std::uint8_t byBlock) const;

private:
    std::unordered_map<std::uint64_t, std::uint8_t> m_numbers; // by handle of the placeholder
};

} // namespace gs
