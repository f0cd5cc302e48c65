#pragma once

#include <map>
#include <set>
#include <unordered_map>
#include <unordered_set>

#include <db/convert.h>
#include <db/record_editor.h>

namespace db {

/// The wide forms of records begin here: texts of UTF-16, and with them some records of another
/// shape.
inline constexpr Version kWideTexts = Version::Ac1021;

/// One record's way from one version into another.
struct Step {
    Version from, to;

    /// Whether the way leads up over @p version, which brought something.
    bool reaches(Version version) const { return from < version && to >= version; }
    /// Whether it leads down from there.
    bool leaves(Version version) const { return from >= version && to < version; }
    bool crosses(Version version) const { return reaches(version) || leaves(version); }
};

/// What was seen of the whole drawing.
struct Conversion::Data {
    struct Neighbours {
        std::uint64_t previous = 0, next = 0;
    };

    explicit Data(Version target) : to(target) {}

    Version to;
    std::uint64_t namedObjects = 0, paperSpace = 0, linetypeTable = 0;
    std::unordered_map<std::uint64_t, Neighbours> neighbours;              // into AC1015
    std::unordered_map<std::uint64_t, std::vector<std::uint64_t>> content; // of blocks of layouts
    std::unordered_set<std::uint64_t> viewports;
    std::unordered_map<std::uint64_t, std::uint64_t> viewportHeaders; // by their viewports
    std::map<std::uint64_t, std::u16string> views;
    std::vector<std::uint64_t> linetypes, blocks; // in the order of their tables
    std::uint64_t byLayer = 0, byBlock = 0;       // linetypes
    std::uint64_t summaryRecord = 0, acadApplication = 0;
    std::set<std::uint64_t> summaries; // records of AC1015 that look like one
    std::map<std::u16string, std::uint64_t> namedEntries;
    std::set<std::uint64_t> superseded;
    std::uint64_t viewportTable = 0;
    std::vector<Record> additions;
};

/// Texts, colours and references anywhere in the record take the form of the version.
void convertFields(Record& record, const Step& step);
/// What all objects, or all entities, have in common.
void convertCommon(Record& record, const Step& step, const Conversion::Data& data);
/// What is particular to the record's class.
void convertClass(Record& record, const Step& step, const Conversion::Data& data);

/// Classes with a form of their own in some versions.
void convertTableStyle(Record& record, const Step& step);
void convertVisualStyle(Record& record, const Step& step);
void convertColumns(Record& mtext, const Step& step, std::uint64_t acadApplication);

/// Whether something in the record has no form in the version.
bool hasObstacle(const Record& record, const Step& step);

} // namespace db
