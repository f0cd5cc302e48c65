#include "database_impl.h"

#include <db/record_editor.h>

namespace db {

namespace {

using IsGone = std::function<bool(std::uint64_t)>;

bool sweepStruct(RecordEditor editor, const IsGone& isGone);

bool sweepArray(RecordEditor& editor, const FieldDef& field, const IsGone& isGone)
{
    bool found = false;
    ArrayEditor array = editor.array(field.id);
    if (field.element == Storage::Handle) {
        for (std::uint32_t i = array.size(); i-- > 0;)
            if (array.handle(i) != 0 && isGone(array.handle(i))) {
                found = true;
                if (!array.erase(i))
                    array.setHandle(i, 0); // a list of fixed length keeps its places
            }
    } else if (field.structure) {
        for (std::uint32_t i = 0; i < array.size(); ++i)
            found |= sweepStruct(array[i], isGone);
    }
    return found;
}

bool sweepStruct(RecordEditor editor, const IsGone& isGone)
{
    bool found = false;
    if (!editor)
        return false;
    for (const FieldDef& field : editor.def()->fields) {
        if (field.storage == Storage::Handle) {
            const std::uint64_t target = editor.handle(field.id);
            if (target != 0 && isGone(target)) {
                editor.setHandle(field.id, 0);
                found = true;
            }
        } else if (field.storage == Storage::Array) {
            found |= sweepArray(editor, field, isGone);
        } else if (field.storage == Storage::Struct) {
            found |= sweepStruct(editor.structure(field.id), isGone);
        }
    }
    return found;
}

} // namespace

bool removeReferences(Record& record, const IsGone& isGone)
{
    return record.classDef() && sweepStruct(RecordEditor(record), isGone);
}

} // namespace db
