#pragma once

#include <base/large_memory.h>

#include "container.h"

namespace dwg {

/// Sections that are cut into pages, each page unpacked when its bytes are asked for.
///
/// A container of this kind says where the pages lie and how one is unpacked; what is kept, when,
/// and how two files are compared without unpacking is the same for all.
class LazySections : public Container
{
public:
    enum class PageState : std::uint8_t { Packed, Unpacked, Damaged };
    struct PageRange {                      // of one page in its section
        std::uint64_t offset = 0, size = 0; // unpacked
        std::uint32_t number = 0;           // in the file
        PageState state = PageState::Packed;
        std::uint64_t end() const { return offset + size; }
    };

    base::Result<Bytes> section(std::size_t index) override;
    std::uint64_t objectAreaSize() const override { return m_sections[m_objects].size; }
    std::uint64_t objectAreaBegin() const override { return 4; }
    base::Result<Bytes> objectArea(std::uint64_t offset, std::uint64_t size) override;
    void checkAll() override;
    bool sameSection(std::string_view name, const Container& other) const override;
    std::uint64_t sameObjectsUntil(std::uint64_t offset, const Container& other) const override;

    /// The pages of a section in ascending order of their offsets.
    const std::vector<PageRange>& pages(std::size_t section) const { return m_pages[section]; }
    /// The position of the page that begins at @p offset; the number of pages when there is none.
    std::size_t pageAt(std::size_t section, std::uint64_t offset) const;
    /// A page's bytes; fails when it is damaged.
    base::Result<Bytes> unpacked(std::size_t section, std::size_t page);
    /// Whether the checksums of a page are right.
    virtual bool isSound(std::size_t section, std::size_t page) const = 0;
    /// A page's bytes as they lie in the file, without what depends on the place; empty when
    /// outside of it.
    virtual Bytes diskBytes(std::size_t section, std::size_t page) const = 0;
    /// Bytes of all pages unpacked so far.
    std::uint64_t unpackedBytes() const { return m_unpackedBytes; }

protected:
    /// Fills all of @p out with a page's bytes; false when it is damaged, whatever is in @p out
    /// then.
    virtual bool unpackPage(std::size_t section, std::size_t page,
                            std::span<std::uint8_t> out) const = 0;
    /// Whether a checksum over a page's unpacked bytes is right, in a container that has such.
    virtual bool isContentRight(std::size_t, std::size_t, Bytes) const { return true; }
    /// Adds a section after its bounds were checked. The pages are sorted by their offsets.
    void addSection(std::string name, std::uint64_t size, std::vector<PageRange> pages);
    /// What all sections together would take; for the limit on a file's unpacked size.
    std::uint64_t promisedBytes() const { return m_promised; }
    /// Finds the objects; fails when there is no section of them.
    base::Status findObjects();

private:
    base::LargeMemory bufferFor(std::size_t section) const;
    base::Status unpackRange(std::size_t section, std::uint64_t begin, std::uint64_t end);
    base::Status unpackOne(std::size_t section, std::size_t page);
    void keepAtHand(std::uint64_t begin, std::uint64_t end);
    std::size_t firstPageReaching(std::size_t section, std::uint64_t offset) const;
    std::uint64_t samePagesUntil(std::size_t mine, std::size_t theirs, const LazySections& other,
                                 std::uint64_t offset) const;

    std::vector<std::vector<PageRange>> m_pages; // of m_sections
    std::vector<std::uint64_t> m_bufferSizes;    // of m_sections
    std::vector<base::LargeMemory> m_buffers;    // of m_sections
    std::size_t m_objects = 0;                   // position of the section with the objects
    std::uint64_t m_promised = 0;
    std::uint64_t m_unpackedBytes = 0;
};

} // namespace dwg
