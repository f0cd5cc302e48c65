#pragma once

#include <unordered_map>

#include "lazy_sections.h"
#include "paged_format.h"

namespace dwg {

/// The 2004 family: pages behind small heads, most of them packed.
class PagedContainer : public LazySections
{
public:
    struct Page { // of one section
        std::uint32_t number = 0;
        std::uint32_t packedSize = 0;
        std::uint64_t offset = 0;   // in the section
        std::uint64_t address = 0;  // in the file
        std::uint64_t diskSize = 0; // with its head
    };
    struct Descriptor { // of one section, as the section map has it
        std::uint64_t size = 0;
        std::uint32_t pageSize = 0; // unpacked
        std::uint32_t unknown10 = 1;
        std::uint32_t mode = 2; // 1 stored, 2 packed
        std::uint32_t id = 0;
        std::uint32_t encrypted = 0;
        std::array<char, 64> name{};
        std::vector<Page> pages; // ascending offsets
    };

    /// @param file  must outlive this.
    static base::Result<std::unique_ptr<PagedContainer>> open(Bytes file);
    /// One with the sections that every file has, all of them without content.
    /// @param head  the first 0x80 bytes of a file; must outlive this.
    static std::unique_ptr<PagedContainer> blank(Bytes head);

    std::uint16_t codePage() const override;
    bool isSound(std::size_t section, std::size_t page) const override;
    Bytes diskBytes(std::size_t section, std::size_t page) const override;

    /// What stands before a page, which must lie in the file.
    paged::PageHead pageHead(std::size_t section, std::size_t page) const;

    Bytes file() const { return m_file; }
    /// Of sections(), at the same positions.
    const std::vector<Descriptor>& descriptors() const { return m_descriptors; }

protected:
    bool unpackPage(std::size_t section, std::size_t page,
                    std::span<std::uint8_t> out) const override;

private:
    struct Place { // of a page in the file
        std::uint64_t address = 0, size = 0;
    };

    explicit PagedContainer(Bytes file) : m_file(file) {}
    base::Status readHeads();
    base::Status readPageMap();
    base::Status readSectionMap();
    bool addPlaces(Bytes map);
    bool addDescriptors(Bytes map);
    bool addPages(class ByteReader& reader, std::uint32_t count, Descriptor& descriptor);
    bool isPossible(const Descriptor& descriptor) const;
    void keep(Descriptor descriptor, std::string name);
    base::Result<std::vector<std::uint8_t>> systemPage(std::uint64_t address, std::uint32_t type);
    Bytes m_file;
    paged::Head m_head;
    std::unordered_map<std::uint32_t, Place> m_places; // by page number
    std::vector<Descriptor> m_descriptors;
};

} // namespace dwg
