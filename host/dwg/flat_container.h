#pragma once

#include <memory>
#include <optional>

#include "container.h"
#include "second_header.h"

namespace dwg {

/// AC1015: everything lies plain in the file, at the places that a few records tell.
class FlatContainer : public Container
{
public:
    struct Record { // a row of the file header
        std::uint8_t number = 0;
        std::uint32_t offset = 0, size = 0;
    };

    /// @param file  must outlive this.
    static base::Result<std::unique_ptr<FlatContainer>> open(Bytes file);
    /// One without content. @param head  the file header, whose records tell nothing; must outlive
    /// this.
    static std::unique_ptr<FlatContainer> blank(Bytes head);

    base::Result<Bytes> section(std::size_t index) override;
    std::uint64_t objectAreaSize() const override { return m_file.size(); }
    std::uint64_t objectAreaBegin() const override;
    base::Result<Bytes> objectArea(std::uint64_t offset, std::uint64_t size) override;
    std::uint16_t codePage() const override;
    void checkAll() override {}

    Bytes file() const { return m_file; }
    const std::vector<Record>& records() const { return m_records; }
    /// The record's bytes; empty when it is absent or lies outside.
    Bytes recordBytes(const Record& record) const;
    /// Where the preview block begins; 0 when there is none.
    std::uint32_t previewAddress() const { return m_previewAddress; }
    const std::optional<SecondHeader>& secondHeader() const { return m_secondHeader; }

    /// The name under which a record is a section: that of the later formats, or "Record:" and its
    /// number.
    static std::string nameOfRecord(std::uint8_t number);

private:
    explicit FlatContainer(Bytes file) : m_file(file) {}
    bool readRecords();
    void addSections();
    void addPreview();
    void findSecondHeader();

    struct Place {
        std::size_t offset = 0, size = 0;
        bool isInFile = true;
    };

    Bytes m_file;
    std::vector<Record> m_records;
    std::vector<Place> m_places; // of m_sections
    std::uint32_t m_previewAddress = 0;
    std::optional<SecondHeader> m_secondHeader;
};

} // namespace dwg
