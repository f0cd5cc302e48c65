#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <base/status.h>
#include <db/record.h>

namespace db {

/// Texts of 8 bits write characters that their code page lacks as `\U+` and four hexadecimal
/// digits. @p text with those characters; anything else stays.
std::u16string withoutEscapes(std::u16string_view text);

/// Takes the records of a drawing into another version.
///
/// Every record is shown to it first (survey), since some things stand in another object there, or
/// are told by another one. Then each is converted. What the other version has no place for,
/// because it is newer than that version, takes the way that a reader of that version expects:
/// colours become the nearest of the 255, lists become chains. Nothing that is an object, a
/// geometry or a text is left out: where that would happen the object is an obstacle, and the
/// drawing must not be written.
///
/// A single record can be converted without a survey: then only what stands in it alone is.
class Conversion
{
public:
    explicit Conversion(Version to);
    ~Conversion();
    Conversion(const Conversion&) = delete;
    Conversion& operator=(const Conversion&) = delete;

    /// In any order. @p header first, when there is one. The lists of owners must be filled.
    void surveyHeader(const Record& header);
    void survey(const Record& record);
    /// After the last record. @p nextHandle: the first free one; raised by what must be made.
    void finishSurvey(std::uint64_t& nextHandle);

    /// Why @p record cannot be written in the version: a name for people, of its class or of what
    /// is in it; empty when it can.
    std::string obstacle(const Record& record) const;
    /// What takes its place stands elsewhere in the version: it is not written.
    bool isSuperseded(std::uint64_t handle) const;
    /// @pre it has no obstacle and is not superseded.
    base::Status convert(Record& record);
    void convertHeader(Record& header);
    /// Objects that the version needs beside those that were there, converted already.
    const std::vector<Record>& additions() const;

    struct Data;

private:
    std::unique_ptr<Data> m_data;
};

} // namespace db
