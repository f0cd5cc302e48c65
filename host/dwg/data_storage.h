#pragma once

#include <unordered_map>

#include <db/drawing_file.h>

#include "dwg/bytes.h"

namespace dwg {

/// The section in which drawings from 2013 on keep bytes of objects outside their records: pictures
/// of layouts, bodies of solids. Cut into segments that an index finds.
class DataStorage
{
public:
    /// @param section  empty for a drawing without one; must outlive this. One that contradicts
    ///                 itself holds nothing.
    explicit DataStorage(Bytes section);

    /// The picture kept for the object; none when there is none or it is of a kind we do not know.
    db::Preview pictureOf(std::uint64_t handle) const;
    /// The body that a modeler wrote for the object, in binary; empty when there is none.
    std::vector<std::uint8_t> bodyOf(std::uint64_t handle) const;

private:
    Bytes segment(std::uint32_t index) const;
    void addRecord(std::uint32_t index, std::uint32_t place);
    std::vector<std::uint8_t> joinedPages(Bytes list) const;

    Bytes m_section;
    std::uint64_t m_indexAt = 0; // where the index of segments has its entries
    std::uint32_t m_segmentCount = 0;
    std::unordered_map<std::uint64_t, Bytes> m_data; // by handle; or the list of its pages
};

} // namespace dwg
