#include "database_extras.h"
#include "object_factory.h"

#include <db/record_editor.h>

namespace db {

void DatabaseImpl::makeDefault(Version version, Measurement measurement)
{
    m_version = version;
    DrawingContent content = makeDefaultDrawing(version, measurement);
    m_header = std::move(content.header);
    const TvDbDate now = TvDbDate::fromUnixMilliseconds(databaseClock().utcNs() / 1'000'000);
    RecordEditor edit(m_header);
    for (const char* name : {"TDCREATE", "TDUPDATE"})
        edit.setDate(name, now.julianDay(), now.millisecondsOfDay());
    for (Record& record : content.objects) {
        const std::uint64_t handle = record.handle();
        std::unique_ptr<TvDbObject> object =
            objectTypeOf(record.classDef(), record.classDef()->isEntity()).make();
        ObjectAccess::record(*object) = std::move(record);
        append(std::move(object), handle);
    }
    m_handseed = std::max<std::uint64_t>(m_handseed, m_header.handle("HANDSEED"));
}

} // namespace db
