#pragma once

#include <string_view>
#include <unordered_map>
#include <vector>

#include <base/status.h>
#include <db/record.h>
#include <dwg/code_page.h>
#include <dwg/object_record.h>

namespace dwg {

/// The same version as the drawing database knows it.
constexpr db::Version databaseVersion(Version version)
{
    return static_cast<db::Version>(version);
}

/// What the type numbers of one drawing stand for: the fixed ones, and those of its class list.
class ObjectClasses
{
public:
    /// A class of the drawing's list. The first one with a number counts.
    void add(int number, std::string_view dxfName, bool isEntity);

    /// The class with a field table; null for any other.
    const db::ClassDef* find(int typeNumber) const;
    /// Whether such an object begins with the common part of entities.
    bool isEntity(int typeNumber) const;

private:
    struct Entry {
        const db::ClassDef* classDef;
        bool isEntity;
    };
    std::unordered_map<int, Entry> m_classes;
};

/// What a drawing's objects are coded by. The classes and the code page must outlive it.
struct ObjectContext {
    Version version;
    const ObjectClasses& classes;
    const CodePage& codePage; ///< of the texts up to 2004
};

/// The values of @p object, by the table of its class.
///
/// Strict: every bit of the three streams must be accounted for, or the object counts as not
/// understood and stays what it is: bytes. The status tells Unsupported when its class has no table
/// (or its version has data that the table does not know), Damaged when the streams contradict
/// themselves. Memory and time are bounded by the size of the object. A wrong checksum is not
/// looked at.
base::Result<db::Record> decodeObject(const ObjectRecord& object, const ObjectContext& context);
/// The same into @p record, whose memory is used again; on failure its content is open.
base::Status decodeObject(const ObjectRecord& object, const ObjectContext& context,
                          db::Record& record);

/// What is known of any object: owner, reactors, extension dictionary, for entities layer and so
/// on, and all its references; the rest as bits. The record's class is RAW_OBJECT or RAW_ENTITY,
/// and it can be encoded again. For objects that decodeObject() refuses.
base::Result<db::Record> decodeCommonPart(const ObjectRecord& object, const ObjectContext& context);
/// The same into @p record, whose memory is used again; on failure its content is open.
base::Status decodeCommonPart(const ObjectRecord& object, const ObjectContext& context,
                              db::Record& record);

/// The object's bytes, from its size to its checksum, as context.version stores it.
///
/// A record that was decoded in this version and not edited gives the bytes it came from, if they
/// were in the canonical form (all writers known keep to it; reencodesExactly() tells). Into
/// another version, references, texts and fields take that version's form; kept bytes (extended
/// data, xrecord items) must be converted before. Fails (Usage) when counts and arrays of the
/// record do not agree, (TooLarge) when a value does not fit.
base::Result<std::vector<std::uint8_t>> encodeObject(const db::Record& record,
                                                     const ObjectContext& context);

/// Whether @p object, decoded and encoded again, gives the same bytes. To be asked before an edited
/// record takes the place of bytes.
bool reencodesExactly(const ObjectRecord& object, const ObjectContext& context);

} // namespace dwg
