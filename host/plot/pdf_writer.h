#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <base/content_hash.h>

#include "spool.h"

namespace plot {

/// Writes a PDF object by object, each when it is made: what stays of one is where it lies.
///
/// Objects may name each other before they are written. Small ones are packed together, streams
/// stand by themselves. The same objects in the same order give the same bytes.
class PdfWriter
{
public:
    /// @param folder  where the bytes wait, see Spool.
    explicit PdfWriter(TvString folder);

    /// A number for an object that is written later. One that never is counts as null.
    int reserve();
    /// Writes the object with that number, once.
    void write(int number, std::string_view object);
    /// The same with a number of its own, which is returned.
    int write(std::string_view object);
    /// @param entries  of the stream's dictionary beside its length and its packing.
    /// @param isPacked  @p bytes are a zlib stream.
    /// @return its number.
    int writeStream(std::string_view entries, std::string_view bytes, bool isPacked);
    /// Ends the file. @param root, info  numbers of the catalogue and of what it says of itself.
    base::Status finish(int root, int info);
    /// How writing went so far. After a failure nothing more is written.
    const base::Status& status() const { return m_status; }
    /// What was written.
    const Spool& file() const { return m_file; }

private:
    /// Where an object is.
    struct Place {
        enum Kind : std::uint8_t { kNowhere = 0, kInFile = 1, kPacked = 2 }; // as the file says it
        Kind kind = kNowhere;
        std::uint8_t index = 0; ///< among those that are packed together
        std::uint64_t at = 0;   ///< offset, or the number of what holds it
    };
    void put(std::string_view bytes);
    void putStream(int number, std::string_view entries, std::string_view bytes, bool isPacked);
    void flushPacked();
    std::string rowsOfPlaces(int width) const;

    Spool m_file;
    base::Status m_status;
    base::ContentHasher m_hash;
    std::vector<Place> m_places; // by number
    std::string m_packed;        // small objects that wait
    std::vector<std::pair<int, std::size_t>> m_packedStarts;
};

/// "12 0 R": an object as others name it.
std::string pdfReference(int number);
/// A text for people, in any script.
std::string pdfText(const TvString& text);
/// A number with so many decimals at most.
std::string pdfReal(double value, int decimals);

} // namespace plot
