#pragma once

#include <cstdlib>
#include <memory>
#include <unordered_map>

#include "container.h"
#include "paged_format.h"

namespace dwg {

struct FreeBytes {
    void operator()(std::uint8_t* bytes) const { std::free(bytes); }
};

/// The 2004 family: sections cut into pages, most of them packed. A page is unpacked when its bytes
/// are asked for.
class PagedContainer : public Container
{
public:
    struct Page { // of one section
        std::uint32_t number = 0;
        std::uint32_t packedSize = 0;
        std::uint64_t offset = 0;   // in the section
        std::uint64_t address = 0;  // in the file
        std::uint64_t diskSize = 0; // with its head
        enum class State : std::uint8_t { Packed, Unpacked, Damaged } state = State::Packed;
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

    base::Result<Bytes> section(std::size_t index) override;
    std::uint64_t objectAreaSize() const override;
    std::uint64_t objectAreaBegin() const override { return 4; }
    base::Result<Bytes> objectArea(std::uint64_t offset, std::uint64_t size) override;
    std::uint16_t codePage() const override;
    void checkAll() override;
    bool sameSection(std::string_view name, const Container& other) const override;
    bool sameObjectArea(std::uint64_t offset, std::uint64_t size,
                        const Container& other) const override;

    Bytes file() const { return m_file; }
    /// Of sections(), at the same positions.
    const std::vector<Descriptor>& descriptors() const { return m_descriptors; }
    /// The page's unpacked bytes, as many as the section's page size says; fails when it is
    /// damaged.
    base::Result<Bytes> unpacked(std::size_t section, std::size_t page);
    /// Whether both checksums of a page are right.
    bool isSound(const Descriptor& descriptor, const Page& page) const;
    /// Bytes of pages unpacked so far.
    std::uint64_t unpackedBytes() const { return m_unpackedBytes; }

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
    base::Result<std::vector<std::uint8_t>> systemPage(std::uint64_t address, std::uint32_t type);
    Bytes packedBytes(const Page& page) const;
    bool unpackInto(const Descriptor& descriptor, const Page& page,
                    std::span<std::uint8_t> out) const;
    base::Status unpackRange(std::size_t section, std::uint64_t begin, std::uint64_t end);
    bool makeBuffer(std::size_t section);
    bool samePages(const Descriptor& mine, const Descriptor& theirs, const PagedContainer& other,
                   std::uint64_t begin, std::uint64_t end) const;

    Bytes m_file;
    paged::Head m_head;
    std::unordered_map<std::uint32_t, Place> m_places; // by page number
    std::vector<Descriptor> m_descriptors;
    std::vector<std::unique_ptr<std::uint8_t, FreeBytes>> m_buffers; // of m_descriptors
    std::size_t m_objects = 0;    // position of the objects' section
    std::uint64_t m_promised = 0; // bytes that all sections unpack to
    std::uint64_t m_unpackedBytes = 0;
};

} // namespace dwg
