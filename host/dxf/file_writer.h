#pragma once

#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include <db/drawing_file.h>

#include "dxf_file.h"
#include "group_writer.h"
#include "object_writer.h"
#include "record_origin.h"

namespace dxf {

/// Writes a drawing as text.
///
/// In the version of a text file that it came from, objects that were not changed are copied group
/// by group; all others are written from their records.
class FileWriter
{
public:
    FileWriter(const db::Contents& contents, db::Version version);

    /// Fails with Unsupported, naming the classes, when objects are known as bits only.
    base::Status write();
    const std::string& text() const { return m_out.out(); }

    /// Where the groups of an object stand that was written from its record.
    struct Written {
        std::uint64_t handle;
        std::size_t begin, end;
    };
    const std::vector<Written>& written() const { return m_written; }
    /// All objects that were written.
    const std::set<std::uint64_t>& handles() const { return m_done; }

    /// The groups of one object, written from its record.
    base::Result<std::string> groupsOf(std::uint64_t handle);

private:
    enum class Place { Table, Control, Entity, Object, Nowhere };
    struct Known {
        const db::ClassDef* classDef = nullptr;
        std::string className;
        bool isChanged = false;
        bool isEntity = false;
    };

    base::Status prepare();
    base::Status learnObjects();
    base::Status finishSurvey();
    base::Status learnBlocks();
    void learnLayouts();
    void learnNames();
    void learnRenames();
    bool mayCopy(std::uint64_t handle, const Known& known) const;
    Known knownOf(std::uint64_t handle) const;
    base::Result<db::Record> record(std::uint64_t handle) { return m_records.record(handle); }

    base::Status writeSections();
    void writeHeaderSection();
    void writeClasses();
    base::Status writeTables();
    base::Status writeTable(Table table);
    base::Status writeBlocks();
    base::Status writeEntities();
    base::Status writeObjects();
    void writeOtherSections();
    void writePreview();
    base::Status writeEntity(std::uint64_t handle);
    base::Status writeOwned(const db::Record& block);
    base::Status writeObject(std::uint64_t handle);
    base::Status writeRecord(std::uint64_t handle, std::size_t& begin);
    void copyGroups(std::string_view groups);
    base::Status leftOut() const;

    const db::Contents& m_contents;
    const db::Version m_version;
    const DxfFile* m_origin = nullptr; // in the same version, or null
    RecordOrigin m_records;
    const TextCoding m_coding;
    GroupWriter m_out;
    RecordSource m_source;
    ObjectWriter m_writer;
    std::map<std::uint64_t, Known> m_objects;
    std::vector<std::uint64_t> m_blocks; // model space and active paper space first
    std::map<std::uint64_t, std::u16string> m_blockNames;
    std::map<std::u16string, std::u16string> m_renamed[kTableCount]; // folded, from the old name
    bool m_hasRenamed = false;
    db::Record m_looked; // for the writer's questions about other objects
    std::vector<Written> m_written;
    std::set<std::uint64_t> m_done;
};

} // namespace dxf
