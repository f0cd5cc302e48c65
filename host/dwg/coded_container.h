#pragma once

#include <unordered_map>

#include "coded_format.h"
#include "lazy_sections.h"

namespace dwg {

/// The 2007 container: pages in Reed-Solomon blocks, or in the clear where other programs look at
/// an address.
class CodedContainer : public LazySections
{
public:
    struct Page {                 // of one section
        std::uint64_t offset = 0; // in the section
        std::uint64_t slot = 0;   // as told; of no use
        std::uint64_t id = 0;
        std::uint64_t size = 0; // unpacked
        std::uint64_t packedSize = 0;
        std::uint64_t sum = 0, crc = 0;
        std::uint64_t address = 0, diskSize = 0; // in the file
    };
    struct Descriptor { // of one section, as the section map has it
        std::uint64_t size = 0, pageSize = 0, encrypted = 0, hash = 0, encoding = 4;
        std::u16string name;     // with its NUL
        std::vector<Page> pages; // ascending offsets
    };
    static constexpr std::uint64_t kPlain = 1; // encodings
    static constexpr std::uint64_t kBlocks = 4;

    /// @param file  must outlive this.
    static base::Result<std::unique_ptr<CodedContainer>> open(Bytes file);
    /// One with the sections that every file has, all of them without content.
    /// @param head  the first 0x480 bytes of a file; must outlive this.
    static std::unique_ptr<CodedContainer> blank(Bytes head);
    /// A section of this name that has no content yet; nullopt when its hash is not known.
    static std::optional<Descriptor> newDescriptor(std::string_view name);

    std::uint16_t codePage() const override;
    bool isSound(std::size_t section, std::size_t page) const override;
    Bytes diskBytes(std::size_t section, std::size_t page) const override;

    Bytes file() const { return m_file; }
    const coded::Record& record() const { return m_record; }
    /// Of sections(), at the same positions.
    const std::vector<Descriptor>& descriptors() const { return m_descriptors; }

protected:
    bool unpackPage(std::size_t section, std::size_t page,
                    std::span<std::uint8_t> out) const override;
    bool isContentRight(std::size_t section, std::size_t page, Bytes content) const override;

private:
    struct Place { // of a page in the file
        std::uint64_t address = 0, size = 0;
    };

    explicit CodedContainer(Bytes file) : m_file(file) {}
    base::Status readRecords();
    base::Status readPageMap();
    base::Status readSectionMap();
    bool addPlaces(Bytes map);
    bool addDescriptors(Bytes map);
    bool addPages(class ByteReader& reader, std::uint64_t count, Descriptor& descriptor);
    bool isPossible(const Descriptor& descriptor) const;
    void keep(Descriptor descriptor, std::string name);
    std::vector<std::uint8_t> packedBytes(const Descriptor& descriptor, const Page& page) const;

    Bytes m_file;
    coded::Record m_record;
    std::unordered_map<std::uint64_t, Place> m_places; // by page id
    std::vector<Descriptor> m_descriptors;
};

} // namespace dwg
