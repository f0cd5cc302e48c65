#pragma once

#include <base/status.h>

#include "database_state.h"

namespace pugi {
class xml_document;
}

namespace sm {

/// The parsed text of a .dst file. Objects keep slices of its buffer; the tree may go once they are
/// made.
class DstDocument
{
public:
    DstDocument();
    ~DstDocument();
    DstDocument(const DstDocument&) = delete;
    DstDocument& operator=(const DstDocument&) = delete;

    /// Parses in place: @p bytes are decoded where they stand.
    /// @param path  for the reason of a failure.
    base::Status parse(std::vector<std::byte> bytes, const TvString& path);
    const pugi::xml_document& tree() const { return *m_tree; }
    const TvString& path() const { return m_path; }
    void dropTree();
    /// The text that slices point into, handed over.
    std::vector<std::byte> takeBuffer() { return std::move(m_buffer); }

private:
    std::vector<std::byte> m_buffer;
    std::unique_ptr<pugi::xml_document> m_tree;
    TvString m_path;
};

/// Makes the objects that @p document describes, in @p state.
///
/// An object that @p state knows by its handle, of the same class, is filled anew and keeps its
/// address; the others are made.
/// @return why the file makes no sense; then @p state holds half of it, and is to be thrown away.
/// So a state with objects in it
///         is only read into after the same document was read into a fresh one.
base::Status readObjects(const DstDocument& document, DatabaseState& state);

} // namespace sm
