#pragma once

#include <memory>

#include <db/drawing_file.h>
#include <db/tv_db_database.h>
#include <dwg/dwg_codec.h>

#include "drawings.h"

/// A drawing that was read from bytes; null, with a failure told, when it cannot be.
inline std::unique_ptr<TvDbDatabase> openBytes(std::vector<std::uint8_t> bytes)
{
    dwg::install();
    auto drawing = std::make_unique<TvDbDatabase>(false, true);
    if (drawing->readDwgBytes(std::move(bytes)) == TvStatus::Ok)
        return drawing;
    ADD_FAILURE() << "not read: " << static_cast<int>(drawing->lastFailure().reason());
    return nullptr;
}

/// The drawing as it is after a save in @p version (0: its own) and reading it again.
inline std::unique_ptr<TvDbDatabase> savedAndRead(TvDbDatabase& drawing, int version = 0)
{
    auto bytes = drawing.toBytes(db::FileFormat::Dwg, version);
    if (bytes)
        return openBytes(std::move(*bytes));
    std::string why;
    for (const TvString& argument : bytes.status().arguments())
        why += " " + argument.utf8();
    ADD_FAILURE() << "not saved: " << static_cast<int>(bytes.status().reason()) << why;
    return nullptr;
}

/// Calls @p test with every real drawing whose name contains @p part.
template <class Test>
void forEachDrawing(const std::string& part, Test test)
{
    for (const auto& [name, expected] : realDrawings(part)) {
        SCOPED_TRACE(name);
        if (const auto drawing = openBytes(readFile(drawingsFolder() / name)))
            test(*drawing, expected);
    }
}

/// The versions that drawings are written in, oldest first.
inline std::vector<std::string> versionNames()
{
    return {"ac1015", "ac1018", "ac1021", "ac1024", "ac1027", "ac1032"};
}

/// Handles as the expected values have them.
inline std::string textOf(TvDbObjectId id)
{
    return id.handle().text().utf8();
}

/// The handles of the objects whose record differs, or that only one of the two has; the header
/// variables are not compared.
inline std::set<std::uint64_t> differences(const TvDbDatabase& a, const TvDbDatabase& b)
{
    std::set<std::uint64_t> found;
    for (const TvDbDatabase* one : {&a, &b})
        for (const TvDbObjectId id : one->objectIds()) {
            const std::uint64_t handle = id.handle().value();
            const TvDbObjectPointer<TvDbObject> left(a.find(handle), TvDb::kForNotify);
            const TvDbObjectPointer<TvDbObject> right(b.find(handle), TvDb::kForNotify);
            if (!left || !right || !(left->record() == right->record()))
                found.insert(handle);
        }
    return found;
}
